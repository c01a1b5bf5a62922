// Modal dialogs from a template resource:
//
//     class CNameDialog : public CDialogEx {
//     public:
//         CNameDialog() : CDialogEx(IDD_NAME) {}
//         CString m_name;
//     protected:
//         void DoDataExchange(CDataExchange* exchange) override {
//             CDialogEx::DoDataExchange(exchange);
//             DDX_Text(exchange, IDC_NAME, m_name);
//         }
//         BOOL OnInitDialog() override {
//             CDialogEx::OnInitDialog();         // fills the controls, first of all
//             GetDlgItem(IDC_NAME)->SetFocus();
//             return FALSE;                      // the focus is where we want it
//         }
//     };
//
//     CNameDialog dialog;
//     if (dialog.DoModal() == IDOK) Greet(dialog.m_name);
//
// Override OnInitDialog, OnOK, OnCancel, DoDataExchange and what CWnd lists; add a message map for the controls. OnOK
// and OnCancel are the handlers of the buttons IDOK and IDCANCEL; the close box, Return and Escape come to them as
// well.
#pragma once

#include "framework/DataExchange.h"
#include "framework/Window.h"

class AFX_API CDialog : public CWnd {
    DECLARE_DYNAMIC(CDialog)

public:
    // No window yet. The template is looked for in the module state that is current when DoModal is called. Without a
    // parent the thread's active window is the owner.
    explicit CDialog(UINT templateId, CWnd* parent = nullptr)
        : m_lpszTemplateName(MAKEINTRESOURCEW(templateId)), m_pParentWnd(parent) {}

    // Shows the dialog, with its owner disabled, until EndDialog, and returns what that was given; -1 if the window
    // could not be created or went without EndDialog. An exception that a handler threw leaves here, after the window
    // is gone and the owner enabled again. May be called again.
    virtual INT_PTR DoModal();
    // Ends the loop of DoModal as soon as the handler returns.
    void EndDialog(int result);

    // Dialog keys: Tab, arrows, Return, Escape, shortcuts.
    BOOL PreTranslateMessage(MSG* message) override;

protected:
    // Before the dialog is shown. The base runs the dialog's initialisation resource and UpdateData(FALSE). TRUE gives
    // the focus to the first control.
    virtual BOOL OnInitDialog();
    // The bases end the dialog with IDOK, after UpdateData(TRUE) succeeded, and with IDCANCEL.
    virtual void OnOK();
    virtual void OnCancel();

    void PostNcDestroy() override;

    DECLARE_MESSAGE_MAP()

private:
    static INT_PTR CALLBACK DialogProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    afx_msg LRESULT HandleInitDialog(WPARAM wParam, LPARAM lParam);
    void RunModalLoop(HWND owner);
    void PumpMessage();

    LPCWSTR m_lpszTemplateName;
    bool m_centers = false;  // the template leaves the place to us
    CWnd* m_pParentWnd;
    bool m_isModal = false;  // from DoModal's beginning until EndDialog
    int m_modalResult = -1;
};

class AFX_API CDialogEx : public CDialog {
    DECLARE_DYNAMIC(CDialogEx)

public:
    explicit CDialogEx(UINT templateId, CWnd* parent = nullptr) : CDialog(templateId, parent) {}
};
