// Worker threads:
//
//     UINT __cdecl Copy(LPVOID job) {
//         static_cast<CopyJob*>(job)->Run();
//         return 0;                                   // the thread's exit code
//     }
//     AfxBeginThread(Copy, &job);                     // the object deletes itself when the thread ends
#pragma once

#include "framework/CommandTarget.h"
#include "framework/ModuleState.h"

using AFX_THREADPROC = UINT(__cdecl*)(LPVOID);

class AFX_API CWinThread : public CCmdTarget {
    DECLARE_DYNAMIC(CWinThread)

public:
    // Closes the handle; the thread itself goes on.
    ~CWinThread() override;

    // Cleared, by the thread itself at the latest, the object stays; it must outlive the thread and be deleted then.
    BOOL m_bAutoDelete = TRUE;
    HANDLE m_hThread = nullptr;

private:
    friend AFX_API CWinThread* AfxBeginThread(AFX_THREADPROC, LPVOID, int, UINT, DWORD, LPSECURITY_ATTRIBUTES);

    CWinThread(AFX_THREADPROC procedure, LPVOID parameter) : m_procedure(procedure), m_parameter(parameter) {}
    static unsigned __stdcall Start(void* thread);

    AFX_THREADPROC m_procedure;
    LPVOID m_parameter;
    AFX_MODULE_STATE* m_state = AfxGetModuleState();
};

// Starts a thread in the caller's module state and returns its object, or null. `stackSize` is in bytes, 0 for the
// program's default; with CREATE_SUSPENDED in `createFlags` it waits for ResumeThread.
AFX_API CWinThread* AfxBeginThread(AFX_THREADPROC procedure, LPVOID parameter, int priority = THREAD_PRIORITY_NORMAL,
                                   UINT stackSize = 0, DWORD createFlags = 0, LPSECURITY_ATTRIBUTES security = nullptr);

// The object of the calling thread; null if AfxBeginThread did not start it.
AFX_API CWinThread* AfxGetThread();
