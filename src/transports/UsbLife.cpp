#include "transports/UsbLife.h"

#include <afxmt.h>

#include <utility>

namespace {

constexpr DWORD kReplyArriving = ~DWORD{0};
constexpr DWORD kThreadsEndMilliseconds = 100;
constexpr DWORD kAgainMilliseconds = 1;
constexpr DWORD kLookMilliseconds = 250;

// One event for all sessions of the process, and gone with the first that is closed. By its name it is also that of
// every other process of the user's session, so it can be set or reset by sessions that are no business of ours: it
// tells when to look, and only a look tells what there is. The lock guards the handle and the steps from one phase to
// the next; nobody waits while holding it.
CCriticalSection s_lock;
HANDLE s_fileEvent = CreateEventW(nullptr, TRUE, FALSE, L"file_event");
std::atomic<int> s_users = 0;  // of the event, which is closed after the last is out

// Not under the lock: whoever wakes by it begins the next request at once.
void SetEventOfProcess() {
    HANDLE event = nullptr;
    {
        const CSingleLock lock(&s_lock, TRUE);
        event = s_fileEvent;
        if (event == nullptr) return;
        ++s_users;
    }
    SetEvent(event);
    --s_users;
}

}  // namespace

bool UsbLife::Start(AFX_THREADPROC send, AFX_THREADPROC read, LPVOID session) {
    m_phase = Serving;
    return m_sendThread.Start(send, session) && m_readThread.Start(read, session);
}

void UsbLife::Close() {
    {
        const CSingleLock lock(&s_lock, TRUE);
        m_phase = Closing;
    }
    m_sendThread.End();
    m_readThread.End();
    Sleep(kThreadsEndMilliseconds);
    HANDLE event = nullptr;
    {
        const CSingleLock lock(&s_lock, TRUE);
        m_phase = Closed;
        event = std::exchange(s_fileEvent, nullptr);
    }
    if (event == nullptr) return;
    SetEvent(event);
    while (s_users != 0) Sleep(kAgainMilliseconds);
    CloseHandle(event);
}

bool UsbLife::BeginRequest(DWORD reply) {
    const CSingleLock lock(&s_lock, TRUE);
    if (m_phase != Serving || m_error != 0 || s_fileEvent == nullptr) return false;
    m_awaitedEvent = s_fileEvent;
    ResetEvent(m_awaitedEvent);
    m_reply = reply;
    m_awaitedReply = reply;
    ++s_users;
    return true;
}

bool UsbLife::AwaitReply() {
    bool isOver = false;
    while (m_awaitedReply != 0 && !isOver) {
        const DWORD waited = WaitForSingleObject(m_awaitedEvent, kLookMilliseconds);
        // A reply that is arriving fills our caller's buffer, so it is waited for while there is a thread that reads
        // it.
        DWORD reply = m_reply;
        isOver = m_phase == Closed || (m_sendIsOver && m_awaitedReply.compare_exchange_strong(reply, 0));
        if (waited == WAIT_OBJECT_0 && m_awaitedReply != 0) Sleep(kAgainMilliseconds);
    }
    --s_users;
    return !isOver;
}

bool UsbLife::BeginReply(DWORD reply) {
    return m_awaitedReply.compare_exchange_strong(reply, kReplyArriving);
}

void UsbLife::EndReply() {
    m_awaitedReply = 0;
    SetEventOfProcess();
}

void UsbLife::EndRequests() {
    const CSingleLock lock(&s_lock, TRUE);
    if (m_phase == Serving) m_phase = Over;
}

void UsbLife::Fail(DWORD error) {
    DWORD none = 0;
    m_error.compare_exchange_strong(none, error != 0 ? error : DWORD{ERROR_GEN_FAILURE});
}

void UsbLife::EndSending() {
    m_sendIsOver = true;
    SetEventOfProcess();
}
