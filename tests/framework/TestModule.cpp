#include "framework/TestModule.h"

#include <cstdlib>
#include <cwchar>
#include <stdexcept>

namespace {

int* s_exits = nullptr;

class CTestModuleApp : public CWinApp {
public:
    BOOL InitInstance() override {
        wchar_t counter[32];
        if (GetEnvironmentVariableW(kRefuseVariable, counter, 32) != 0) {
            s_exits = reinterpret_cast<int*>(std::wcstoull(counter, nullptr, 16));
            return FALSE;
        }
        // The name comes from the DLL's own string table, which shows that its state is current while it is loaded.
        CString name;
        if (!CWinApp::InitInstance() || !name.LoadString(229)) return FALSE;
        std::free(const_cast<LPWSTR>(m_pszAppName));
        m_pszAppName = _wcsdup(name);
        return TRUE;
    }
    int ExitInstance() override {
        if (s_exits != nullptr) ++*s_exits;
        return CWinApp::ExitInstance();
    }
};

CTestModuleApp theApp;

}  // namespace

extern "C" {

__declspec(dllexport) void GetModuleString(UINT id, CString* text) {
    AFX_MANAGE_STATE(AfxGetStaticModuleState())
    text->LoadString(id);
}

__declspec(dllexport) void GetStringWithoutGuard(UINT id, CString* text) {
    text->LoadString(id);
}

__declspec(dllexport) void CallInModule(void (*work)(void* context), void* context) {
    AFX_MANAGE_STATE(AfxGetStaticModuleState())
    work(context);
}

__declspec(dllexport) void ThrowFromModule(int kind) {
    AFX_MANAGE_STATE(AfxGetStaticModuleState())
    if (kind == THROW_INVALID_ARGUMENT) AfxThrowInvalidArgException();
    if (kind == THROW_USER) AfxThrowUserException();
    throw std::runtime_error("standard");
}

__declspec(dllexport) void WatchExit(int* exits) {
    s_exits = exits;
}
}
