// The application object of an EXE or a DLL. One is defined at namespace scope, and it registers itself with the state
// of the module that defines it:
//
//     class CEditorApp : public CWinApp {
//     public:
//         BOOL InitInstance() override {
//             if (!CWinApp::InitInstance()) return FALSE;
//             free(const_cast<LPWSTR>(m_pszAppName));
//             m_pszAppName = _wcsdup(L"Editor");    // the title of message boxes
//             return TRUE;
//         }
//     };
//     CEditorApp theApp;
//
// In a DLL that links `framework_dll_module`, InitInstance runs when the DLL is loaded.
#pragma once

#include "framework/CommandTarget.h"
#include "framework/ModuleState.h"

class AFX_API CWinApp : public CCmdTarget {
    DECLARE_DYNAMIC(CWinApp)

public:
    // Without a name the application is called like its module, without folder and extension. The constructor is inline
    // so that "the module" is the one that makes the object.
    explicit CWinApp(LPCWSTR appName = nullptr) : m_state(AfxGetStaticModuleState()) { Register(appName); }
    ~CWinApp() override;

    LPCWSTR m_pszAppName = nullptr;  // on the heap: free() it before putting another _wcsdup there

    // TRUE if the work may begin.
    virtual BOOL InitInstance();
    // Shows a message box with the application's name as title and returns its answer. AfxMessageBox ends here.
    virtual int DoMessageBox(LPCWSTR text, UINT type, UINT helpId);

private:
    void Register(LPCWSTR appName);

    AFX_MODULE_STATE* m_state;
};

// A message box with the current application's name as title, empty without one, owned by the thread's active window.
// With one of MB_OK, MB_OKCANCEL, MB_YESNO and MB_YESNOCANCEL and no icon in `type` it gets the exclamation mark.
// Returns the button's id, or 0 if it could not be shown. `helpId` is kept for its callers; no help is called.
AFX_API int AfxMessageBox(LPCWSTR text, UINT type = MB_OK, UINT helpId = 0);
