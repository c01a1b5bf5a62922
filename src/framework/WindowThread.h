// What the framework keeps for each thread that has windows.
#pragma once

#include <exception>
#include <memory>
#include <unordered_map>
#include <vector>

#include "framework/Temporary.h"
#include "framework/Window.h"

namespace afx {

class ModalScope;

struct WindowThread {
    std::unordered_map<HWND, CWnd*> permanent;
    std::unordered_map<HWND, CWnd*> temporary;          // the latest for each handle
    std::vector<std::unique_ptr<CObject>> temporaries;  // of all classes, oldest first
    MSG current{};                                      // what is being handled
    CWnd* created = nullptr;                            // waits for its window to come into being
    HWND lockedOut = nullptr;                           // its controls' commands are swallowed
    ModalScope* modal = nullptr;                        // the innermost modal loop

    // Ends the temporary objects but for the `count` oldest.
    void TrimTemporaries(size_t count);
};

WindowThread& ThisThread();

// A modal loop that is being run. An exception that a window's handler throws waits here until the loop has ended.
class ModalScope {
public:
    ModalScope();
    ~ModalScope();
    ModalScope(const ModalScope&) = delete;
    ModalScope& operator=(const ModalScope&) = delete;

    // Keeps the exception that is being handled, unless one is kept already; then it ends here.
    void KeepCurrentException();
    bool HasException() const { return m_exception != nullptr; }
    void RethrowException();
    // Ends the temporary objects made since the loop began.
    void TrimTemporaries() const { ThisThread().TrimTemporaries(m_temporaries); }

private:
    ModalScope* m_outer;
    size_t m_temporaries;
    std::exception_ptr m_exception;
};

// Binds `window` to the next window that this thread creates, from its first message on. Ends with the block.
class CreationScope {
public:
    explicit CreationScope(CWnd* window);
    // True if the window came into being; its object may be gone by now.
    bool IsBound() const { return ThisThread().created == nullptr; }
    ~CreationScope();
    CreationScope(const CreationScope&) = delete;
    CreationScope& operator=(const CreationScope&) = delete;

private:
    CWnd* m_outer;
    HHOOK m_hook;
};

// The window's object of that class; a temporary one if it has none.
template <class Class>
Class* WindowAs(HWND window) {
    if (window == nullptr) return nullptr;
    if (CWnd* const bound = CWnd::FromHandlePermanent(window)) return dynamic_cast<Class*>(bound);
    CWnd*& latest = ThisThread().temporary[window];
    if (auto* const known = dynamic_cast<Class*>(latest)) return known;
    auto object = std::make_unique<Temporary<Class>>();
    object->m_hWnd = window;
    Class* const result = object.get();
    latest = result;
    AddTemporary(std::move(object));
    return result;
}

// Makes sure that the common controls' window classes exist.
void RegisterCommonControls();

}  // namespace afx
