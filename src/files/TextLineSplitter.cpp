#include "files/TextLineSplitter.h"

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
    for (; m_scanned + 1 < pending.size(); ++m_scanned) {
        const char byte = pending[m_scanned];
        if (!IsLineEnd(byte)) continue;
        const char following = pending[m_scanned + 1];
        const size_t width = IsLineEnd(following) && following != byte ? 2 : 1;
        const size_t start = m_lineStart;
        m_lineStart = m_scanned + width;
        const size_t end = m_keepLineEnds ? m_lineStart : m_scanned;
        m_scanned = m_lineStart;
        return pending.substr(start, end - start);
    }
    return std::nullopt;
}
