// How the programs that scripts/two-machines starts find each other: the first one listens, and the other one learns
// its port from a file.
#pragma once

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

#include "peers/LinkSocket.h"

constexpr DWORD kOtherComesMilliseconds = 100000;

inline LinkSocket ListenForTheOther() {
    const char* const file = std::getenv("USB_LINK_PORT_FILE");
    if (file == nullptr) throw std::runtime_error("started without the other machine: use scripts/two-machines");
    LinkSocket listener = LinkSocket::Listen();
    const std::string draft = std::string(file) + ".new";
    std::ofstream(draft) << listener.Port() << '\n';
    MoveFileExA(draft.c_str(), file, MOVEFILE_REPLACE_EXISTING);  // as a whole, since it is looked for
    return listener;
}

inline std::uint16_t PortOfTheFirst() {
    for (;; Sleep(20)) {
        if (std::uint16_t port = 0; std::ifstream(std::getenv("USB_LINK_PORT_FILE")) >> port) return port;
    }
}

// Data that shows where a byte stood and which of several pieces it comes from.
inline std::string Pattern(size_t size, unsigned seed) {
    std::string data(size, '\0');
    for (size_t i = 0; i < size; ++i) data[i] = static_cast<char>(i * 31 + (i >> 8) * 7 + (i >> 16) + seed);
    return data;
}
