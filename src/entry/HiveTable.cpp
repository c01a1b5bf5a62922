#include "entry/HiveTable.h"

#include <algorithm>
#include <cstddef>

#include "helpers/AsciiCase.h"

namespace {

// How many characters ExpandHive compares, row by row. Fixed rather than taken from the texts: a table whose texts did
// not load must not turn into shorter or longer prefixes.
constexpr std::array<std::size_t, 5> kExpandPrefixChars{4, 4, 4, 3, 4};

// Each hive works on the text that the hives before it left.
std::wstring ReplaceLeading(std::wstring_view path, const HiveTable& hives, std::wstring Hive::* leading) {
    std::wstring text(path);
    for (const Hive& hive : hives) {
        const std::wstring& prefix = hive.*leading;
        if (StartsWithIgnoringAsciiCase(text, prefix)) text.replace(0, prefix.size(), hive.abbreviation);
    }
    return text;
}

}  // namespace

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
