#include "framework/WinApp.h"

#include <cstdlib>
#include <cwchar>
#include <string>

IMPLEMENT_DYNAMIC(CWinThread, CCmdTarget)
IMPLEMENT_DYNAMIC(CWinApp, CWinThread)

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

BOOL CWinThread::InitInstance() {
    return FALSE;
}

int CWinThread::ExitInstance() {
    return 0;
}

void CWinApp::Register(LPCWSTR appName) {
    m_hInstance = m_state->m_hCurrentInstanceHandle;
    m_pszAppName = _wcsdup(appName != nullptr ? appName : ModuleName(m_hInstance).c_str());
    m_state->m_pCurrentWinApp = this;
    if (m_hInstance == GetModuleHandleW(nullptr)) AfxSetBaseModuleState(m_state);
}

CWinApp::~CWinApp() {
    std::free(const_cast<LPWSTR>(m_pszAppName));
    if (m_state->m_pCurrentWinApp == this) m_state->m_pCurrentWinApp = nullptr;
}

BOOL CWinApp::InitInstance() {
    return TRUE;
}

LPCWSTR AfxGetAppName() {
    if (const CWinApp* app = AfxGetApp(); app != nullptr) return app->m_pszAppName;
    static thread_local wchar_t* t_name = nullptr;
    std::free(t_name);
    t_name = _wcsdup(ModuleName(AfxGetInstanceHandle()).c_str());
    return t_name;
}
