// One session and a peer that is the test, byte by byte. A closed session is the last of its process, so each test has
// a process of its own.
#pragma once

#include <filesystem>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

#include "peers/FakeWinUsb.h"
#include "support/FileBytes.h"
#include "support/FreshProcess.h"
#include "support/LogCapture.h"
#include "support/Narrow.h"
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
    const HANDLE file = CreateFileW((L"\\\\?\\" + path).c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
    return file != INVALID_HANDLE_VALUE;
}

// What the owner window is sent and posted: "text;", "peer 1;", "status 42;".
class Owner {
public:
    static HWND Window() { return GetDesktopWindow(); }
    // What it was told since the last call; waits for so much, up to 10 s.
    static std::string Take(size_t length) {
        for (int looks = 0;; ++looks, Sleep(1)) {
            const std::lock_guard lock(s_mutex);
            if (s_told.size() >= length || looks == 10000) return std::exchange(s_told, {});
        }
    }

private:
    static BOOL Note(bool isRight, const std::string& told) {
        const std::lock_guard lock(s_mutex);
        s_told += (isRight ? told : "wrong message") + ";";
        return TRUE;
    }

    static inline std::mutex s_mutex;
    static inline std::string s_told;
    ImportPatch<decltype(&SendMessageW)> m_send{
        kProgram, "SendMessageW", [](HWND, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
            const std::unique_ptr<wchar_t, decltype(&std::free)> text(reinterpret_cast<wchar_t*>(lParam), std::free);
            return Note(message == kUsbProgressMessage, text ? Narrow(text.get()) : "peer " + std::to_string(wParam));
        }};
    ImportPatch<decltype(&PostMessageW)> m_post{
        kProgram, "PostMessageW", [](HWND, UINT message, WPARAM wParam, LPARAM) {
            return Note(message == kUsbStatusMessage, "status " + std::to_string(wParam));
        }};
};

class UsbSession : public testing::Test {
protected:
    void Connect(HWND owner = nullptr) {
        session->SetOwnerWindow(owner);
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
    // What a request gives that waits for the peer: what goes and what comes, in turns.
    template <class Work>
    auto Ask(const Work& work, const std::vector<std::string>& exchange) {
        auto result = std::async(std::launch::async, work);
        for (size_t i = 0; i < exchange.size(); i += 2) {
            EXPECT_EQ(usb.Take(exchange[i].size() / 2), exchange[i]);
            usb.Put(exchange[i + 1]);
        }
        if (result.wait_for(10s) != std::future_status::ready) RunAndEnd([] { FAIL() << "no end"; });
        return result.get();
    }

    ScopedTestDir folder;
    FakeWinUsb usb;
    std::unique_ptr<WinUsbSession> session = std::make_unique<WinUsbSession>();
};
