// Keeps a window from painting while it is filled, and has it painted anew on every way out of the block.
#pragma once

#include <afxwin.h>

class ScopedRedrawOff {
public:
    explicit ScopedRedrawOff(CWnd& window) : m_window(window) { m_window.SetRedraw(FALSE); }
    ~ScopedRedrawOff() {
        m_window.SetRedraw(TRUE);
        m_window.Invalidate();
    }
    ScopedRedrawOff(const ScopedRedrawOff&) = delete;
    ScopedRedrawOff& operator=(const ScopedRedrawOff&) = delete;

private:
    CWnd& m_window;
};
