// The cable between two ends, with its faults. Both connect to it; it carries what each sends to the other.
//
//     LinkHub hub;                                             // ends 0 and 1
//     hub.Plan(0, {LinkHub::Corrupt, 4});                      // the fifth byte that end 0 sends from now on
//     ...
//     EXPECT_EQ(hub.Seen(0).substr(0, 4), "\x33\x12\0\0"s);    // as it was sent
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

#include "peers/LinkSocket.h"

class LinkHub {
public:
    enum Kind { Pass, Corrupt, Drop, Duplicate };  // of the bytes: turned over, left out, sent twice

    struct Fault {
        Kind kind = Pass;
        std::uint64_t after = 0;  // bytes that still pass as they are
        std::uint64_t bytes = 1;
    };

    LinkHub();
    ~LinkHub();
    LinkHub(const LinkHub&) = delete;
    LinkHub& operator=(const LinkHub&) = delete;

    // For the device file of an end.
    std::string DeviceText(int end) const { return "port " + std::to_string(m_listeners[end].Port()); }
    // The next fault of what an end sends.
    void Plan(int end, Fault fault);
    // From now on byte by byte, with a pause before each.
    void Split() { m_isSplit = true; }
    // All that an end has sent since the last call, as it sent it; of more than a MiB the start.
    std::string Seen(int end);

private:
    struct Direction {
        LinkSocket from;
        Fault fault;
        std::string doubled;
        std::string seen;
        std::thread pump;
    };

    void Pump(int end);
    // What becomes of bytes.
    std::string Spoiled(Direction& direction, const std::string& bytes);

    LinkSocket m_listeners[2] = {LinkSocket::Listen(), LinkSocket::Listen()};
    std::mutex m_mutex;
    std::atomic<bool> m_isSplit = false;
    Direction m_directions[2];
    std::thread m_connector;
};
