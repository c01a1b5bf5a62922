#include "framework/WinApp.h"

#include <cstdlib>
#include <cwchar>
#include <string>

IMPLEMENT_DYNAMIC(CWinApp, CCmdTarget)

namespace {

std::wstring ModuleName(HINSTANCE module) {
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = 0;
    while ((length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()))) == path.size()) {
        path.resize(path.size() * 2);
    }
    path.resize(length);
    path.erase(0, path.find_last_of(L'\\') + 1);
    return path.substr(0, path.find_last_of(L'.'));
}

}  // namespace

void CWinApp::Register(LPCWSTR appName) {
    const HINSTANCE module = m_state->m_hCurrentInstanceHandle;
    m_pszAppName = _wcsdup(appName != nullptr ? appName : ModuleName(module).c_str());
    m_state->m_pCurrentWinApp = this;
    if (module == GetModuleHandleW(nullptr)) AfxSetBaseModuleState(m_state);
}

CWinApp::~CWinApp() {
    std::free(const_cast<LPWSTR>(m_pszAppName));
    if (m_state->m_pCurrentWinApp == this) m_state->m_pCurrentWinApp = nullptr;
}

BOOL CWinApp::InitInstance() {
    return TRUE;
}
