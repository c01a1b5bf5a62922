#include "helpers/AsciiCase.h"

#include <algorithm>

namespace {

wchar_t Lower(wchar_t c) {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

bool SameCharacter(wchar_t a, wchar_t b) {
    return Lower(a) == Lower(b);
}

}  // namespace

bool EqualIgnoringAsciiCase(std::wstring_view a, std::wstring_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), SameCharacter);
}

bool StartsWithIgnoringAsciiCase(std::wstring_view text, std::wstring_view prefix) {
    return text.size() >= prefix.size() && EqualIgnoringAsciiCase(text.substr(0, prefix.size()), prefix);
}

std::size_t FindIgnoringAsciiCase(std::wstring_view text, std::wstring_view needle) {
    const auto hit = std::search(text.begin(), text.end(), needle.begin(), needle.end(), SameCharacter);
    if (hit == text.end() && !needle.empty()) return std::wstring_view::npos;
    return static_cast<std::size_t>(hit - text.begin());
}
