// The entry point of a DLL that has an application object: part of the DLL, not of the framework.
#include "framework/WinApp.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    AFX_MANAGE_STATE(AfxGetStaticModuleState())
    CWinApp* const app = AfxGetApp();
    if (app == nullptr) return TRUE;
    try {
        // After a refusal the loader calls again with DLL_PROCESS_DETACH.
        if (reason == DLL_PROCESS_ATTACH) return app->InitInstance();
        if (reason == DLL_PROCESS_DETACH) app->ExitInstance();
    } catch (...) {
        // Nothing thrown may reach the loader.
        return FALSE;
    }
    return TRUE;
}
