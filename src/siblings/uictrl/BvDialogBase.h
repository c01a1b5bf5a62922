// The base of the product family's dialogs.
#pragma once

#include <afxdialogex.h>

#include "siblings/uictrl/Api.h"

class UICTRL_API CBvDialogBase : public CDialogEx {
public:
    // As CDialogEx: no window yet, and without a parent the thread's active window is the owner.
    explicit CBvDialogBase(UINT templateId, CWnd* parent = nullptr) : CDialogEx(templateId, parent) {}

protected:
    // A font that a derived class made for the dialog, or none: then the template's is in use. It must outlive the
    // window.
    CFont m_font;

    // Gives m_font, if there is one, to the controls.
    BOOL OnInitDialog() override;

    DECLARE_MESSAGE_MAP()
};
