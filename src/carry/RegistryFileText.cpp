#include "carry/RegistryFileText.h"

#include <array>

namespace {

constexpr auto kHexDigits = [] {
    std::array<std::uint8_t, 128> digits{};
    digits.fill(0xFF);
    for (std::size_t i = 0; i < 10; ++i) digits[L'0' + i] = static_cast<std::uint8_t>(i);
    for (std::size_t i = 0; i < 6; ++i) digits[L'a' + i] = digits[L'A' + i] = static_cast<std::uint8_t>(10 + i);
    return digits;
}();

}  // namespace

std::size_t SkipBlanks(std::wstring_view text, std::size_t at) {
    while (at < text.size() && (text[at] == L' ' || text[at] == L'\t')) ++at;
    return at;
}

unsigned HexDigit(wchar_t c) {
    const auto index = static_cast<std::size_t>(c);
    return index < kHexDigits.size() ? kHexDigits[index] : 0xFFU;
}

std::optional<std::uint32_t> ReadHexNumber(std::wstring_view text, std::size_t& at, bool mayHavePrefix) {
    std::size_t next = SkipBlanks(text, at);
    const bool isNegative = next < text.size() && text[next] == L'-';
    if (isNegative || (next < text.size() && text[next] == L'+')) ++next;
    if (mayHavePrefix && text.substr(next).starts_with(L"0x")) next += 2;
    const std::size_t first = next;
    std::uint64_t number = 0;
    for (; next < text.size() && HexDigit(text[next]) < 16; ++next) {
        number = number << 4U | HexDigit(text[next]);
        if (number > 0xFFFFFFFFU) return std::nullopt;
    }
    if (next == first) return std::nullopt;
    at = next;
    const auto low = static_cast<std::uint32_t>(number);
    return isNegative ? 0U - low : low;
}

wchar_t Unescape(wchar_t c) {
    switch (c) {
        case L'n':
            return L'\n';
        case L'r':
            return L'\r';
        case L'0':
            return L'\0';
        default:
            return c;
    }
}

std::optional<std::wstring> ReadQuoted(std::wstring_view text, std::size_t& at) {
    std::wstring quoted;
    for (std::size_t next = at; next < text.size(); ++next) {
        wchar_t c = text[next];
        if (c == L'"') {
            at = next + 1;
            return quoted;
        }
        if (c == L'\\') {
            if (++next == text.size()) break;
            c = Unescape(text[next]);
            if (c == L'\0') break;
        }
        quoted += c;
    }
    return std::nullopt;
}

void AppendEscaped(std::wstring& out, std::wstring_view text) {
    for (const wchar_t c : text) {
        switch (c) {
            case L'\n':
                out += L"\\n";
                break;
            case L'\r':
                out += L"\\r";
                break;
            case L'"':
            case L'\\':
                out += L'\\';
                [[fallthrough]];
            default:
                out += c;
        }
    }
}
