// One session and a peer that is the test, byte by byte. A closed session is the last of its process, so each test has
// a process of its own.
#pragma once

#include <filesystem>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

#include "support/FileBytes.h"
#include "support/FreshProcess.h"
#include "support/LogCapture.h"
#include "support/Narrow.h"
#include "transports/FakeWinUsb.h"
#include "transports/WinUsbSession.h"

using namespace std::chrono_literals;

inline const std::string kNone = "ffffffffffffffff";
inline const HMODULE kProgram = GetModuleHandleW(nullptr);

// As a peer sends it: its length and its characters.
inline std::string OnTheWire(const std::wstring& name) {
    const UINT32 bytes = static_cast<UINT32>(name.size() * sizeof(wchar_t));
    return ToHex({reinterpret_cast<const char*>(&bytes), sizeof(bytes)}) +
           ToHex({reinterpret_cast<const char*>(name.data()), bytes});
}

inline bool CanWrite(const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
    return file != INVALID_HANDLE_VALUE;
}

// The owner window, on a thread of its own, and what it was told: "text;", "peer 1;", "status 42;".
class Owner {
public:
    Owner() : m_thread([this] { Run(); }) {
        while (m_window == nullptr) Sleep(1);
    }
    ~Owner() {
        PostMessageW(m_window, WM_CLOSE, 0, 0);
        m_thread.join();
    }
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;

    HWND Window() const { return m_window; }
    // What it was told since the last call; waits for so much, up to 10 s.
    std::string Take(size_t length) {
        for (int looks = 0; looks < 10000; ++looks, Sleep(1)) {
            const std::lock_guard lock(m_mutex);
            if (m_told.size() >= length) return std::exchange(m_told, {});
        }
        return std::exchange(m_told, {});
    }

private:
    void Run() {
        WNDCLASSW windowClass{};
        windowClass.lpszClassName = L"owner";
        windowClass.lpfnWndProc = [](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
            auto* const self = reinterpret_cast<Owner*>(GetWindowLongPtrW(window, GWLP_USERDATA));
            if (message == WM_CLOSE) PostQuitMessage(0);
            if (message != kUsbProgressMessage && message != kUsbStatusMessage) {
                return DefWindowProcW(window, message, wParam, lParam);
            }
            const std::lock_guard lock(self->m_mutex);
            auto* const text = reinterpret_cast<wchar_t*>(lParam);
            if (text != nullptr) self->m_told += Narrow(text) + ";";
            if (text == nullptr) {
                self->m_told += (message == kUsbProgressMessage ? "peer " : "status ") + std::to_string(wParam) + ";";
            }
            std::free(text);
            return 0;
        };
        RegisterClassW(&windowClass);
        const HWND window = CreateWindowW(L"owner", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        m_window = window;
        for (MSG message; GetMessageW(&message, nullptr, 0, 0) > 0;) DispatchMessageW(&message);
    }

    std::atomic<HWND> m_window = nullptr;
    std::mutex m_mutex;
    std::string m_told;
    std::thread m_thread;  // last: it uses the members above
};

class UsbSession : public testing::Test {
protected:
    void Connect() {
        session->SetBaseDirectory(folder.Path().c_str());
        ASSERT_EQ(session->Connect(usb.Device(), false), 0U);
    }
    // The peer's part of an exchange.
    void Exchange(const std::string& comes, const std::string& goes) {
        usb.Put(comes);
        EXPECT_EQ(usb.Take(goes.size() / 2), goes) << comes.substr(0, 60);
    }
    std::string Open(const std::wstring& name) {
        Exchange("35120000" + OnTheWire(name), "36120000");
        return usb.Take(8);
    }
    // What a request gives that waits for the peer.
    template <class Work>
    auto Ask(Work work, const std::string& goes, const std::string& answer) {
        auto result = std::async(std::launch::async, work);
        EXPECT_EQ(usb.Take(goes.size() / 2), goes);
        usb.Put(answer);
        if (result.wait_for(10s) != std::future_status::ready) RunAndEnd([] { FAIL() << "no end"; });
        return result.get();
    }

    ScopedTestDir folder;
    FakeWinUsb usb;
    std::unique_ptr<WinUsbSession> session = std::make_unique<WinUsbSession>();
};
