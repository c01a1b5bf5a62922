// How a session ends, and what must not hang meanwhile.
#include "transports/UsbSessionFixture.h"

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
        const ImportPatch<decltype(&TerminateThread)> end(kProgram, "TerminateThread", [](HANDLE thread, DWORD code) {
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
            Exchange("", "37120000000000000000000003000000");
            usb.Put(answer);
            session->CloseSession();
            EXPECT_EQ(read.wait_for(10s), std::future_status::ready);
            EXPECT_EQ(session->DriveFreeSpace(), 0U);
            EXPECT_EQ(usb.calls.substr(usb.calls.size() - 8), "free 00;");
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
            Exchange("", "45120000");
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
        const auto previous = Logger().SetSink([&](LogLevel, const wchar_t* message) {
            if (std::wstring_view(message).find(L"Send Error:31") == std::wstring::npos) return;
            usb.writeError = 0;
            Exchange("33120000", "34120000");
        });
        EXPECT_EQ(Ask([&] { return CauseOf([&] { session->WriteData(nullptr, "a", 1); }); }, "", ""),
                  ERROR_GEN_FAILURE);
        EXPECT_EQ(session->DriveFreeSpace(), 0U);
        Logger().SetSink(previous);
    });
}

TEST_F(UsbSession, FilesOfThePeerAreClosedByItsCloseAndByTheEndOfTheSession) {
    for (const bool isClosed : {true, false}) {
        EXPECT_IN_FRESH_PROCESS([&] {
            Connect();
            const std::wstring closed = folder.Path(L"closed");
            const std::wstring left = folder.Path(L"new\\left");
            const std::string handle = Open(L"closed");
            Open(L"new\\left");
            EXPECT_EQ(Open(L"?"), kNone);
            EXPECT_FALSE(CanWrite(closed));
            Exchange("3d120000" + handle, "3e120000");
            EXPECT_TRUE(CanWrite(closed) && DeleteFileW(closed.c_str()));
            EXPECT_FALSE(CanWrite(left));
            if (isClosed) session->CloseSession();
            session.reset();
            EXPECT_TRUE(CanWrite(left) && DeleteFileW(left.c_str()));
        });
    }
}

TEST_F(UsbSession, APeerThatTakesNothingTenTimesInARowHasAFullDisk) {
    EXPECT_IN_FRESH_PROCESS([&] {
        Connect();
        auto write =
            std::async(std::launch::async, [&] { return CauseOf([&] { session->WriteData(nullptr, "ab", 2); }); });
        for (int i = 0; i < 20; ++i) {
            const bool isFirstByte = i < 10;
            Exchange("", isFirstByte ? "391200000000000000000000020000006162" : "3912000000000000000000000100000062");
            usb.Put(i == 9 ? "3a120000 01000000" : "3a120000 00000000");
        }
        EXPECT_EQ(write.get(), ERROR_DISK_FULL);
        Ask([&] { return session->CloseFile(nullptr), 0; }, "3d1200000000000000000000", "3e120000");
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
                EXPECT_EQ(handle != kNone, mayLeave || c.isTaken) << c.name;
                EXPECT_EQ(log.Messages(LogLevel::Error).size(), mayLeave || c.isTaken ? 0U : 1U);
                if (handle != kNone) Exchange("3d120000" + handle, "3e120000");
                Exchange("41120000" + OnTheWire(c.name.substr(0, c.name.size() - 2)),
                         mayLeave || c.isTaken ? "4212000001000000" : "4212000000000000");
            }
            EXPECT_EQ(std::filesystem::exists(folder.Path(L"f")), mayLeave);
        }
    });
}

// The reading thread waits for a window of the thread that closes the session.
TEST_F(UsbSession, ClosingHandlesWhatWasSentToTheCallersWindow) {
    EXPECT_IN_FRESH_PROCESS([&] {
        static int s_told = 0;
        WNDCLASSW windowClass{};
        windowClass.lpszClassName = L"closing owner";
        windowClass.lpfnWndProc = [](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
            return message == kUsbProgressMessage ? ++s_told : DefWindowProcW(window, message, wParam, lParam);
        };
        RegisterClassW(&windowClass);
        session->SetOwnerWindow(
            CreateWindowW(L"closing owner", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr));
        Connect();
        usb.Put("33120000");
        while (HIWORD(GetQueueStatus(QS_SENDMESSAGE)) == 0) Sleep(1);
        session->CloseSession();
        EXPECT_EQ(s_told, 1);
    });
}
