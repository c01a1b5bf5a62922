#include "transports/NamedPipeClient.h"

#include <cwchar>

#include "siblings/coresv/LogMethodEntryExit.h"

namespace {

constexpr wchar_t kPipeName[] = L"\\\\.\\pipe\\bvtnamedpipe";
constexpr int kMostOpens = 5;
constexpr DWORD kBusyWaitMilliseconds = 200;
constexpr DWORD kPieceBytes = 1024;
// The companion decides how long its reply is, but not how much memory that takes here.
constexpr int kMostReplyCharacters = 64 * 1024 * 1024;

// INVALID_HANDLE_VALUE when there is no connection, the reason being logged but for the last round.
HANDLE OpenPipe() {
    for (int round = 0; round < kMostOpens; ++round) {
        // Whoever creates the pipe first is its server. It may see who we are, but not act as us.
        const HANDLE pipe = CreateFileW(kPipeName, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                        SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr);
        if (pipe != INVALID_HANDLE_VALUE) return pipe;
        const DWORD error = GetLastError();
        if (error != ERROR_PIPE_BUSY) {
            Logger().LogErrorMessageFormat(L"Could not open pipe. Error=%d", error);
            break;
        }
        if (!WaitNamedPipeW(kPipeName, kBusyWaitMilliseconds)) {
            Logger().LogErrorMessage(L"Could not open pipe: 200 millisecond wait timed out.");
            break;
        }
    }
    return INVALID_HANDLE_VALUE;
}

bool WriteCommand(HANDLE pipe, const CString& message, DWORD bytes) {
    DWORD mode = PIPE_READMODE_MESSAGE;
    if (!SetNamedPipeHandleState(pipe, &mode, nullptr, nullptr)) {
        Logger().LogErrorMessageFormat(L"SetNamedPipeHandleState failed. GLE=%d\n", GetLastError());
        return false;
    }
    DWORD written = 0;
    if (!WriteFile(pipe, message.GetString(), bytes, &written, nullptr)) {
        Logger().LogErrorMessageFormat(L"WriteFile to pipe failed. Error=%d\n", GetLastError());
        return false;
    }
    return true;
}

void ReadReply(HANDLE pipe, CString* reply) {
    for (bool isWhole = false; !isWhole;) {
        // Zeros behind the piece end its text, also after an odd count of bytes.
        wchar_t piece[kPieceBytes / sizeof(wchar_t) + 1] = {};
        DWORD bytes = 0;
        isWhole = ReadFile(pipe, piece, kPieceBytes, &bytes, nullptr) != FALSE;
        const DWORD error = isWhole ? ERROR_SUCCESS : GetLastError();
        if (!isWhole && error != ERROR_MORE_DATA) {
            Logger().LogErrorMessageFormat(L"ReadFile from pipe failed. Error=%d\n", error);
            return;
        }
        if (reply != nullptr && reply->GetLength() < kMostReplyCharacters) *reply += piece;
        Logger().LogTraceMessage(piece);
    }
}

CString Reply(void (*send)(const CString&, CString*), const CString& message) {
    CString reply;
    send(message, &reply);
    return reply;
}

}  // namespace

std::atomic<bool> NamedPipeClient::pipeChannelEnabled = false;

std::int32_t NamedPipeClient::LaunchExplorer() {
    if (!IsPipeChannelEnabled()) return -1;
    return _wtoi(Reply(SendNamedPipeCommand, L"LAUNCHEXPLORER"));
}

std::int64_t NamedPipeClient::ExploreWindow(const CString& argument) {
    if (!IsPipeChannelEnabled()) return 0;
    return _wtoi(Reply(SendNamedPipeCommand, L"EXPLOREWINDOW:" + argument));
}

std::int32_t NamedPipeClient::LaunchApp(const CString& commandLine) {
    if (!IsPipeChannelEnabled()) return -1;
    return _wtoi(Reply(SendNamedPipeCommand, L"LAUNCHAPP:" + commandLine));
}

CString NamedPipeClient::GetEnvVariable(const CString& name) {
    if (!IsPipeChannelEnabled()) return CString();
    return Reply(SendNamedPipeCommand, L"GETENVVARIABLE:" + name);
}

CString NamedPipeClient::GetUserName() {
    static CString s_userName;
    return CachedReply(s_userName, L"GETUSERNAME");
}

CString NamedPipeClient::GetUserNameEx() {
    static CString s_userNameEx;
    return CachedReply(s_userNameEx, L"GETUSERNAMEEX");
}

void NamedPipeClient::PlaySound(const CString& argument) {
    if (IsPipeChannelEnabled()) SendNamedPipeCommand(L"PLAYSOUND:" + argument, nullptr);
}

void NamedPipeClient::ChangeBackground(const CString& argument) {
    if (IsPipeChannelEnabled()) SendNamedPipeCommand(L"CHANGEBACKGROUND:" + argument, nullptr);
}

void NamedPipeClient::SetSysColor(std::int32_t index, const CString& value) {
    if (!IsPipeChannelEnabled()) return;
    CString message;
    message.Format(L"SYSCOLOR:%d:%s", index, value.GetString());
    SendNamedPipeCommand(message, nullptr);
}

void NamedPipeClient::SendNamedPipeCommand(const CString& message, CString* reply) {
    const CLogMethodEntryExit log(L"NamedPipeClient::SendNamedPipeCommand");
    const DWORD bytes = static_cast<DWORD>(message.GetLength()) * 2 + 2;
    Logger().LogTraceMessageFormat(L"Sending %d byte message: \"%s\"", bytes, message.GetString());
    const HANDLE pipe = OpenPipe();
    if (pipe == INVALID_HANDLE_VALUE) return;
    // A connection that fails here stays open until the process ends: the companion, which serves one caller at a time,
    // is left with a silent one instead of being offered the next command that it would not get.
    if (!WriteCommand(pipe, message, bytes)) return;
    Logger().LogTraceMessage(L"\nMessage sent to server, receiving reply as follows:");
    if (reply != nullptr) reply->Empty();
    ReadReply(pipe, reply);
    CloseHandle(pipe);
}

const CString& NamedPipeClient::CachedReply(CString& cache, LPCWSTR command) {
    if (IsPipeChannelEnabled() && cache.IsEmpty()) SendNamedPipeCommand(command, &cache);
    return cache;
}
