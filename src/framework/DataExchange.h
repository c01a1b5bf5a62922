// The exchange of values between a dialog's members and its controls:
//
//     void CEditorDialog::DoDataExchange(CDataExchange* exchange) {
//         CDialogEx::DoDataExchange(exchange);
//         DDX_Control(exchange, IDC_NAME, m_nameEdit);    // m_nameEdit is now the control
//         DDX_Text(exchange, IDC_NAME, m_name);           // its text, in the direction of UpdateData
//     }
#pragma once

#include "framework/Window.h"

class AFX_API CDataExchange {
public:
    BOOL m_bSaveAndValidate;  // TRUE: from the controls into the members
    CWnd* m_pDlgWnd;

    CDataExchange(CWnd* dialog, BOOL saveAndValidate) : m_bSaveAndValidate(saveAndValidate), m_pDlgWnd(dialog) {}

    // The control; CNotSupportedException if the dialog has none with that id.
    HWND PrepareCtrl(int id);
};

// Binds the control to the object, the first time only. CNotSupportedException if it is bound to another object.
AFX_API void DDX_Control(CDataExchange* exchange, int id, CWnd& control);
// The control's text, of any length. A control that has the text already is left alone.
AFX_API void DDX_Text(CDataExchange* exchange, int id, CString& text);
// The text of a combo box's selection or edit. Into the control: selects the first item that begins with the text,
// ignoring case; if there is none, a combo box with an edit gets the text there.
AFX_API void DDX_CBString(CDataExchange* exchange, int id, CString& text);
