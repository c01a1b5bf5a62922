#include "framework/ModuleState.h"

namespace {

thread_local AFX_MODULE_STATE* t_current = nullptr;
AFX_MODULE_STATE* s_base = nullptr;

// For an EXE that has no application object.
AFX_MODULE_STATE* BareExeState() {
    static AFX_MODULE_STATE state(GetModuleHandleW(nullptr));
    return &state;
}

}  // namespace

AFX_MODULE_STATE* AfxGetModuleState() {
    if (t_current != nullptr) return t_current;
    return s_base != nullptr ? s_base : BareExeState();
}

AFX_MODULE_STATE* AfxSetModuleState(AFX_MODULE_STATE* state) {
    AFX_MODULE_STATE* previous = t_current;
    t_current = state;
    return previous;
}

void AfxSetBaseModuleState(AFX_MODULE_STATE* state) {
    s_base = state;
}

CWinApp* AfxGetApp() {
    return AfxGetModuleState()->m_pCurrentWinApp;
}

HINSTANCE AfxGetInstanceHandle() {
    return AfxGetModuleState()->m_hCurrentInstanceHandle;
}

HINSTANCE AfxGetResourceHandle() {
    return AfxGetModuleState()->m_hCurrentResourceHandle;
}

HINSTANCE AfxFindResourceHandle(LPCWSTR, LPCWSTR) {
    return AfxGetResourceHandle();
}
