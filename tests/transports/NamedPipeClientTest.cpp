// The client against a server that behaves, misbehaves, or is not there.
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
#include "transports/PipeServer.h"
#include "transports/UserNames.h"

namespace {

using Texts = std::vector<std::wstring>;

const HMODULE kProgram = GetModuleHandleW(nullptr);

// The text with its terminator, as it stands in a message.
std::string OnTheWire(const std::wstring& text) {
    return ToHex(Utf16(text)) + "0000";
}

Texts Errors(const LogCapture& log) {
    return log.Messages(LogLevel::Error);
}

// Sees each opening of the pipe by the code under test.
class Openings {
public:
    Openings() : m_patch(kProgram, "CreateFileW", Open) { s_count = 0; }

    int Count() const { return s_count; }
    // Closes the last one; false if that has been done.
    bool CloseLast() const { return CloseHandle(s_last) != FALSE; }

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
    const std::wstring piece(512, L'x');
    const auto variable = [](const std::wstring& value) {
        return [value] { return NamedPipeClient::GetEnvVariable(L"a") == value.c_str() ? 1 : 0; };
    };
    const struct {
        std::string answer;
        std::wstring message;
        std::function<std::int64_t()> command;
        std::int64_t result;
        Texts pieces;  // as they are logged
    } cases[] = {
        {Utf16(L"42"), L"LAUNCHEXPLORER", NamedPipeClient::LaunchExplorer, 42, {L"42"}},
        {Utf16(L"-7w"), L"EXPLOREWINDOW:C:\\b", [] { return NamedPipeClient::ExploreWindow(L"C:\\b"); }, -7, {L"-7w"}},
        {Utf16(L"no"),
         L"LAUNCHAPP:\x4E2D\xD83D\xDE00",
         [] { return NamedPipeClient::LaunchApp(L"\x4E2D\xD83D\xDE00"); },
         0,
         {L"no"}},
        {Utf16(L"1"), L"PLAYSOUND:ding", [] { return NamedPipeClient::PlaySound(L"ding"), 0; }, 0, {L"1"}},
        {Utf16(L"1"), L"CHANGEBACKGROUND:b", [] { return NamedPipeClient::ChangeBackground(L"b"), 0; }, 0, {L"1"}},
        {Utf16(L"1"), L"SYSCOLOR:-1:%s", [] { return NamedPipeClient::SetSysColor(-1, L"%s"), 0; }, 0, {L"1"}},
        {Utf16(piece + piece + L"y"), L"GETENVVARIABLE:a", variable(piece + piece + L"y"), 1, {piece, piece, L"y"}},
        {Utf16(piece), L"GETENVVARIABLE:a", variable(piece), 1, {piece}},
        {Utf16(piece) + "y", L"GETENVVARIABLE:a", variable(piece + L"y"), 1, {piece, L"y"}},
        {Utf16({L'A', 0, L'B'}), L"GETENVVARIABLE:a", variable(L"A"), 1, {L"A"}},
        {"", L"GETENVVARIABLE:a", variable(L""), 1, {L""}},
    };
    for (const auto& c : cases) {
        PipeServer server;
        server.Answer(c.answer);
        const LogCapture log;
        EXPECT_EQ(c.command(), c.result) << c.message;
        EXPECT_EQ(server.Message(), OnTheWire(c.message));
        Texts expected{
            L"Enter NamedPipeClient::SendNamedPipeCommand",
            L"Sending " + std::to_wstring(c.message.size() * 2 + 2) + L" byte message: \"" + c.message + L"\"",
            L"\nMessage sent to server, receiving reply as follows:"};
        expected.insert(expected.end(), c.pieces.begin(), c.pieces.end());
        expected.emplace_back(L"Leave NamedPipeClient::SendNamedPipeCommand");
        EXPECT_EQ(log.Messages(LogLevel::Trace), expected);
        EXPECT_EQ(Errors(log), Texts());
    }
}

TEST_F(NamedPipe, ALongReplyIsReadToItsEndButNotKeptWithoutBound) {
    const auto previous = Logger().SetSink([](LogLevel, const wchar_t*) {});
    static int s_pieces = 0;
    const PipeServer server;
    const ImportPatch<decltype(&ReadFile)> patch(kProgram, "ReadFile",
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

TEST_F(NamedPipe, UserNamesAreKeptOnceTheyAreKnownAndWithoutTheChannelNothingIsAsked) {
    EXPECT_IN_FRESH_PROCESS([] {
        const auto ask = [](const wchar_t* answer, const wchar_t* message, const auto& name) {
            PipeServer server;
            server.Answer(Utf16(answer));
            EXPECT_EQ(name(), answer);
            EXPECT_EQ(server.Message(), OnTheWire(message));
        };
        ask(L"", L"GETUSERNAME", NamedPipeClient::GetUserName);
        ask(L"ann", L"GETUSERNAME", CurrentUserName);  // an empty reply is asked for again
        ask(L"CORP\\ann", L"GETUSERNAMEEX", CurrentQualifiedUserName);
        const Openings openings;
        EXPECT_EQ(NamedPipeClient::GetUserName(), L"ann");
        NamedPipeClient::pipeChannelEnabled = false;
        EXPECT_EQ(NamedPipeClient::GetUserNameEx(), L"CORP\\ann");
        EXPECT_EQ(NamedPipeClient::LaunchExplorer() + NamedPipeClient::LaunchApp(L"x"), -2);
        EXPECT_EQ(NamedPipeClient::ExploreWindow(L"x"), 0);
        EXPECT_TRUE(NamedPipeClient::GetEnvVariable(L"PATH").IsEmpty());
        NamedPipeClient::PlaySound(L"x");
        NamedPipeClient::ChangeBackground(L"x");
        NamedPipeClient::SetSysColor(1, L"x");
        EXPECT_EQ(openings.Count(), 0);
        // Off, the system is asked, which knows this process's user and no Ann.
        const CString local = CurrentUserName();
        EXPECT_EQ(local, _wgetenv(L"USERNAME"));
        EXPECT_EQ(CurrentQualifiedUserName().Right(local.GetLength() + 1), L"\\" + local);
        const ImportPatch<decltype(&GetUserNameW)> longest(kProgram, "GetUserNameW",
                                                           [](LPWSTR name, LPDWORD size) -> BOOL {
                                                               if (*size < 257) return FALSE;
                                                               std::fill_n(name, 256, L'u')[0] = 0;
                                                               return TRUE;
                                                           });
        EXPECT_EQ(CurrentUserName().GetLength(), 256);
    });
}

TEST_F(NamedPipe, AServerThatIsNotThereStaysBusyOrFailsIsGivenUpAndTold) {
    const auto fails = [](int opens, const Texts& errors) {
        const Openings openings;
        const LogCapture log;
        EXPECT_EQ(NamedPipeClient::LaunchExplorer(), 0);
        EXPECT_EQ(openings.Count(), opens);
        EXPECT_EQ(Errors(log), errors);
        return openings.CloseLast();  // whether the connection has stayed open
    };
    fails(1, {L"Could not open pipe. Error=2"});
    {
        const PipeServer server;
        const CFile other(L"\\\\.\\pipe\\bvtnamedpipe", CFile::modeRead | CFile::shareExclusive);
        fails(1, {L"Could not open pipe: 200 millisecond wait timed out."});
        // Each time that the pipe becomes free, somebody else is faster.
        const ImportPatch<decltype(&WaitNamedPipeW)> patch(kProgram, "WaitNamedPipeW",
                                                           [](LPCWSTR, DWORD) { return TRUE; });
        fails(5, {});
    }
    {
        const PipeServer server(PIPE_TYPE_BYTE);
        EXPECT_TRUE(fails(1, {L"SetNamedPipeHandleState failed. GLE=87\n"}));
    }
    // The server goes away between the two calls.
    static PipeServer s_server;
    const ImportPatch<decltype(&SetNamedPipeHandleState)> patch(
        kProgram, "SetNamedPipeHandleState", [](HANDLE pipe, LPDWORD mode, LPDWORD count, LPDWORD delay) {
            const auto set = SystemFunction(&SetNamedPipeHandleState, L"kernel32.dll", "SetNamedPipeHandleState");
            const BOOL isSet = set(pipe, mode, count, delay);
            s_server.Close();
            return isSet;
        });
    EXPECT_TRUE(fails(1, {L"WriteFile to pipe failed. Error=233\n"}));
}

TEST_F(NamedPipe, ASilentServerHoldsTheCallerUntilItGoesAndWhatWasReadStays) {
    for (const size_t characters : {0U, 1500U}) {
        PipeServer server;
        Texts errors;
        const auto previous = Logger().SetSink([&](LogLevel level, const wchar_t* message) {
            if (level == LogLevel::Error) errors.emplace_back(message);
            if (message[0] == L'x') server.Close();  // half way: the first piece has been read
        });
        const Openings openings;
        auto call = std::async(std::launch::async, [] { return NamedPipeClient::GetEnvVariable(L"x"); });
        EXPECT_EQ(server.Read(), OnTheWire(L"GETENVVARIABLE:x"));
        if (characters == 0) {
            // Longer than the only wait that the client limits.
            EXPECT_EQ(call.wait_for(std::chrono::milliseconds(300)), std::future_status::timeout);
            server.Close();
        } else {
            server.Write(Utf16(std::wstring(characters, L'x')));
        }
        EXPECT_EQ(call.get().GetString(), std::wstring(std::min<size_t>(characters, 512), L'x'));
        Logger().SetSink(previous);
        ASSERT_EQ(errors.size(), 1U);
        EXPECT_TRUE(errors[0].starts_with(L"ReadFile from pipe failed. Error=") && errors[0].ends_with(L'\n'));
        EXPECT_FALSE(openings.CloseLast());
    }
}
