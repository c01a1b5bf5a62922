#include "carry/RegistryFileText.h"

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

bool ReadQuoted(std::wstring_view text, std::size_t& at, std::wstring& quoted) {
    quoted.clear();
    for (std::size_t start = at;;) {
        std::size_t end = start;
        while (end < text.size() && text[end] != L'"' && text[end] != L'\\') ++end;
        quoted.append(text, start, end - start);
        if (end == text.size()) return false;
        if (text[end] == L'"') {
            at = end + 1;
            return true;
        }
        if (end + 1 == text.size()) return false;
        const wchar_t unit = Unescape(text[end + 1]);
        if (unit == L'\0') return false;
        quoted += unit;
        start = end + 2;
    }
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
