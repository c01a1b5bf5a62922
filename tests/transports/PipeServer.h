// The companion at the other end of the named pipe, good or bad, in this process. A caller finds the pipe as soon as
// the object is there:
//
//     PipeServer server;
//     server.Answer(Utf16(L"42"));                    // on a thread of its own
//     EXPECT_EQ(NamedPipeClient::LaunchExplorer(), 42);
//     EXPECT_EQ(server.Message(), "4c00...");
#pragma once

#include <windows.h>

#include <future>
#include <string>
#include <utility>

#include "peers/HexBytes.h"

inline std::string Utf16(const std::wstring& text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

class PipeServer {
public:
    explicit PipeServer(DWORD type = PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE, DWORD instances = 1)
        : m_pipe(CreateNamedPipeW(L"\\\\.\\pipe\\bvtnamedpipe", PIPE_ACCESS_DUPLEX, type, instances, 65536, 65536, 0,
                                  nullptr)) {}
    ~PipeServer() { Close(); }
    PipeServer(const PipeServer&) = delete;
    PipeServer& operator=(const PipeServer&) = delete;

    // Reads one message, answers it, and ends the connection when the caller has read it all.
    void Answer(const std::string& bytes) {
        m_message = std::async(std::launch::async, [this, bytes] {
            std::string message = Read();
            Write(bytes);
            FlushFileBuffers(m_pipe);
            DisconnectNamedPipe(m_pipe);
            return message;
        });
    }
    // What it has answered, in hexadecimal.
    std::string Message() { return m_message.get(); }

    std::string Read() const {
        ConnectNamedPipe(m_pipe, nullptr);
        std::string message(65536, '\0');
        DWORD size = 0;
        ReadFile(m_pipe, message.data(), static_cast<DWORD>(message.size()), &size, nullptr);
        return ToHex(std::string_view(message).substr(0, size));
    }
    void Write(const std::string& bytes) const {
        DWORD written = 0;
        WriteFile(m_pipe, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    }
    // Ends the connection; what the caller has not read is lost.
    void Close() {
        if (m_pipe == INVALID_HANDLE_VALUE) return;
        DisconnectNamedPipe(m_pipe);
        CloseHandle(std::exchange(m_pipe, INVALID_HANDLE_VALUE));
    }

private:
    HANDLE m_pipe;
    std::future<std::string> m_message;
};
