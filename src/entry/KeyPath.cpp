#include "entry/KeyPath.h"

#include <algorithm>
#include <cstddef>

#include "helpers/AsciiCase.h"

namespace {

constexpr wchar_t kBackslash = L'\\';

// The edit control counts characters in int; npos becomes -1, which it takes as "to the end".
int EditIndex(std::size_t index) {
    return static_cast<int>(static_cast<std::ptrdiff_t>(index));
}

KeySelection Selection(std::size_t start, std::size_t end) {
    return {EditIndex(start), EditIndex(end)};
}

bool IsHiveName(std::wstring_view name, const HiveTable& hives) {
    return std::ranges::any_of(hives, [name](const Hive& hive) {
        return EqualIgnoringAsciiCase(name, hive.fullName) || EqualIgnoringAsciiCase(name, hive.abbreviation);
    });
}

}  // namespace

KeyCheck CheckKeyPath(std::wstring_view text, std::wstring_view watermark, const HiveTable& hives) {
    if (text == watermark || text.empty()) return {KeyVerdict::KeyBlank, {}};

    const std::size_t separator = text.find(kBackslash);
    const auto subkey = separator == text.npos ? std::wstring_view{} : text.substr(separator + 1);
    if (!IsHiveName(text.substr(0, separator), hives)) return {KeyVerdict::KeyUnknownHive, Selection(0, separator)};
    if (subkey.empty()) return {KeyVerdict::KeyBareHive, {}};

    if (text.back() == kBackslash) {
        const std::size_t lastOther = text.find_last_not_of(kBackslash);
        return {KeyVerdict::KeyTrailingBackslash, Selection(lastOther + 1, text.size())};
    }
    const std::size_t run = text.find(L"\\\\");
    if (run == text.npos) return {KeyVerdict::KeyAccepted, {}};
    return {KeyVerdict::KeyMultipleBackslash, Selection(run, text.find_first_not_of(kBackslash, run))};
}
