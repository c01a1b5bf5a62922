// One session of this process and a peer that is the test. A closed session is the last of its process, so each test
// has a process of its own.
#include <filesystem>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>

#include "support/FileBytes.h"
#include "support/FreshProcess.h"
#include "support/LogCapture.h"
#include "transports/FakeWinUsb.h"
#include "transports/HexBytes.h"
#include "transports/WinUsbSession.h"

namespace {

using namespace std::chrono_literals;

constexpr auto kLongest = 10s;
constexpr const char* kNoHandle = "ffffffffffffffff";

// As a peer sends it: its length and its characters.
std::string OnTheWire(const std::wstring& name) {
    const UINT32 bytes = static_cast<UINT32>(name.size() * sizeof(wchar_t));
    return ToHex({reinterpret_cast<const char*>(&bytes), sizeof(bytes)}) +
           ToHex({reinterpret_cast<const char*>(name.data()), bytes});
}

bool CanWrite(const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
    return file != INVALID_HANDLE_VALUE;
}

class UsbSession : public testing::Test {
protected:
    void Connect() {
        session->SetBaseDirectory(folder.Path().c_str());
        ASSERT_EQ(session->Connect(usb.Device(), false), 0U);
    }
    // The peer opens a file; its handle as it came.
    std::string Open(const std::wstring& name) {
        usb.Put("35120000" + OnTheWire(name));
        EXPECT_EQ(usb.Take(4), "36120000");
        return usb.Take(8);
    }
    void Close(const std::string& handle) {
        usb.Put("3d120000" + handle);
        EXPECT_EQ(usb.Take(4), "3e120000");
    }

    ScopedTestDir folder;
    FakeWinUsb usb;
    std::unique_ptr<WinUsbSession> session = std::make_unique<WinUsbSession>();
};

}  // namespace

// The system takes its time with the second thread: it has not begun when the greeting has failed.
TEST_F(UsbSession, EndsAThreadOnlyWhenItHasBegun) {
    EXPECT_IN_FRESH_PROCESS([&] {
        static int s_started = 0;
        static int s_ended = 0;
        const ImportPatch<decltype(&ResumeThread)> late(LoadedModule(L"framework.dll"), "ResumeThread",
                                                        [](HANDLE thread) -> DWORD {
                                                            if (++s_started == 1) return ResumeThread(thread);
                                                            std::thread([thread] {
                                                                Sleep(200);
                                                                ResumeThread(thread);
                                                            }).detach();
                                                            return 1;
                                                        });
        const ImportPatch<decltype(&TerminateThread)> end(
            GetModuleHandleW(nullptr), "TerminateThread", [](HANDLE thread, DWORD code) {
                EXPECT_EQ(SuspendThread(thread), 0U) << "not yet begun";
                ++s_ended;
                return SystemFunction(&TerminateThread, L"kernel32.dll", "TerminateThread")(thread, code);
            });
        usb.writeError = ERROR_GEN_FAILURE;
        const LogCapture log;
        EXPECT_EQ(session->Connect(usb.Device(), true), DWORD{ERROR_PIPE_NOT_CONNECTED});
        EXPECT_EQ(s_ended, 1);
        EXPECT_TRUE(log.Contains(LogLevel::Error, L"[WinUsbSession::SendDataToWinUsb] Send Error:31"));
        EXPECT_EQ(session->OpenDataFile(L"a"), INVALID_HANDLE_VALUE);
    });
}

TEST_F(UsbSession, ClosingEndsTheWaitForAnAnswerThatNeverComesOrNeverEnds) {
    for (const char* answer : {"", "38120000 03000000 41"}) {
        EXPECT_IN_FRESH_PROCESS([&] {
            Connect();
            char buffer[3] = {};
            auto read = std::async(std::launch::async, [&] { return session->ReadData(nullptr, buffer, 3); });
            EXPECT_EQ(usb.Take(16), "37120000000000000000000003000000");
            usb.Put(answer);
            session->CloseSession();
            ASSERT_EQ(read.wait_for(kLongest), std::future_status::ready);
            EXPECT_EQ(read.get(), 0U);
            EXPECT_EQ(session->DriveFreeSpace(), 0U);
            session.reset();
        });
    }
}

// The event is shared with every process of the user's session: set or reset by another one, it changes nothing.
TEST_F(UsbSession, AnswersAreTakenWhateverOthersDoToTheEvent) {
    EXPECT_IN_FRESH_PROCESS([&] {
        Connect();
        const HANDLE shared = OpenEventW(EVENT_ALL_ACCESS, FALSE, L"file_event");
        for (const bool isSet : {true, false}) {
            auto space = std::async(std::launch::async, [&] { return session->DriveFreeSpace(); });
            EXPECT_EQ(usb.Take(4), "45120000");
            if (isSet) SetEvent(shared);
            EXPECT_EQ(space.wait_for(50ms), std::future_status::timeout);
            usb.Put("46120000 0700000000000000");
            if (!isSet) ResetEvent(shared);
            EXPECT_EQ(space.get(), 7U);
        }
    });
}

// The request cannot be sent; before anybody looks, the answer to the peer's greeting goes out.
TEST_F(UsbSession, AFailureStaysWhateverIsSentAfterwards) {
    EXPECT_IN_FRESH_PROCESS([&] {
        Connect();
        usb.writeError = ERROR_GEN_FAILURE;
        const auto previous = Logger().SetSink([&](LogLevel level, const wchar_t* message) {
            if (level != LogLevel::Error || std::wstring_view(message).find(L"Send Error:31") == std::wstring::npos)
                return;
            usb.writeError = 0;
            usb.Put("33120000");
            EXPECT_EQ(usb.Take(4), "34120000");
        });
        auto write =
            std::async(std::launch::async, [&] { return CauseOf([&] { session->WriteData(nullptr, "a", 1); }); });
        ASSERT_EQ(write.wait_for(kLongest), std::future_status::ready);
        EXPECT_EQ(write.get(), ERROR_GEN_FAILURE);
        EXPECT_EQ(session->DriveFreeSpace(), 0U);
        Logger().SetSink(previous);
    });
}

TEST_F(UsbSession, FilesOfThePeerAreClosedByItsCloseAndByTheEndOfTheSession) {
    for (const bool isClosed : {true, false}) {
        EXPECT_IN_FRESH_PROCESS([&] {
            Connect();
            const std::wstring names[] = {L"closed", L"left", L"left\\too"};
            const std::string handle = Open(names[0]);
            Open(L"new\\" + names[1]);
            EXPECT_EQ(Open(L"?"), kNoHandle);
            EXPECT_FALSE(CanWrite(folder.Path(L"closed")));
            Close(handle);
            EXPECT_TRUE(CanWrite(folder.Path(L"closed")));
            EXPECT_FALSE(CanWrite(folder.Path(L"new\\left")));
            if (isClosed) session->CloseSession();
            session.reset();
            EXPECT_TRUE(CanWrite(folder.Path(L"new\\left")));
            EXPECT_TRUE(DeleteFileW(folder.Path(L"closed").c_str()) && DeleteFileW(folder.Path(L"new\\left").c_str()));
        });
    }
}

TEST_F(UsbSession, APeerThatTakesNothingTenTimesInARowHasAFullDisk) {
    EXPECT_IN_FRESH_PROCESS([&] {
        Connect();
        auto write =
            std::async(std::launch::async, [&] { return CauseOf([&] { session->WriteData(nullptr, "ab", 2); }); });
        const auto take = [&](int times, const std::string& request, const std::string& answer) {
            for (int i = 0; i < times; ++i) {
                EXPECT_EQ(usb.Take(request.size() / 2), request) << i;
                usb.Put("3a120000" + answer);
            }
        };
        take(9, "391200000000000000000000020000006162", "00000000");
        take(1, "391200000000000000000000020000006162", "01000000");
        take(10, "3912000000000000000000000100000062", "00000000");
        ASSERT_EQ(write.wait_for(kLongest), std::future_status::ready);
        EXPECT_EQ(write.get(), ERROR_DISK_FULL);
        auto next = std::async(std::launch::async, [&] { session->CloseFile(nullptr); });
        EXPECT_EQ(usb.Take(12), "3d1200000000000000000000");
        usb.Put("3e120000");
    });
}

TEST_F(UsbSession, NamesAreJoinedAtAnyLengthAndStayBelowTheirDirectory) {
    EXPECT_IN_FRESH_PROCESS([&] {
        const std::wstring deep = std::wstring(120, L'd') + L"\\" + std::wstring(120, L'e');
        const std::wstring inside = folder.Path(L"in");
        std::filesystem::create_directories(inside);
        const struct {
            std::wstring name;
            bool isTaken;  // whether or not the host lets names leave
        } cases[] = {
            {deep + L"\\f", true}, {L"a\\..\\f", true},        {L"..\\f", false},
            {L"a/../../f", false}, {folder.Path(L"f"), false},
        };
        Connect();
        session->SetBaseDirectory(inside.c_str());
        for (const bool mayLeave : {false, true}) {
            session->SetMayLeaveDirectories(mayLeave);
            for (const auto& c : cases) {
                const LogCapture log;
                const std::string handle = Open(c.name);
                EXPECT_EQ(handle != kNoHandle, mayLeave || c.isTaken) << c.name;
                EXPECT_EQ(log.Messages(LogLevel::Error).size(), mayLeave || c.isTaken ? 0U : 1U);
                if (handle != kNoHandle) Close(handle);
                usb.Put("41120000" + OnTheWire(c.name.substr(0, c.name.size() - 2)));
                EXPECT_EQ(usb.Take(8), mayLeave || c.isTaken ? "4212000001000000" : "4212000000000000") << c.name;
            }
            EXPECT_EQ(std::filesystem::exists(folder.Path(L"f")), mayLeave);
        }
    });
}

// The reading thread waits for the window of the thread that closes the session.
TEST_F(UsbSession, ClosingHandlesWhatWasSentToTheCallersWindow) {
    EXPECT_IN_FRESH_PROCESS([&] {
        static int s_told = 0;
        WNDCLASSW windowClass{};
        windowClass.lpszClassName = L"owner";
        windowClass.lpfnWndProc = [](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
            if (message != kUsbProgressMessage) return DefWindowProcW(window, message, wParam, lParam);
            return ++s_told;
        };
        RegisterClassW(&windowClass);
        session->SetOwnerWindow(
            CreateWindowW(L"owner", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr));
        Connect();
        usb.Put("33120000");
        while (HIWORD(GetQueueStatus(QS_SENDMESSAGE)) == 0) Sleep(1);
        session->CloseSession();
        EXPECT_EQ(s_told, 1);
    });
}
