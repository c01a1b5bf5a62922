// The thread that runs the modal dialog, seen from the thread that works it: waits until it has dealt with its input,
// and runs functions on it. Works in whatever loop the thread is: the dialog's, a message box's, a drag's.
#pragma once

#include <windows.h>

#include <atomic>
#include <functional>

class GuiThread {
public:
    // Made on the thread that it stands for.
    GuiThread();
    ~GuiThread();
    GuiThread(const GuiThread&) = delete;
    GuiThread& operator=(const GuiThread&) = delete;

    DWORD Id() const { return m_id; }

    // Waits until no input, posted message or repaint waits in the thread's queue. False when the thread does not come
    // to rest in time. Timers that have not run out are not waited for.
    bool Settle() const;
    // Runs the function on the thread and returns after it; what it throws is thrown here, and std::runtime_error when
    // it crashed.
    void Run(const std::function<void()>& function) const;
    // Posts a message; once it has come back, a message loop runs.
    void AskForLoop();
    bool LoopRuns() const { return m_loopRuns; }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    DWORD m_id;
    HWND m_window;
    std::atomic<bool> m_loopRuns{false};
};
