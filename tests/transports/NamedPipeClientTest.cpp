// The client against a server process that behaves, misbehaves, or is not there.
#include "transports/NamedPipeClient.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "support/FreshProcess.h"
#include "support/ImportPatch.h"
#include "support/LogCapture.h"
#include "transports/HexBytes.h"
#include "transports/PipePeer.h"
#include "transports/UserNames.h"

namespace {

// The text with its terminator as it stands in a message, low byte first, in hexadecimal.
std::string OnTheWire(const std::wstring& text) {
    return ToHex({reinterpret_cast<const char*>(text.c_str()), (text.size() + 1) * sizeof(wchar_t)});
}

using Texts = std::vector<std::wstring>;

Texts Errors(const LogCapture& log) {
    return log.Messages(LogLevel::Error);
}

// Sees each opening of the pipe by the code under test.
class Openings {
public:
    Openings() : m_patch(GetModuleHandleW(nullptr), "CreateFileW", Open) {
        s_count = 0;
        s_last = INVALID_HANDLE_VALUE;
    }

    int Count() const { return s_count; }
    bool IsLastStillOpen() const {
        DWORD flags = 0;
        return GetHandleInformation(s_last, &flags) != FALSE;
    }
    void CloseLast() const { CloseHandle(s_last); }

private:
    static HANDLE WINAPI Open(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD how,
                              DWORD flags, HANDLE pattern) {
        ++s_count;
        EXPECT_STREQ(name, L"\\\\.\\pipe\\bvtnamedpipe");
        EXPECT_EQ(flags, DWORD{SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION}) << "no server acts in our name";
        const auto create = SystemFunction(&CreateFileW, L"kernel32.dll", "CreateFileW");
        return s_last = create(name, access, share, security, how, flags, pattern);
    }

    static inline int s_count = 0;
    static inline HANDLE s_last = nullptr;
    ImportPatch<decltype(&CreateFileW)> m_patch;
};

class NamedPipe : public testing::Test {
protected:
    NamedPipe() { NamedPipeClient::pipeChannelEnabled = true; }
    ~NamedPipe() override { NamedPipeClient::pipeChannelEnabled = false; }
};

}  // namespace

TEST_F(NamedPipe, EachCommandSendsItsMessageAndReadsItsReply) {
    struct Case {
        const wchar_t* answer;
        const wchar_t* message;
        std::function<std::int64_t()> command;
        std::int64_t result;
    };
    const Case cases[] = {
        {L"text=42", L"LAUNCHEXPLORER", NamedPipeClient::LaunchExplorer, 42},
        {L"text=-7windows", L"EXPLOREWINDOW:C:\\a b", [] { return NamedPipeClient::ExploreWindow(L"C:\\a b"); }, -7},
        {L"text=no", L"LAUNCHAPP:", [] { return NamedPipeClient::LaunchApp(L""); }, 0},
        {L"text=1234", L"LAUNCHAPP:\x4E2D\xD83D\xDE00",
         [] { return NamedPipeClient::LaunchApp(L"\x4E2D\xD83D\xDE00"); }, 1234},
        {L"text=D:\\x", L"GETENVVARIABLE:TEMP",
         [] { return NamedPipeClient::GetEnvVariable(L"TEMP") == L"D:\\x" ? 1 : 0; }, 1},
        {L"text=1", L"PLAYSOUND:ding", [] { return NamedPipeClient::PlaySound(L"ding"), 0; }, 0},
        {L"text=1", L"CHANGEBACKGROUND:b.bmp", [] { return NamedPipeClient::ChangeBackground(L"b.bmp"), 0; }, 0},
        {L"text=1", L"SYSCOLOR:5:x", [] { return NamedPipeClient::SetSysColor(5, L"x"), 0; }, 0},
        {L"text=1", L"SYSCOLOR:-1:%s", [] { return NamedPipeClient::SetSysColor(-1, L"%s"), 0; }, 0},
    };
    for (const Case& each : cases) {
        PipePeer peer(each.answer);
        LogCapture log;
        EXPECT_EQ(each.command(), each.result) << OnTheWire(each.message);
        EXPECT_EQ(peer.NextLine(), OnTheWire(each.message));
        EXPECT_EQ(peer.NextLine(), "closed");
        EXPECT_EQ(Errors(log), Texts());
    }
    EXPECT_EQ(OnTheWire(L"A\x4E2D"), "41002d4e0000");
}

TEST_F(NamedPipe, AReplyIsPutTogetherFromItsPiecesAsTexts) {
    const std::wstring piece(512, L'x');
    const struct {
        const wchar_t* answer;
        Texts pieces;
    } cases[] = {
        {L"size=3000", {piece, piece, std::wstring(476, L'x')}},
        {L"size=1024", {piece}},
        {L"size=1025", {piece, L"x"}},
        {L"hex=410042", {L"AB"}},
        {L"hex=4100000042000000", {L"A"}},
        {L"hex=", {L""}},
    };
    for (const auto& each : cases) {
        PipePeer peer(each.answer);
        const LogCapture log;
        const CString reply = NamedPipeClient::GetEnvVariable(L"a");
        Texts expected{L"Enter NamedPipeClient::SendNamedPipeCommand", L"Sending 34 byte message: \"GETENVVARIABLE:a\"",
                       L"\nMessage sent to server, receiving reply as follows:"};
        std::wstring whole;
        for (const std::wstring& text : each.pieces) {
            expected.push_back(text);
            whole += text;
        }
        expected.push_back(L"Leave NamedPipeClient::SendNamedPipeCommand");
        EXPECT_EQ(reply.GetString(), whole);
        EXPECT_EQ(log.Messages(LogLevel::Trace), expected);
        EXPECT_EQ(Errors(log), Texts());
    }
}

TEST_F(NamedPipe, ALongReplyIsReadToItsEndButNotKeptWithoutBound) {
    // A server process would take half a minute for so much.
    const auto previous = Logger().SetSink([](LogLevel, const wchar_t*) {});
    static int s_pieces = 0;
    const PipePeer peer(L"text=x");
    const ImportPatch<decltype(&ReadFile)> patch(GetModuleHandleW(nullptr), "ReadFile",
                                                 [](HANDLE, LPVOID buffer, DWORD bytes, LPDWORD read, LPOVERLAPPED) {
                                                     std::fill_n(static_cast<char*>(buffer), bytes, 'x');
                                                     *read = bytes;
                                                     SetLastError(ERROR_MORE_DATA);
                                                     return ++s_pieces < 200000 ? FALSE : TRUE;
                                                 });
    const CString reply = NamedPipeClient::GetEnvVariable(L"x");
    Logger().SetSink(previous);
    EXPECT_EQ(s_pieces, 200000);
    EXPECT_EQ(reply.GetLength(), 64 * 1024 * 1024);
}

TEST_F(NamedPipe, WhileTheChannelIsOffNoCommandTouchesThePipe) {
    NamedPipeClient::pipeChannelEnabled = false;
    const Openings openings;
    const LogCapture log;
    EXPECT_EQ(NamedPipeClient::LaunchExplorer(), -1);
    EXPECT_EQ(NamedPipeClient::ExploreWindow(L"x"), 0);
    EXPECT_EQ(NamedPipeClient::LaunchApp(L"x"), -1);
    EXPECT_TRUE(NamedPipeClient::GetEnvVariable(L"PATH").IsEmpty());
    EXPECT_TRUE(NamedPipeClient::GetUserName().IsEmpty());
    EXPECT_TRUE(NamedPipeClient::GetUserNameEx().IsEmpty());
    NamedPipeClient::PlaySound(L"x");
    NamedPipeClient::ChangeBackground(L"x");
    NamedPipeClient::SetSysColor(1, L"x");
    EXPECT_EQ(openings.Count(), 0);
    EXPECT_TRUE(log.GetLines().empty());
}

TEST_F(NamedPipe, UserNamesAreKeptOnceTheyAreKnown) {
    EXPECT_IN_FRESH_PROCESS([] {
        PipePeer peer(L"hex= text=ann text=CORP\\ann");
        const auto next = [&] {
            while (peer.NextLine() != "ready") continue;
        };
        EXPECT_EQ(NamedPipeClient::GetUserName(), L"");
        EXPECT_EQ(peer.NextLine(), OnTheWire(L"GETUSERNAME"));
        next();
        EXPECT_EQ(CurrentUserName(), L"ann") << "an empty reply is asked for again";
        next();
        EXPECT_EQ(CurrentQualifiedUserName(), L"CORP\\ann");
        EXPECT_EQ(peer.NextLine(), OnTheWire(L"GETUSERNAMEEX"));
        EXPECT_EQ(peer.NextLine(), "closed");
        const Openings openings;
        EXPECT_EQ(NamedPipeClient::GetUserName(), L"ann");
        NamedPipeClient::pipeChannelEnabled = false;
        EXPECT_EQ(NamedPipeClient::GetUserNameEx(), L"CORP\\ann");
        EXPECT_EQ(openings.Count(), 0);
        // Off, the system is asked, which knows this process's user and no Ann.
        const CString local = CurrentUserName();
        EXPECT_EQ(local, _wgetenv(L"USERNAME"));
        EXPECT_EQ(CurrentQualifiedUserName().Right(local.GetLength() + 1), L"\\" + local);
    });
}

TEST_F(NamedPipe, AServerThatIsNotThereOrStaysBusyIsGivenUp) {
    {
        const LogCapture log;
        EXPECT_EQ(NamedPipeClient::LaunchApp(L"x"), 0);
        EXPECT_EQ(Errors(log), (Texts{L"Could not open pipe. Error=2"}));
    }
    PipePeer peer(L"silent");
    const HANDLE other = CreateFileW(L"\\\\.\\pipe\\bvtnamedpipe", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(other, INVALID_HANDLE_VALUE);
    const Openings openings;
    {
        const LogCapture log;
        EXPECT_EQ(NamedPipeClient::LaunchExplorer(), 0);
        EXPECT_EQ(openings.Count(), 1);
        EXPECT_EQ(Errors(log), (Texts{L"Could not open pipe: 200 millisecond wait timed out."}));
    }
    // Each time that the pipe becomes free, somebody else is faster.
    const ImportPatch<decltype(&WaitNamedPipeW)> patch(GetModuleHandleW(nullptr), "WaitNamedPipeW",
                                                       [](LPCWSTR, DWORD) { return TRUE; });
    const LogCapture log;
    EXPECT_EQ(NamedPipeClient::LaunchExplorer(), 0);
    EXPECT_EQ(openings.Count(), 1 + 5);
    EXPECT_EQ(Errors(log), Texts());
    CloseHandle(other);
}

TEST_F(NamedPipe, AConnectionThatFailsBeforeItsMessageStaysOpen) {
    {
        PipePeer peer(L"bytes");
        const Openings openings;
        const LogCapture log;
        EXPECT_EQ(NamedPipeClient::LaunchExplorer(), 0);
        EXPECT_EQ(Errors(log), (Texts{L"SetNamedPipeHandleState failed. GLE=87\n"}));
        EXPECT_TRUE(openings.IsLastStillOpen());
        openings.CloseLast();
    }
    // The server goes away between the two calls.
    PipePeer peer(L"leave");
    static PipePeer* s_peer = nullptr;
    const ImportPatch<decltype(&SetNamedPipeHandleState)> patch(
        GetModuleHandleW(nullptr), "SetNamedPipeHandleState",
        [](HANDLE pipe, LPDWORD mode, LPDWORD count, LPDWORD delay) {
            const auto set = SystemFunction(&SetNamedPipeHandleState, L"kernel32.dll", "SetNamedPipeHandleState");
            const BOOL isSet = set(pipe, mode, count, delay);
            s_peer->Tell();
            EXPECT_EQ(s_peer->NextLine(), "closed");
            return isSet;
        });
    s_peer = &peer;
    const Openings openings;
    const LogCapture log;
    EXPECT_EQ(NamedPipeClient::LaunchExplorer(), 0);
    EXPECT_EQ(Errors(log), (Texts{L"WriteFile to pipe failed. Error=233\n"}));
    EXPECT_TRUE(openings.IsLastStillOpen());
    openings.CloseLast();
}

TEST_F(NamedPipe, AServerThatGoesHalfWayLeavesWhatWasRead) {
    PipePeer peer(L"half=3000");
    static std::vector<std::wstring> s_errors;
    s_errors.clear();
    const auto previous = Logger().SetSink([&](LogLevel level, const wchar_t* message) {
        if (level == LogLevel::Error) s_errors.emplace_back(message);
        if (message[0] != L'x') return;
        EXPECT_EQ(peer.NextLine(), OnTheWire(L"GETENVVARIABLE:x"));
        peer.Tell();
        EXPECT_EQ(peer.NextLine(), "closed");
    });
    const Openings openings;
    EXPECT_EQ(NamedPipeClient::GetEnvVariable(L"x").GetString(), std::wstring(512, L'x'));
    Logger().SetSink(previous);
    ASSERT_EQ(s_errors.size(), 1u);
    EXPECT_TRUE(s_errors[0].starts_with(L"ReadFile from pipe failed. Error=") && s_errors[0].ends_with(L'\n'));
    EXPECT_FALSE(openings.IsLastStillOpen());
}

TEST_F(NamedPipe, ASilentServerHoldsTheCallerUntilItGoes) {
    PipePeer peer(L"silent");
    const Openings openings;
    const LogCapture log;
    auto call = std::async(std::launch::async, NamedPipeClient::LaunchExplorer);
    EXPECT_EQ(peer.NextLine(), OnTheWire(L"LAUNCHEXPLORER"));
    // Longer than the only wait that the client limits.
    EXPECT_EQ(call.wait_for(std::chrono::milliseconds(300)), std::future_status::timeout);
    peer.Tell();
    EXPECT_EQ(call.get(), 0);
    ASSERT_EQ(Errors(log).size(), 1u);
    EXPECT_TRUE(log.Contains(LogLevel::Error, L"ReadFile from pipe failed. Error="));
    EXPECT_FALSE(openings.IsLastStillOpen());
}
