#include "peers/LinkHub.h"

#include <algorithm>

namespace {

constexpr size_t kBlockBytes = 1 << 18;
constexpr size_t kSeenBytes = 1 << 20;
constexpr DWORD kConnectMilliseconds = 30000;

}  // namespace

LinkHub::LinkHub()
    : m_connector([this] {
          for (int end : {0, 1}) m_directions[end].from = m_listeners[end].Accept(kConnectMilliseconds);
          for (int end : {0, 1}) m_directions[end].pump = std::thread([this, end] { Pump(end); });
      }) {}

LinkHub::~LinkHub() {
    for (const LinkSocket& listener : m_listeners) LinkSocket::Connect(listener.Port());  // if it still waits
    m_connector.join();
    for (const Direction& direction : m_directions) direction.from.Cut();
    for (Direction& direction : m_directions) direction.pump.join();
}

void LinkHub::Plan(int end, Fault fault) {
    const std::lock_guard lock(m_mutex);
    m_directions[end].fault = fault;
}

std::string LinkHub::Seen(int end) {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_directions[end].seen, {});
}

void LinkHub::Pump(int end) {
    const LinkSocket& to = m_directions[1 - end].from;
    std::string block(kBlockBytes, '\0');
    while (const size_t got = m_directions[end].from.Receive(block.data(), block.size())) {
        const std::string result = Spoiled(m_directions[end], block.substr(0, got));
        const size_t piece = m_isSplit ? 1 : result.size();
        for (size_t done = 0; done < result.size(); done += piece) {
            if (m_isSplit) Sleep(1);
            if (!to.SendAll(result.data() + done, piece)) break;
        }
    }
    to.Cut();
}

std::string LinkHub::Spoiled(Direction& direction, const std::string& bytes) {
    const std::lock_guard lock(m_mutex);
    direction.seen.append(bytes, 0, kSeenBytes - std::min(kSeenBytes, direction.seen.size()));
    Fault& fault = direction.fault;
    if (fault.kind == Pass) return bytes;
    std::string result;
    for (const char byte : bytes) {
        if (fault.kind == Pass || fault.after > 0) {
            result += byte;
            fault.after -= fault.kind == Pass ? 0 : 1;
            continue;
        }
        if (fault.kind != Drop) result += fault.kind == Corrupt ? static_cast<char>(~byte) : byte;
        if (fault.kind == Duplicate) direction.doubled += byte;
        if (--fault.bytes > 0) continue;
        result += std::exchange(direction.doubled, {});
        fault = {};
    }
    return result;
}
