// Sees what a session does besides answering: its log, and what it sends and posts to its owner window.
#pragma once

#include <windows.h>

#include <condition_variable>
#include <mutex>
#include <string>

class EndWitness {
public:
    // Makes the window on this thread, which is then to handle messages.
    EndWitness();
    EndWitness(const EndWitness&) = delete;
    EndWitness& operator=(const EndWitness&) = delete;

    HWND Window() const { return m_window; }
    static void HandleMessages();

    // In UTF-8, " | " between the entries. A line of the log begins with "error: ", "warning: " or "trace: ".
    std::string Log() const;
    // "text: TEXT", "peer: 1" and "peer: 0", "status: N".
    std::string Events() const;
    // Waits until one of them contains the text; false if that takes too long.
    bool Await(const std::string& text) const;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void Add(std::string& to, const std::string& entry);

    HWND m_window;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_added;
    std::string m_log;
    std::string m_events;
};
