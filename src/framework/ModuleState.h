// Which module's resources and application object are meant "now". Every EXE and DLL that uses the framework has a
// state of its own; a thread has a current one. An exported member of a DLL opens with the guard:
//
//     long CThing::Show() {
//         AFX_MANAGE_STATE(AfxGetStaticModuleState())
//         CDialog dialog(IDD_THING);    // this DLL's template, whatever the caller's state was
//         ...
//     }                                 // the caller's state is back, also when an exception leaves
#pragma once

#include "framework/Api.h"

class CWinApp;

extern "C" IMAGE_DOS_HEADER __ImageBase;  // the header of the module that this code is linked into

class AFX_MODULE_STATE {
public:
    CWinApp* m_pCurrentWinApp = nullptr;
    HINSTANCE m_hCurrentInstanceHandle = nullptr;
    HINSTANCE m_hCurrentResourceHandle = nullptr;

    explicit AFX_MODULE_STATE(HINSTANCE module) : m_hCurrentInstanceHandle(module), m_hCurrentResourceHandle(module) {}
    AFX_MODULE_STATE(const AFX_MODULE_STATE&) = delete;
    AFX_MODULE_STATE& operator=(const AFX_MODULE_STATE&) = delete;
};

// The state of the module that this call is compiled into. It is inline on purpose: each EXE and DLL gets its own
// static.
inline AFX_MODULE_STATE* AfxGetStaticModuleState() {
    static AFX_MODULE_STATE state(reinterpret_cast<HINSTANCE>(&__ImageBase));
    return &state;
}

// The thread's current state; while none has been set, the state of the EXE.
AFX_API AFX_MODULE_STATE* AfxGetModuleState();
// Makes `state` the thread's current one and returns what was set before: null if nothing was.
AFX_API AFX_MODULE_STATE* AfxSetModuleState(AFX_MODULE_STATE* state);
// Names the state that threads have until another is set. The EXE's application object calls it.
AFX_API void AfxSetBaseModuleState(AFX_MODULE_STATE* state);

// Makes a state current until the end of the block.
class AFX_MAINTAIN_STATE2 {
public:
    explicit AFX_MAINTAIN_STATE2(AFX_MODULE_STATE* state) : m_previous(AfxSetModuleState(state)) {}
    ~AFX_MAINTAIN_STATE2() { AfxSetModuleState(m_previous); }
    AFX_MAINTAIN_STATE2(const AFX_MAINTAIN_STATE2&) = delete;
    AFX_MAINTAIN_STATE2& operator=(const AFX_MAINTAIN_STATE2&) = delete;

private:
    AFX_MODULE_STATE* m_previous;
};

#define AFX_MANAGE_STATE(state) AFX_MAINTAIN_STATE2 afxManagedState(state);

// Of the current state. The application object is null if the module has none.
AFX_API CWinApp* AfxGetApp();
AFX_API HINSTANCE AfxGetInstanceHandle();
AFX_API HINSTANCE AfxGetResourceHandle();

// The module in which to look for a resource: the current state's. The framework brings no resources of its own.
AFX_API HINSTANCE AfxFindResourceHandle(LPCWSTR name, LPCWSTR type);
