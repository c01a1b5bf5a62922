#include "framework/WinApp.h"

namespace {

// The usual kinds of boxes have an icon, also when their callers name none.
UINT WithIcon(UINT type) {
    if ((type & MB_ICONMASK) != 0) return type;
    switch (type & MB_TYPEMASK) {
        case MB_OK:
        case MB_OKCANCEL:
        case MB_YESNO:
        case MB_YESNOCANCEL:
            return type | MB_ICONEXCLAMATION;
        default:
            return type;
    }
}

int Show(LPCWSTR text, LPCWSTR title, UINT type) {
    return MessageBoxW(GetActiveWindow(), text, title, WithIcon(type));
}

}  // namespace

int CWinApp::DoMessageBox(LPCWSTR text, UINT type, UINT) {
    return Show(text, m_pszAppName, type);
}

int AfxMessageBox(LPCWSTR text, UINT type, UINT helpId) {
    CWinApp* const app = AfxGetApp();
    return app != nullptr ? app->DoMessageBox(text, type, helpId) : Show(text, L"", type);
}
