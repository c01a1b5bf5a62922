#include "transports/UsbThread.h"

namespace {

constexpr DWORD kLookMilliseconds = 1;
// On its way into the system's wait a call may hold locks of the system. It has given them back when nothing has
// changed for so long. Looks are counted, not time: on a busy machine the thread comes on as slowly as whoever looks.
constexpr int kLooksAtRest = 200;
constexpr DWORD kLongestMilliseconds = 5000;

// A trivial one, so that ending a thread from outside leaves nothing to be destroyed.
thread_local UsbThread* t_thread = nullptr;

}  // namespace

bool UsbThread::Start(AFX_THREADPROC procedure, LPVOID parameter) {
    m_procedure = procedure;
    m_parameter = parameter;
    m_thread.reset(AfxBeginThread(Run, this));
    return m_thread != nullptr;
}

UINT UsbThread::Run(LPVOID thread) {
    auto* const self = static_cast<UsbThread*>(thread);
    // Who ends the thread does so by its object, which must be there then, whether the thread has ended or not.
    AfxGetThread()->m_bAutoDelete = FALSE;
    t_thread = self;
    self->m_hasBegun = true;
    return self->m_procedure(self->m_parameter);
}

void UsbThread::End() {
    if (m_thread == nullptr) return;
    const HANDLE handle = m_thread->m_hThread;
    m_isToEnd = true;
    unsigned turn = 0;
    int looksAtRest = 0;
    for (const ULONGLONG start = GetTickCount64(); looksAtRest < kLooksAtRest;) {
        // One that has returned is on its way out through the loader, and is waited for like any other.
        if (MsgWaitForMultipleObjectsEx(1, &handle, kLookMilliseconds, QS_SENDMESSAGE, 0) == WAIT_OBJECT_0) return;
        MSG message;
        PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
        const bool isAtRest = m_turn % 2 != 0 && m_turn == turn;
        looksAtRest = isAtRest ? looksAtRest + 1 : 0;
        turn = m_turn;
        if (m_hasBegun && GetTickCount64() - start > kLongestMilliseconds) break;
    }
    TerminateThread(handle, 0);
    WaitForSingleObject(handle, kLongestMilliseconds);
}

bool UsbThread::IsThisToEnd() {
    return t_thread != nullptr && t_thread->m_isToEnd;
}

// Both members are written before the other is read, here and in End: so either End sees that the thread rests no more,
// or the thread sees that it is to end.
UsbThread::Rest::Rest() {
    if (t_thread != nullptr) ++t_thread->m_turn;
}

UsbThread::Rest::~Rest() {
    if (t_thread == nullptr) return;
    ++t_thread->m_turn;
    if (!t_thread->m_isToEnd) return;
    ++t_thread->m_turn;
    Sleep(INFINITE);
}
