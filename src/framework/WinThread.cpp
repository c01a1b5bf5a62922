#include "framework/WinThread.h"

#include <memory>
#include <process.h>

IMPLEMENT_DYNAMIC(CWinThread, CCmdTarget)

namespace {

// A trivial one, so that ending a thread from outside leaves nothing to be destroyed.
thread_local CWinThread* t_thread = nullptr;

}  // namespace

CWinThread::~CWinThread() {
    if (m_hThread != nullptr) CloseHandle(m_hThread);
}

unsigned CWinThread::Start(void* thread) {
    auto* const self = static_cast<CWinThread*>(thread);
    t_thread = self;
    AfxSetModuleState(self->m_state);
    const UINT exitCode = self->m_procedure(self->m_parameter);
    if (self->m_bAutoDelete) delete self;
    return exitCode;
}

CWinThread* AfxBeginThread(AFX_THREADPROC procedure, LPVOID parameter, int priority, UINT stackSize, DWORD createFlags,
                           LPSECURITY_ATTRIBUTES security) {
    std::unique_ptr<CWinThread> thread(new CWinThread(procedure, parameter));
    unsigned id = 0;
    // Suspended until its handle stands in the object, which the thread may delete.
    const auto handle =
        _beginthreadex(security, stackSize, CWinThread::Start, thread.get(), createFlags | CREATE_SUSPENDED, &id);
    if (handle == 0) return nullptr;
    thread->m_hThread = reinterpret_cast<HANDLE>(handle);
    SetThreadPriority(thread->m_hThread, priority);
    CWinThread* const started = thread.release();
    if ((createFlags & CREATE_SUSPENDED) == 0) ResumeThread(started->m_hThread);
    return started;
}

CWinThread* AfxGetThread() {
    return t_thread;
}
