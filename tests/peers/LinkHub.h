// The cable between two ends, with its faults. Both connect to it; it carries what each sends to the other.
//
//     LinkHub hub;                                             // ends 0 and 1
//     a.Do({"device", hub.DeviceText(0)});
//     hub.Plan(0, {LinkHub::Corrupt, 4});                      // the fifth byte that end 0 sends from now on
//     ...
//     EXPECT_EQ(hub.Seen(0).substr(0, 4), "\x33\x12\0\0"s);    // as it was sent
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "peers/LinkSocket.h"

class LinkHub {
public:
    enum Kind { Corrupt, Drop, Duplicate, Cut };  // of the bytes: turned over, left out, sent twice; the link ends

    struct Fault {
        Kind kind;
        std::uint64_t after;  // bytes that still pass as they are
        std::uint64_t bytes = 1;
    };

    LinkHub();
    ~LinkHub();
    LinkHub(const LinkHub&) = delete;
    LinkHub& operator=(const LinkHub&) = delete;

    // For the device file of an end.
    std::string DeviceText(int end) const { return "port " + std::to_string(m_listeners[end].Port()); }

    // Faults of what an end sends, in the order of their places.
    void Plan(int end, Fault fault);
    // From now on in pieces of at most that many bytes, with a pause before each.
    void Split(int end, size_t bytes, DWORD milliseconds);
    // All that an end has sent, as it sent it; of more than a MiB the start.
    std::string Seen(int end) const;

private:
    struct Direction {
        LinkSocket from;
        std::uint64_t place = 0;                              // bytes that have come
        std::vector<std::pair<std::uint64_t, Fault>> faults;  // with the place where each begins
        std::string seen;
        size_t pieceBytes = SIZE_MAX;
        DWORD pauseMilliseconds = 0;
        std::thread pump;
    };

    void Connect();
    void CutNow();
    void Pump(int end);
    // What becomes of bytes; false if the link ends behind them.
    bool Spoil(Direction& direction, const std::string& bytes, std::string& result) const;
    static bool Send(const Direction& direction, const LinkSocket& to, const std::string& bytes);

    LinkSocket m_listeners[2] = {LinkSocket::Listen(), LinkSocket::Listen()};
    mutable std::mutex m_mutex;
    Direction m_directions[2];
    std::thread m_connector;
};
