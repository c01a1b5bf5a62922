#include "files/TextLineSplitter.h"

#include <utility>

namespace {

bool IsLineEnd(char byte) {
    return byte == '\r' || byte == '\n';
}

}  // namespace

void TextLineSplitter::Add(std::string_view block) {
    m_pending.erase(0, m_lineStart);
    m_scanned -= m_lineStart;
    m_lineStart = 0;
    m_pending += block;
}

std::optional<std::string_view> TextLineSplitter::Next() {
    const std::string_view pending = m_pending;
    // A local, because the compiler would store a member for every byte.
    size_t end = m_scanned;
    while (end + 1 < pending.size() && !IsLineEnd(pending[end])) ++end;
    m_scanned = end;
    if (end + 1 >= pending.size()) return std::nullopt;

    const bool isPair = IsLineEnd(pending[end + 1]) && pending[end + 1] != pending[end];
    m_scanned = end + (isPair ? 2 : 1);
    const size_t start = std::exchange(m_lineStart, m_scanned);
    return pending.substr(start, (m_keepLineEnds ? m_scanned : end) - start);
}
