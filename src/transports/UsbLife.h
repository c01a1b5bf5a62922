// The life of a USB session: its two threads, the one caller that waits for an answer, and what ends either.
//
//     New --Start--> Serving --a message not sent, the peer's farewell, the end of a Finish--> Over
//     any of them --Close--> Closed
//
// A request can begin while the session serves, and always comes to an end when it is closed.
#pragma once

#include "transports/UsbThread.h"

class UsbLife {
public:
    UsbLife() = default;
    UsbLife(const UsbLife&) = delete;
    UsbLife& operator=(const UsbLife&) = delete;

    // Begins to serve. False when the system gives no thread; what has been started is to be closed then, too.
    bool Start(AFX_THREADPROC send, AFX_THREADPROC read, LPVOID session);
    // Started and not yet closed.
    bool IsToBeClosed() const { return m_phase == Serving || m_phase == Over; }
    // Ends the sending thread, the reading one, the caller's wait and the event of the process.
    void Close();
    void EndReading() { m_readThread.End(); }

    // The caller's side, one request at a time. False at once if no answer can come. Otherwise AwaitReply must follow,
    // which is true when the reply of that code has been stored.
    bool BeginRequest(DWORD reply);
    bool AwaitReply();

    // The reading thread's side. Whether the caller waits for that reply: then nobody but this thread touches what is
    // read and the caller's buffer, up to EndReply.
    bool BeginReply(DWORD reply);
    void EndReply();
    // No request can follow: nobody reads any more.
    void EndRequests();

    // A message could not be sent, for that Win32 error. The first one stays, whatever is sent afterwards.
    void Fail(DWORD error);
    DWORD Error() const { return m_error; }
    // True for one of the threads, which then tells the owner.
    bool IsFirstToTell() { return !m_isTold.exchange(true); }
    // The sending thread ends, and with it the caller's wait, unless the reply has begun to arrive.
    void EndSending();

private:
    enum Phase { New, Serving, Over, Closing, Closed };

    std::atomic<Phase> m_phase = New;
    UsbThread m_sendThread;
    UsbThread m_readThread;
    std::atomic<DWORD> m_error = 0;
    std::atomic<bool> m_isTold = false;
    std::atomic<bool> m_sendIsOver = false;
    HANDLE m_awaitedEvent = nullptr;
    DWORD m_reply = 0;
    // The code of the reply that the caller waits for, kReplyArriving while it is read, 0 for none.
    std::atomic<DWORD> m_awaitedReply = 0;
};
