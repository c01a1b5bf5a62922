// The data of values in a registry file.
#include <algorithm>
#include <array>

#include "carry/RegistryFileReader.h"
#include "carry/RegistryFileText.h"

namespace {

constexpr std::uint32_t kText = 1;
constexpr std::uint32_t kExpandText = 2;
constexpr std::uint32_t kBinary = 3;
constexpr std::uint32_t kNumber = 4;
constexpr std::uint32_t kManyTexts = 7;

constexpr std::wstring_view kDword = L"dword:";
constexpr std::wstring_view kHex = L"hex";

void AppendUnits(std::vector<std::uint8_t>& data, std::wstring_view text) {
    const std::size_t before = data.size();
    data.resize(before + 2 * text.size());
    std::uint8_t* out = data.data() + before;
    if constexpr (sizeof(wchar_t) == 2) {
        std::copy_n(reinterpret_cast<const std::uint8_t*>(text.data()), 2 * text.size(), out);
    } else {
        for (const wchar_t unit : text) {
            *out++ = static_cast<std::uint8_t>(unit);
            *out++ = static_cast<std::uint8_t>(static_cast<unsigned>(unit) >> 8U);
        }
    }
}

}  // namespace

std::size_t RegistryFileReader::ReadData(std::wstring_view piece, std::size_t at, bool isWhole) {
    const std::wstring_view data = piece.substr(at);
    if (data.starts_with(L'"')) {
        m_type = kText;
        m_state = State::Text;
        return ReadText(piece, at + 1, isWhole);
    }
    if (data.starts_with(L'-')) {
        const std::size_t end = SkipBlanks(piece, at + 1);
        if (end < piece.size() && piece[end] != L';') return Skip(piece, SkippedLine::BrokenValue);
        if (m_hasKey) m_sink.OnValueRemoval(m_name);
        m_state = State::Rest;
        if (!m_hasKey) m_sink.OnSkipped(SkippedLine::NoKey);
        return piece.size();
    }
    if (data.starts_with(kDword)) return ReadNumber(piece, at + kDword.size());
    if (!data.starts_with(kHex)) return Skip(piece, SkippedLine::BrokenValue);

    at += kHex.size();
    m_type = kBinary;
    if (at < piece.size() && piece[at] == L'(') {
        // "hex():" is type 0 to the system.
        ++at;
        const bool isEmpty = at < piece.size() && piece[at] == L')';
        const auto type = isEmpty ? 0 : ReadHexNumber(piece, at, false);
        if (!type || at == piece.size() || piece[at] != L')') return Skip(piece, SkippedLine::BrokenValue);
        ++at;
        m_type = *type;
    }
    if (at == piece.size() || piece[at] != L':') return Skip(piece, SkippedLine::BrokenValue);
    m_state = State::Hex;
    m_isHex = true;
    return ReadHex(piece, at + 1, isWhole);
}

std::size_t RegistryFileReader::ReadNumber(std::wstring_view piece, std::size_t at) {
    constexpr std::size_t kMostDigits = 8;
    at = SkipBlanks(piece, at);
    std::uint32_t number = 0;
    const std::size_t first = at;
    for (; at < piece.size() && HexDigit(piece[at]) < 16; ++at) number = number << 4U | HexDigit(piece[at]);
    if (at == first || at - first > kMostDigits) return Skip(piece, SkippedLine::BrokenValue);
    m_type = kNumber;
    for (unsigned shift = 0; shift < 32; shift += 8) m_data.push_back(static_cast<std::uint8_t>(number >> shift));
    return ExpectEnd(piece, at);
}

std::size_t RegistryFileReader::ReadText(std::wstring_view piece, std::size_t at, bool isWhole) {
    for (;;) {
        std::size_t end = at;
        while (end < piece.size() && piece[end] != L'"' && piece[end] != L'\\') ++end;
        Append(piece.substr(at, end - at));
        if (end == piece.size()) return end;
        if (piece[end] == L'"') {
            m_data.insert(m_data.end(), 2, 0);
            return ExpectEnd(piece, end + 1);
        }
        if (end + 1 == piece.size()) return isWhole ? piece.size() : end;
        const wchar_t unit = Unescape(piece[end + 1]);
        if (unit == L'\0') return Skip(piece, SkippedLine::BrokenValue);
        Append({&unit, 1});
        at = end + 2;
    }
}

// What may follow the data of a line.
std::size_t RegistryFileReader::ExpectEnd(std::wstring_view piece, std::size_t at) {
    at = SkipBlanks(piece, at);
    if (at < piece.size() && piece[at] != L';') return Skip(piece, SkippedLine::BrokenValue);
    m_state = State::AfterData;
    if (at < piece.size()) Deliver();
    return piece.size();
}

std::size_t RegistryFileReader::ReadHexLine(std::wstring_view piece, bool isWhole) {
    const std::size_t at = SkipBlanks(piece, 0);
    if (at == piece.size()) return at;
    if (piece[at] == L';') {
        m_state = State::Rest;
        m_goesOn = true;
        return piece.size();
    }
    if (HexDigit(piece[at]) >= 16) return Skip(piece, SkippedLine::BrokenValue);
    m_state = State::Hex;
    return ReadHex(piece, at, isWhole);
}

// Bytes with commas between them. A backslash behind a comma, or in place of the first byte, leads to the next line.
std::size_t RegistryFileReader::ReadHex(std::wstring_view piece, std::size_t at, bool isWhole) {
    if (!isWhole) {
        const std::size_t comma = piece.rfind(L',');
        if (comma == piece.npos || comma < at) return at;
        piece = piece.substr(0, comma + 1);
    }
    const std::size_t before = m_data.size();
    m_data.resize(before + (piece.size() - at + 1) / 2);
    std::uint8_t* out = m_data.data() + before;
    const auto keep = [&] {
        m_data.resize(static_cast<std::size_t>(out - m_data.data()));
        if (m_data.size() > kLargestValue) throw RegistryFileError(m_line, "this value is larger than 64 MiB");
    };
    for (;;) {
        // Two digits and a comma are how the system writes it.
        while (piece.size() - at >= 3 && piece[at + 2] == L',') {
            const unsigned high = HexDigit(piece[at]);
            const unsigned low = HexDigit(piece[at + 1]);
            if ((high | low) >= 16) break;
            *out++ = static_cast<std::uint8_t>(high << 4U | low);
            at += 3;
        }
        at = SkipBlanks(piece, at);
        if (at == piece.size()) break;
        if (piece[at] == L';') {
            keep();
            Deliver();
            return piece.size();
        }
        if (piece[at] == L'\\') {
            at = SkipBlanks(piece, at + 1);
            if (at < piece.size() && piece[at] != L';') return Skip(piece, SkippedLine::BrokenValue);
            m_state = State::Rest;
            m_goesOn = true;
            break;
        }
        const auto number = ReadHexNumber(piece, at, true);
        if (!number || *number > 0xFF) return Skip(piece, SkippedLine::BrokenValue);
        *out++ = static_cast<std::uint8_t>(*number);
        if (at < piece.size() && piece[at] == L',') {
            ++at;
            continue;
        }
        keep();
        return ExpectEnd(piece, at);
    }
    keep();
    return piece.size();
}

void RegistryFileReader::Append(std::wstring_view text) {
    if (m_data.size() + 2 * text.size() > kLargestValue) {
        throw RegistryFileError(m_line, "this value is larger than 64 MiB");
    }
    AppendUnits(m_data, text);
}

// Hands the value over. The rest of its line says nothing more.
void RegistryFileReader::Deliver() {
    constexpr std::array<std::uint8_t, 2> kGuard{0xFF, 0xFF};
    m_state = State::Rest;
    if (!m_hasKey) {
        m_sink.OnSkipped(SkippedLine::NoKey);
        return;
    }
    const bool isText = m_type == kText || m_type == kExpandText || m_type == kManyTexts;
    if (m_isHex && m_isVersion4 && m_fromAnsi && isText) {
        const std::wstring text = m_fromAnsi({reinterpret_cast<const char*>(m_data.data()), m_data.size()});
        m_data.clear();
        Append(text);
    }
    const std::size_t size = m_data.size();
    m_data.insert(m_data.end(), kGuard.begin(), kGuard.end());
    m_sink.OnValue(m_name, m_type, std::span(m_data).first(size));
}
