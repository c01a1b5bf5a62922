#include "framework/CString.h"
#include "framework/WinApp.h"

namespace {

int Show(LPCWSTR text, UINT type) {
    return MessageBoxW(GetActiveWindow(), text, AfxGetAppName(), type);
}

}  // namespace

int CWinApp::DoMessageBox(LPCWSTR text, UINT type, UINT) {
    return Show(text, type);
}

int AfxMessageBox(LPCWSTR text, UINT type, UINT helpId) {
    CWinApp* const app = AfxGetApp();
    return app != nullptr ? app->DoMessageBox(text, type, helpId) : Show(text, type);
}

int AfxMessageBox(UINT textId, UINT type, UINT helpId) {
    CString text;
    text.LoadString(textId);
    return AfxMessageBox(text, type, helpId == static_cast<UINT>(-1) ? textId : helpId);
}
