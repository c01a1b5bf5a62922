// A TCP connection of this machine, for what stands in for cables here. Ports are the system's choice.
#pragma once

#include <windows.h>
#include <winsock2.h>

#include <algorithm>
#include <cstdint>
#include <utility>

class LinkSocket {
public:
    LinkSocket() = default;
    LinkSocket(LinkSocket&& other) noexcept : m_socket(std::exchange(other.m_socket, INVALID_SOCKET)) {}
    LinkSocket& operator=(LinkSocket other) noexcept {
        std::swap(m_socket, other.m_socket);
        return *this;
    }
    ~LinkSocket() {
        if (m_socket != INVALID_SOCKET) closesocket(m_socket);
    }

    // A listening one and a connected one. One that failed ends each wait at once, as a connection that has ended does.
    static LinkSocket Listen() {
        LinkSocket listener(NewSocket());
        const sockaddr_in address = Address(0);
        if (bind(listener.m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) return {};
        return listen(listener.m_socket, 8) == 0 ? std::move(listener) : LinkSocket();
    }
    static LinkSocket Connect(std::uint16_t port) {
        LinkSocket connection(NewSocket());
        const sockaddr_in address = Address(port);
        if (connect(connection.m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) return {};
        return connection;
    }

    std::uint16_t Port() const {
        sockaddr_in address{};
        int size = sizeof(address);
        getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &size);
        return ntohs(address.sin_port);
    }
    LinkSocket Accept(DWORD milliseconds = INFINITE) const {
        return LinkSocket(IsReady(milliseconds) ? accept(m_socket, nullptr, nullptr) : INVALID_SOCKET);
    }
    bool SendAll(const void* data, size_t bytes) const {
        for (auto* next = static_cast<const char*>(data); bytes != 0;) {
            const int sent = send(m_socket, next, static_cast<int>(std::min(bytes, kLargestStep)), 0);
            if (sent <= 0) return false;
            next += sent;
            bytes -= static_cast<size_t>(sent);
        }
        return true;
    }
    // What is there, at least one byte; 0 when the connection has ended or nothing has come in time.
    size_t Receive(void* buffer, size_t bytes, DWORD milliseconds = INFINITE) const {
        if (!IsReady(milliseconds)) return 0;
        const int got = recv(m_socket, static_cast<char*>(buffer), static_cast<int>(std::min(bytes, kLargestStep)), 0);
        return got > 0 ? static_cast<size_t>(got) : 0;
    }

private:
    static constexpr size_t kLargestStep = 1 << 20;

    // Small messages go out at once, as they do on the real link.
    explicit LinkSocket(SOCKET socket) : m_socket(socket) {
        const BOOL on = TRUE;
        setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof(on));
    }
    static SOCKET NewSocket() {
        static WSADATA s_data;
        static const int s_started = WSAStartup(MAKEWORD(2, 2), &s_data);
        return s_started == 0 ? socket(AF_INET, SOCK_STREAM, IPPROTO_TCP) : INVALID_SOCKET;
    }
    static sockaddr_in Address(std::uint16_t port) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(port);
        return address;
    }
    bool IsReady(DWORD milliseconds) const {
        if (milliseconds == INFINITE) return true;
        fd_set readable;
        FD_ZERO(&readable);
        FD_SET(m_socket, &readable);
        timeval limit{static_cast<long>(milliseconds / 1000), static_cast<long>(milliseconds % 1000 * 1000)};
        return select(0, &readable, nullptr, nullptr, &limit) == 1;
    }

    SOCKET m_socket = INVALID_SOCKET;
};
