#include "peers/LinkHub.h"

#include <algorithm>

namespace {

constexpr size_t kBlockBytes = 1 << 18;
constexpr size_t kSeenBytes = 1 << 20;
constexpr DWORD kConnectMilliseconds = 30000;

}  // namespace

LinkHub::LinkHub() : m_connector([this] { Connect(); }) {}

LinkHub::~LinkHub() {
    for (const LinkSocket& listener : m_listeners) LinkSocket::Connect(listener.Port());  // if it still waits
    m_connector.join();
    CutNow();
    for (Direction& direction : m_directions) {
        if (direction.pump.joinable()) direction.pump.join();
    }
}

void LinkHub::Connect() {
    for (int end : {0, 1}) m_directions[end].from = m_listeners[end].Accept(kConnectMilliseconds);
    for (int end : {0, 1}) m_directions[end].pump = std::thread([this, end] { Pump(end); });
}

void LinkHub::Plan(int end, Fault fault) {
    const std::lock_guard lock(m_mutex);
    Direction& direction = m_directions[end];
    direction.faults.emplace_back(direction.place + fault.after, fault);
}

void LinkHub::Split(int end, size_t bytes, DWORD milliseconds) {
    const std::lock_guard lock(m_mutex);
    m_directions[end].pieceBytes = bytes;
    m_directions[end].pauseMilliseconds = milliseconds;
}

std::string LinkHub::Seen(int end) const {
    const std::lock_guard lock(m_mutex);
    return m_directions[end].seen;
}

void LinkHub::CutNow() {
    for (const Direction& direction : m_directions) direction.from.Cut();
}

void LinkHub::Pump(int end) {
    Direction& direction = m_directions[end];
    std::string block(kBlockBytes, '\0');
    while (const size_t got = direction.from.Receive(block.data(), block.size())) {
        std::string result;
        const bool goesOn = Spoil(direction, block.substr(0, got), result);
        if (!Send(direction, m_directions[1 - end].from, result) || !goesOn) break;
    }
    CutNow();
}

bool LinkHub::Spoil(Direction& direction, const std::string& bytes, std::string& result) const {
    const std::lock_guard lock(m_mutex);
    direction.seen.append(bytes, 0, kSeenBytes - std::min(kSeenBytes, direction.seen.size()));
    size_t done = 0;
    const auto passUntil = [&](std::uint64_t place) {
        const size_t end = std::clamp<std::uint64_t>(place - std::min(place, direction.place), done, bytes.size());
        const std::string passed = bytes.substr(done, end - done);
        done = end;
        return passed;
    };
    bool goesOn = true;
    for (const auto& [place, fault] : direction.faults) {
        if (!goesOn || place + fault.bytes <= direction.place || place >= direction.place + bytes.size()) continue;
        result += passUntil(place);
        std::string touched = passUntil(place + fault.bytes);
        if (fault.kind == Corrupt) std::for_each(touched.begin(), touched.end(), [](char& c) { c = ~c; });
        if (fault.kind == Corrupt || fault.kind == Duplicate) result += touched;
        if (fault.kind == Duplicate) result += touched;
        goesOn = fault.kind != Cut;
    }
    if (goesOn) result += passUntil(UINT64_MAX);
    direction.place += bytes.size();
    return goesOn;
}

bool LinkHub::Send(const Direction& direction, const LinkSocket& to, const std::string& bytes) {
    for (size_t done = 0; done < bytes.size();) {
        const size_t piece = std::min(direction.pieceBytes, bytes.size() - done);
        if (direction.pauseMilliseconds != 0) Sleep(direction.pauseMilliseconds);
        if (!to.SendAll(bytes.data() + done, piece)) return false;
        done += piece;
    }
    return true;
}
