#include "support/GuiThread.h"

#include <exception>
#include <stdexcept>

namespace {

constexpr UINT kQueueStatus = WM_APP + 1;
constexpr UINT kRun = WM_APP + 2;
constexpr UINT kLoopRuns = WM_APP + 3;
constexpr UINT kPatienceMs = 10000;

struct Task {
    const std::function<void()>& function;
    std::exception_ptr thrown;
    bool hasEnded = false;
};

}  // namespace

GuiThread::GuiThread() : m_id(GetCurrentThreadId()), m_window(nullptr) {
    static const ATOM s_class = [] {
        WNDCLASSW definition{};
        definition.lpfnWndProc = Procedure;
        definition.hInstance = GetModuleHandleW(nullptr);
        definition.lpszClassName = L"TestGuiThread";
        return RegisterClassW(&definition);
    }();
    m_window = CreateWindowExW(0, MAKEINTATOM(s_class), L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                               GetModuleHandleW(nullptr), nullptr);
    SetWindowLongPtrW(m_window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

GuiThread::~GuiThread() {
    DestroyWindow(m_window);
}

LRESULT CALLBACK GuiThread::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case kQueueStatus:
            *reinterpret_cast<DWORD*>(lParam) = HIWORD(GetQueueStatus(QS_ALLINPUT));
            return 0;
        case kRun: {
            const auto task = reinterpret_cast<Task*>(lParam);
            try {
                task->function();
            } catch (...) {
                task->thrown = std::current_exception();
            }
            task->hasEnded = true;
            return 0;
        }
        case kLoopRuns:
            reinterpret_cast<GuiThread*>(GetWindowLongPtrW(window, GWLP_USERDATA))->m_loopRuns = true;
            return 0;
        default:
            return DefWindowProcW(window, message, wParam, lParam);
    }
}

bool GuiThread::Settle() const {
    const ULONGLONG start = GetTickCount64();
    while (true) {
        static DWORD s_status;  // outlives a call that times out and is answered later
        s_status = ~0u;
        DWORD_PTR result = 0;
        if (!SendMessageTimeoutW(m_window, kQueueStatus, 0, reinterpret_cast<LPARAM>(&s_status), SMTO_NORMAL,
                                 kPatienceMs, &result)) {
            return false;
        }
        if ((s_status & (QS_INPUT | QS_POSTMESSAGE | QS_PAINT)) == 0) return true;
        if (GetTickCount64() - start > kPatienceMs) return false;
        Sleep(0);
    }
}

void GuiThread::Run(const std::function<void()>& function) const {
    Task task{function, nullptr};
    SendMessageW(m_window, kRun, 0, reinterpret_cast<LPARAM>(&task));
    // The system hides an access violation in a window procedure: the call comes back as if nothing had been.
    if (!task.hasEnded) throw std::runtime_error("a crash on the dialog's thread");
    if (task.thrown) std::rethrow_exception(task.thrown);
}

void GuiThread::AskForLoop() {
    m_loopRuns = false;
    PostMessageW(m_window, kLoopRuns, 0, 0);
}
