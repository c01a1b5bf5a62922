// How a session ends, and what must not hang meanwhile.
#include "transports/UsbSessionFixture.h"

// The system takes its time with the second thread: it has not begun when the greeting has failed, nor when it is
// looked for.
TEST_F(UsbSession, EndsAThreadOnlyWhenItHasBegun) {
    EXPECT_IN_FRESH_PROCESS([&] {
        static std::atomic<int> s_looks = 0;
        static int s_started = 0;
        static int s_ended = 0;
        const ImportPatch<decltype(&ResumeThread)> late(
            LoadedModule(L"RegistryRulesFramework.dll"), "ResumeThread", [](HANDLE thread) -> DWORD {
                if (++s_started == 1) return ResumeThread(thread);
                std::thread([thread] {
                    while (s_looks < 300) Sleep(1);  // more than it takes to find a thread at rest
                    ResumeThread(thread);
                }).detach();
                return 1;
            });
        const ImportPatch<decltype(&MsgWaitForMultipleObjectsEx)> look(
            kProgram, "MsgWaitForMultipleObjectsEx",
            [](DWORD count, const HANDLE* handles, DWORD milliseconds, DWORD mask, DWORD flags) {
                if (++s_looks <= 300) return DWORD{WAIT_TIMEOUT};
                const auto* const name = "MsgWaitForMultipleObjectsEx";
                return SystemFunction(&MsgWaitForMultipleObjectsEx, L"user32.dll", name)(count, handles, milliseconds,
                                                                                         mask, flags);
            });
        const ImportPatch<decltype(&TerminateThread)> end(kProgram, "TerminateThread", [](HANDLE thread, DWORD code) {
            EXPECT_EQ(SuspendThread(thread), 0U) << "not yet begun";
            ++s_ended;
            return SystemFunction(&TerminateThread, L"kernel32.dll", "TerminateThread")(thread, code);
        });
        usb.writeError = ERROR_GEN_FAILURE;
        EXPECT_EQ(session->Connect(usb.Device(), true), DWORD{ERROR_PIPE_NOT_CONNECTED});
        EXPECT_EQ(s_ended, 1);
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
        });
    }
}

// The event is shared with every process of the user's session: what others do to it changes nothing.
TEST_F(UsbSession, AnswersAreTakenWhateverOthersDoToTheEvent) {
    EXPECT_IN_FRESH_PROCESS([&] {
        Connect();
        const HANDLE shared = OpenEventW(EVENT_ALL_ACCESS, FALSE, L"file_event");
        auto space = std::async(std::launch::async, [&] { return session->DriveFreeSpace(); });
        Exchange("", "45120000");
        SetEvent(shared);
        EXPECT_EQ(space.wait_for(50ms), std::future_status::timeout);
        ResetEvent(shared);
        // Somebody resets it again before anybody has seen it.
        const ImportPatch<decltype(&SetEvent)> unseen(kProgram, "SetEvent", [](HANDLE) { return TRUE; });
        usb.Put("46120000 0700000000000000");
        if (space.wait_for(10s) != std::future_status::ready) RunAndEnd([] { FAIL() << "no end"; });
        EXPECT_EQ(space.get(), 7U);
    });
}

// The request cannot be sent; before anybody looks, the answer to the peer's greeting goes out.
TEST_F(UsbSession, AFailureStaysWhateverIsSentAfterwards) {
    EXPECT_IN_FRESH_PROCESS([&] {
        Connect();
        usb.writeError = ERROR_GEN_FAILURE;
        const auto previous = Logger().SetSink([&](LogLevel, const wchar_t* message) {
            if (std::wstring_view(message) != L"[WinUsbSession::SendDataToWinUsb] Send Error:31") return;
            usb.writeError = 0;
            Exchange("33120000", "34120000");
        });
        EXPECT_EQ(Ask([&] { return CauseOf([&] { session->WriteData(nullptr, "a", 1); }); }, {}), ERROR_GEN_FAILURE);
        EXPECT_EQ(session->DriveFreeSpace(), 0U);
        Logger().SetSink(previous);
    });
}

// The reading thread waits for a window of the thread that closes the session.
TEST_F(UsbSession, ClosingHandlesWhatWasSentToTheCallersWindow) {
    EXPECT_IN_FRESH_PROCESS([&] {
        static int s_told = 0;
        const HWND window = CreateWindowW(L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        const WNDPROC handle = [](HWND owner, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
            return message == kUsbProgressMessage ? ++s_told : DefWindowProcW(owner, message, wParam, lParam);
        };
        SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(handle));
        Connect(window);
        usb.Put("33120000");
        while (HIWORD(GetQueueStatus(QS_SENDMESSAGE)) == 0) Sleep(1);
        session->CloseSession();
        EXPECT_EQ(s_told, 1);
    });
}
