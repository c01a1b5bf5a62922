// One of the threads of a USB session. It is ended from outside, because it may sit in a call of the device that
// nothing else ends. Ended while it holds a lock, be it the loader's, the heap's or the log's, it would leave the
// process hanging. So a thread is ended only after it has begun, and where it rests:
//
//     thread.Start(Read, this);
//     ...
//     const UsbThread::Rest rest;      // in the thread, around a call that may last for ever
//     ReadPipe(...);
//     ...
//     thread.End();                    // from elsewhere, at any time
#pragma once

#include <afxwin.h>

#include <atomic>
#include <memory>

class UsbThread {
public:
    UsbThread() = default;
    UsbThread(const UsbThread&) = delete;
    UsbThread& operator=(const UsbThread&) = delete;

    // Once. False when the system gives no thread.
    bool Start(AFX_THREADPROC procedure, LPVOID parameter);
    // Returns when the thread runs no more: it has ended by itself, or was ended with exit code 0. One that comes to no
    // rest within five seconds, in a file operation say, is ended where it is. Sent messages are handled meanwhile, so
    // that a thread which waits for a window of the caller's comes out. Again, or without a thread, it does nothing.
    void End();

    // Whether End waits for the calling thread: it may simply return, then.
    static bool IsThisToEnd();

    // While it lives, its thread may be ended: it must hold no lock. If the thread is to end by then, the destructor
    // does not return. Does nothing in threads that Start did not start.
    class Rest {
    public:
        Rest();
        ~Rest();
        Rest(const Rest&) = delete;
        Rest& operator=(const Rest&) = delete;
    };

private:
    static UINT __cdecl Run(LPVOID thread);

    AFX_THREADPROC m_procedure = nullptr;
    LPVOID m_parameter = nullptr;
    std::unique_ptr<CWinThread> m_thread;
    std::atomic<bool> m_hasBegun = false;
    std::atomic<unsigned> m_turn = 0;  // odd while it rests
    std::atomic<bool> m_isToEnd = false;
};
