#include "framework/WinApp.h"

int CWinApp::DoMessageBox(LPCWSTR text, UINT type, UINT) {
    return MessageBoxW(GetActiveWindow(), text, m_pszAppName, type);
}

int AfxMessageBox(LPCWSTR text, UINT type, UINT helpId) {
    CWinApp* const app = AfxGetApp();
    return app != nullptr ? app->DoMessageBox(text, type, helpId) : MessageBoxW(GetActiveWindow(), text, L"", type);
}
