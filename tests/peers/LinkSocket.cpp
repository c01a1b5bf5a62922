#include "peers/LinkSocket.h"

#include <algorithm>

namespace {

constexpr size_t kLargestStep = 1 << 20;

SOCKET NewSocket() {
    static const int started = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(2, 2), &data);
    }();
    return started == 0 ? socket(AF_INET, SOCK_STREAM, IPPROTO_TCP) : INVALID_SOCKET;
}

sockaddr_in Address(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

// Small messages go out at once, as they do on the real link.
SOCKET WithoutDelay(SOCKET socket) {
    const BOOL on = TRUE;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof(on));
    return socket;
}

}  // namespace

LinkSocket::~LinkSocket() {
    if (IsOpen()) closesocket(m_socket);
}

LinkSocket LinkSocket::Listen() {
    LinkSocket listener(NewSocket());
    const sockaddr_in address = Address(0);
    if (bind(listener.m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) return {};
    return listen(listener.m_socket, 8) == 0 ? std::move(listener) : LinkSocket();
}

LinkSocket LinkSocket::Connect(std::uint16_t port) {
    LinkSocket connection(NewSocket());
    const sockaddr_in address = Address(port);
    if (connect(connection.m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) return {};
    WithoutDelay(connection.m_socket);
    return connection;
}

std::uint16_t LinkSocket::Port() const {
    sockaddr_in address{};
    int size = sizeof(address);
    getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

LinkSocket LinkSocket::Accept(DWORD milliseconds) const {
    if (!WaitUntilReadable(milliseconds)) return {};
    return LinkSocket(WithoutDelay(accept(m_socket, nullptr, nullptr)));
}

bool LinkSocket::SendAll(const void* data, size_t bytes) const {
    for (auto* next = static_cast<const char*>(data); bytes != 0;) {
        const int sent = send(m_socket, next, static_cast<int>(std::min(bytes, kLargestStep)), 0);
        if (sent <= 0) return false;
        next += sent;
        bytes -= static_cast<size_t>(sent);
    }
    return true;
}

size_t LinkSocket::Receive(void* buffer, size_t bytes) const {
    const int got = recv(m_socket, static_cast<char*>(buffer), static_cast<int>(std::min(bytes, kLargestStep)), 0);
    return got > 0 ? static_cast<size_t>(got) : 0;
}

void LinkSocket::Drain() const {
    char thrownAway[4096];
    u_long waiting = 0;
    while (ioctlsocket(m_socket, FIONREAD, &waiting) == 0 && waiting != 0 &&
           Receive(thrownAway, sizeof(thrownAway)) != 0) {
    }
}

std::optional<std::string> LinkSocket::ReceiveLine(DWORD milliseconds) const {
    std::string line;
    for (char c = 0; WaitUntilReadable(milliseconds) && Receive(&c, 1) == 1;) {
        if (c == '\n') return line;
        line += c;
    }
    return std::nullopt;
}

bool LinkSocket::WaitUntilReadable(DWORD milliseconds) const {
    if (!IsOpen()) return false;
    if (milliseconds == INFINITE) return true;
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(m_socket, &readable);
    timeval limit{static_cast<long>(milliseconds / 1000), static_cast<long>(milliseconds % 1000 * 1000)};
    return select(0, &readable, nullptr, nullptr, &limit) == 1;
}
