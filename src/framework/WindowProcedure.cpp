#include "framework/WindowProcedure.h"

#include "framework/WinApp.h"
#include "framework/WindowThread.h"

namespace {

// Makes a message the current one until the end of the block. The temporary objects made for it end with it, not when
// the loop goes idle: one message may send thousands of others.
class CurrentMessage {
public:
    CurrentMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
        : m_thread(afx::ThisThread()), m_previous(m_thread.current), m_temporaries(m_thread.temporaries.size()) {
        m_thread.current = {window, message, wParam, lParam, 0, {}};
    }
    ~CurrentMessage() {
        m_thread.current = m_previous;
        m_thread.TrimTemporaries(m_temporaries);
    }
    CurrentMessage(const CurrentMessage&) = delete;
    CurrentMessage& operator=(const CurrentMessage&) = delete;

private:
    afx::WindowThread& m_thread;
    const MSG m_previous;
    const size_t m_temporaries;
};

// Outside of a modal loop nobody is left to catch: the user is told.
void ReportCurrentException() {
    constexpr UINT kBox = MB_OK | MB_ICONSTOP;
    try {
        throw;  // cppcheck-suppress rethrowNoCurrentException ; called from catch blocks only
    } catch (CUserException* told) {
        told->Delete();
    } catch (CException* problem) {
        wchar_t text[512];
        if (problem->GetErrorMessage(text, ARRAYSIZE(text))) AfxMessageBox(text, kBox);
        problem->Delete();
    } catch (const std::exception& problem) {
        AfxMessageBox(CString(problem.what()), kBox);
    } catch (...) {
        AfxMessageBox(L"An operation failed for an unknown reason.", kBox);
    }
}

LRESULT AnswerForFailure(HWND window, UINT message) {
    if (message == WM_CREATE) return -1;
    if (message == WM_PAINT) ValidateRect(window, nullptr);  // or it would come again at once
    return 0;
}

LRESULT CALLBACK BindCreatedWindow(int code, WPARAM wParam, LPARAM lParam) noexcept {
    afx::WindowThread& thread = afx::ThisThread();
    if (code == HCBT_CREATEWND && thread.created != nullptr) {
        const auto window = reinterpret_cast<HWND>(wParam);
        wchar_t className[8] = {};
        GetClassNameW(window, className, ARRAYSIZE(className));
        // A thread's first top-level window makes the system create an input method window before it.
        if (_wcsicmp(className, L"IME") != 0) CWindowProcedure::Install(std::exchange(thread.created, nullptr), window);
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

}  // namespace

LRESULT CALLBACK CWindowProcedure::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    CWnd* const object = CWnd::FromHandlePermanent(window);
    if (object == nullptr) return ::DefWindowProcW(window, message, wParam, lParam);
    try {
        return Dispatch(object, message, wParam, lParam);
    } catch (...) {
        if (afx::ThisThread().modal != nullptr) {
            afx::ThisThread().modal->KeepCurrentException();
            ::PostMessageW(window, WM_NULL, 0, 0);  // the loop may be asleep: the message can have been sent
        } else {
            ReportCurrentException();
        }
        return AnswerForFailure(window, message);
    }
}

LRESULT CWindowProcedure::Dispatch(CWnd* object, UINT message, WPARAM wParam, LPARAM lParam) {
    AFX_MANAGE_STATE(object->m_pModuleState)
    const CurrentMessage current(object->m_hWnd, message, wParam, lParam);
    return object->WindowProc(message, wParam, lParam);
}

BOOL CWindowProcedure::PreTranslate(CWnd* object, MSG* message) {
    AFX_MANAGE_STATE(object->m_pModuleState)
    return object->PreTranslateMessage(message);
}

BOOL CWindowProcedure::Install(CWnd* object, HWND window) {
    const auto own = reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(window, GWLP_WNDPROC));
    if (own == &Procedure || !object->Attach(window)) return FALSE;
    object->PreSubclassWindow();
    object->m_pfnSuper = own;
    ::SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure));
    return TRUE;
}

void CWindowProcedure::Remove(CWnd* object) {
    const WNDPROC own = std::exchange(object->m_pfnSuper, nullptr);
    if (own != nullptr && ::GetWindowLongPtrW(object->m_hWnd, GWLP_WNDPROC) == reinterpret_cast<LONG_PTR>(&Procedure))
        ::SetWindowLongPtrW(object->m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(own));
}

namespace afx {

CreationScope::CreationScope(CWnd* window)
    : m_outer(std::exchange(ThisThread().created, window)),
      m_hook(::SetWindowsHookExW(WH_CBT, &BindCreatedWindow, nullptr, ::GetCurrentThreadId())) {}

CreationScope::~CreationScope() {
    ::UnhookWindowsHookEx(m_hook);
    ThisThread().created = m_outer;
}

}  // namespace afx
