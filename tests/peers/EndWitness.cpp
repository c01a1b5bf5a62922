#include "peers/EndWitness.h"

#include <chrono>
#include <cstdlib>

#include "siblings/coresv/LoggingService.h"
#include "support/Narrow.h"
#include "transports/WinUsbSession.h"

namespace {

constexpr std::chrono::seconds kLongest{20};

}  // namespace

EndWitness::EndWitness() {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = Procedure;
    windowClass.lpszClassName = L"usb end";
    RegisterClassW(&windowClass);
    m_window =
        CreateWindowW(windowClass.lpszClassName, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    SetWindowLongPtrW(m_window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    Logger().SetSink([this](LogLevel level, const wchar_t* message) {
        static constexpr const char* kNames[] = {"error: ", "warning: ", "info: ", "verbose: ", "trace: "};
        Add(m_log, kNames[static_cast<size_t>(level)] + Narrow(message));
    });
}

void EndWitness::HandleMessages() {
    for (MSG message; GetMessageW(&message, nullptr, 0, 0) > 0;) DispatchMessageW(&message);
}

std::string EndWitness::Log() const {
    const std::lock_guard lock(m_mutex);
    return m_log;
}

std::string EndWitness::Events() const {
    const std::lock_guard lock(m_mutex);
    return m_events;
}

bool EndWitness::Await(const std::string& text) const {
    std::unique_lock lock(m_mutex);
    return m_added.wait_for(lock, kLongest, [&] {
        return m_log.find(text) != std::string::npos || m_events.find(text) != std::string::npos;
    });
}

LRESULT CALLBACK EndWitness::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const self = reinterpret_cast<EndWitness*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == kUsbProgressMessage && lParam != 0) {
        auto* const text = reinterpret_cast<wchar_t*>(lParam);
        self->Add(self->m_events, "text: " + Narrow(text));
        std::free(text);
    } else if (message == kUsbProgressMessage) {
        self->Add(self->m_events, "peer: " + std::to_string(wParam));
    } else if (message == kUsbStatusMessage) {
        self->Add(self->m_events, "status: " + std::to_string(wParam));
    } else {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    return 0;
}

void EndWitness::Add(std::string& to, const std::string& entry) {
    {
        const std::lock_guard lock(m_mutex);
        to += to.empty() ? entry : " | " + entry;
    }
    m_added.notify_all();
}
