// A TCP connection between processes of this machine, for what stands in for cables here. Ports are the system's
// choice.
#pragma once

#include <windows.h>
#include <winsock2.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

class LinkSocket {
public:
    LinkSocket() = default;
    explicit LinkSocket(SOCKET socket) : m_socket(socket) {}
    LinkSocket(LinkSocket&& other) noexcept : m_socket(std::exchange(other.m_socket, INVALID_SOCKET)) {}
    LinkSocket& operator=(LinkSocket other) noexcept {
        std::swap(m_socket, other.m_socket);
        return *this;
    }
    ~LinkSocket();

    // A listening one and a connected one; not open on failure.
    static LinkSocket Listen();
    static LinkSocket Connect(std::uint16_t port);

    bool IsOpen() const { return m_socket != INVALID_SOCKET; }
    std::uint16_t Port() const;
    // Not open if nobody comes in time.
    LinkSocket Accept(DWORD milliseconds = INFINITE) const;
    // Ends the connection for both sides and for threads of ours that wait on it.
    void Cut() const { shutdown(m_socket, SD_BOTH); }

    bool SendAll(const void* data, size_t bytes) const;
    // What is there, at least one byte; 0 when the connection has ended.
    size_t Receive(void* buffer, size_t bytes) const;
    // Throws away what has arrived.
    void Drain() const;

    // Lines of text. None when the connection ends or the time is over.
    bool SendLine(const std::string& line) const { return SendAll((line + "\n").data(), line.size() + 1); }
    std::optional<std::string> ReceiveLine(DWORD milliseconds = INFINITE) const;

private:
    bool WaitUntilReadable(DWORD milliseconds) const;

    SOCKET m_socket = INVALID_SOCKET;
};
