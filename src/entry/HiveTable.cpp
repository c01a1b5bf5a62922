#include "entry/HiveTable.h"

#include <algorithm>
#include <cstddef>

namespace {

// How many characters ExpandHive compares, row by row. Fixed rather than taken from the texts: a table whose texts did
// not load must not turn into shorter or longer prefixes.
constexpr std::array<std::size_t, 5> kExpandPrefixChars{4, 4, 4, 3, 4};

wchar_t FoldCase(wchar_t c) {
    return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
}

// Each hive works on the text that the hives before it left.
std::wstring ReplaceLeading(std::wstring_view path, const HiveTable& hives, std::wstring Hive::*leading) {
    std::wstring text(path);
    for (const Hive& hive : hives) {
        const std::size_t length = (hive.*leading).size();
        if (EqualsIgnoringCase(std::wstring_view(text).substr(0, length), hive.*leading)) {
            text.replace(0, length, hive.abbreviation);
        }
    }
    return text;
}

}  // namespace

bool EqualsIgnoringCase(std::wstring_view left, std::wstring_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](wchar_t a, wchar_t b) { return FoldCase(a) == FoldCase(b); });
}

std::wstring AbbreviateHive(std::wstring_view path, const HiveTable& hives) {
    return ReplaceLeading(path, hives, &Hive::fullName);
}

std::wstring NormaliseAbbreviation(std::wstring_view path, const HiveTable& hives) {
    return ReplaceLeading(path, hives, &Hive::abbreviation);
}

std::wstring ExpandHive(std::wstring_view path, const HiveTable& hives) {
    std::wstring text(path);
    for (std::size_t row = 0; row < hives.size(); ++row) {
        const Hive& hive = hives[row];
        if (std::wstring_view(text).substr(0, kExpandPrefixChars[row]) != hive.abbreviation) continue;
        // Trimming by the set of letters, not cutting the prefix: the backslash after the abbreviation stops it, and
        // the rules that hosts hold were written this way.
        text.erase(0, text.find_first_not_of(hive.abbreviation));
        text.insert(0, hive.fullName);
    }
    return text;
}

std::wstring MakeHivePath(std::uint32_t rootKey, std::wstring_view subkey, const HiveTable& hives) {
    const auto hive = std::ranges::find(hives, rootKey, &Hive::rootKey);
    if (hive == hives.end()) return std::wstring(subkey);
    return hive->abbreviation + L'\\' + std::wstring(subkey);
}
