#include "framework/DataExchange.h"

namespace {

CString TextOf(HWND control) {
    CString text;
    CWnd::FromHandle(control)->GetWindowText(text);
    return text;
}

// Setting a text that is there already would move the caret and notify for nothing.
void SetTextIfNew(HWND control, const CString& text) {
    if (TextOf(control) != text) ::SetWindowTextW(control, text);
}

}  // namespace

HWND CDataExchange::PrepareCtrl(int id) {
    const HWND control = ::GetDlgItem(m_pDlgWnd->m_hWnd, id);
    if (control == nullptr) AfxThrowNotSupportedException();
    return control;
}

void DDX_Control(CDataExchange* exchange, int id, CWnd& control) {
    if (control.m_hWnd != nullptr) return;
    if (!control.SubclassWindow(exchange->PrepareCtrl(id))) AfxThrowNotSupportedException();
}

void DDX_Text(CDataExchange* exchange, int id, CString& text) {
    const HWND control = exchange->PrepareCtrl(id);
    if (exchange->m_bSaveAndValidate) {
        text = TextOf(control);
    } else {
        SetTextIfNew(control, text);
    }
}

void DDX_CBString(CDataExchange* exchange, int id, CString& text) {
    const HWND control = exchange->PrepareCtrl(id);
    if (exchange->m_bSaveAndValidate) {
        text = TextOf(control);
    } else if (::SendMessageW(control, CB_SELECTSTRING, static_cast<WPARAM>(-1),
                              reinterpret_cast<LPARAM>(text.GetString())) == CB_ERR) {
        SetTextIfNew(control, text);
    }
}
