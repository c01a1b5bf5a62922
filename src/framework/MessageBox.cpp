// The framework's message boxes and the choice of their owner.
#include "framework/CString.h"
#include "framework/WinApp.h"

namespace {

// A box owned by a child would leave its dialog enabled, so the owner is a top-level window; and if that has a window
// of its own in front, it is disabled, and the front one is the owner.
HWND FindOwner() {
    HWND window = GetActiveWindow();
    if (window == nullptr) return nullptr;
    return GetLastActivePopup(GetAncestor(window, GA_ROOT));
}

int Show(LPCWSTR text, UINT type) {
    return MessageBoxW(FindOwner(), text, AfxGetAppName(), type);
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
