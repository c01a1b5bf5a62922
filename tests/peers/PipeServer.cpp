// The companion at the other end of the named pipe, good or bad. Serves one connection for each argument, in order:
//     text=T     reads the message and answers T in UTF-16, without a terminator
//     size=N     answers one message of N bytes of 'x' in UTF-16
//     hex=B...   answers these bytes
//     half=N     answers as size=N, and closes when the caller has read half a kilobyte at least
//     silent     reads the message and closes when told to, without an answer
//     bytes      a pipe of bytes without messages; closes when told to
//     leave      reads nothing and closes when told to
//     always=T   answers T to everybody from now on, several at a time, and tells nothing more
// It tells on its output, line by line: "ready" when the pipe of a connection is there, then what it read in
// hexadecimal, and "closed". It is told by a line on its input.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

constexpr wchar_t kPipeName[] = L"\\\\.\\pipe\\bvtnamedpipe";
constexpr DWORD kBufferBytes = 65536;
constexpr DWORD kMessages = PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE;

using Bytes = std::vector<unsigned char>;

void Tell(const std::string& line) {
    std::puts(line.c_str());
    std::fflush(stdout);
}

void WaitToBeTold() {
    char line[16];
    if (std::fgets(line, sizeof line, stdin) == nullptr) ExitProcess(0);
}

std::string ReadMessage(HANDLE pipe) {
    Bytes message(kBufferBytes);
    DWORD size = 0;
    if (!ReadFile(pipe, message.data(), kBufferBytes, &size, nullptr))
        return "failed " + std::to_string(GetLastError());
    std::string hex;
    for (DWORD i = 0; i < size; ++i) {
        constexpr char kDigits[] = "0123456789abcdef";
        hex += kDigits[message[i] >> 4];
        hex += kDigits[message[i] & 15];
    }
    return hex;
}

Bytes AsBytes(std::wstring_view text) {
    const auto* first = reinterpret_cast<const unsigned char*>(text.data());
    return Bytes(first, first + text.size() * sizeof(wchar_t));
}

Bytes Answer(std::wstring_view kind, const std::wstring& value) {
    if (kind == L"text") return AsBytes(value);
    if (kind == L"hex") {
        Bytes bytes;
        for (size_t i = 0; i + 1 < value.size(); i += 2) {
            bytes.push_back(static_cast<unsigned char>(std::stoul(value.substr(i, 2), nullptr, 16)));
        }
        return bytes;
    }
    const size_t size = std::stoul(value);
    Bytes bytes(size);
    for (size_t i = 0; i < size; i += 2) bytes[i] = 'x';
    return bytes;
}

HANDLE CreatePipeInstance(DWORD type, DWORD instances) {
    return CreateNamedPipeW(kPipeName, PIPE_ACCESS_DUPLEX, type, instances, kBufferBytes, kBufferBytes, 0, nullptr);
}

void ServeAlways(HANDLE pipe, const Bytes& answer) {
    for (;;) {
        ConnectNamedPipe(pipe, nullptr);
        DWORD written = 0;
        ReadMessage(pipe);
        WriteFile(pipe, answer.data(), static_cast<DWORD>(answer.size()), &written, nullptr);
        FlushFileBuffers(pipe);
        DisconnectNamedPipe(pipe);
    }
}

// Some instances, so that one caller after the other finds one free without waiting.
void ServeEverybody(const std::wstring& text) {
    constexpr DWORD kInstances = 4;
    std::vector<std::thread> threads;
    for (DWORD i = 0; i < kInstances; ++i) {
        const HANDLE pipe = CreatePipeInstance(kMessages, kInstances);
        threads.emplace_back([=] { ServeAlways(pipe, AsBytes(text)); });
    }
    Tell("ready");
    WaitToBeTold();
    ExitProcess(0);
}

void Serve(const std::wstring& argument) {
    const size_t equals = std::min(argument.find(L'='), argument.size() - 1);
    const std::wstring kind = argument.substr(0, argument.find(L'='));
    const std::wstring value = argument.substr(equals + 1);
    if (kind == L"always") ServeEverybody(value);
    const HANDLE pipe = CreatePipeInstance(kind == L"bytes" ? PIPE_TYPE_BYTE : kMessages, 1);
    Tell(pipe != INVALID_HANDLE_VALUE ? "ready" : "no pipe");
    if (!ConnectNamedPipe(pipe, nullptr) && GetLastError() != ERROR_PIPE_CONNECTED) Tell("no caller");
    const bool reads = kind != L"leave" && kind != L"bytes";
    if (reads) Tell(ReadMessage(pipe));
    if (!reads || kind == L"silent") {
        WaitToBeTold();
    } else {
        const Bytes answer = Answer(kind, value);
        DWORD written = 0;
        WriteFile(pipe, answer.data(), static_cast<DWORD>(answer.size()), &written, nullptr);
        if (kind == L"half") {
            // Told when the caller has its first piece; what it has not read is lost with the connection.
            WaitToBeTold();
        } else {
            FlushFileBuffers(pipe);
        }
    }
    DisconnectNamedPipe(pipe);
    CloseHandle(pipe);
    Tell("closed");
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    for (int i = 1; i < count; ++i) Serve(arguments[i]);
    return 0;
}
