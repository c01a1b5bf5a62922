// The entry point of a DLL that has an application object: part of the DLL, not of the framework.
#include "framework/WinApp.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason != DLL_PROCESS_ATTACH) return TRUE;
    AFX_MANAGE_STATE(AfxGetStaticModuleState())
    CWinApp* const app = AfxGetApp();
    if (app == nullptr) return TRUE;
    try {
        return app->InitInstance();
    } catch (...) {
        // Nothing thrown may reach the loader.
        return FALSE;
    }
}
