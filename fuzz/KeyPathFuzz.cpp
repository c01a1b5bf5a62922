// The input is a key path as somebody might type it.
#include "entry/KeyPath.h"
#include "fuzz/FuzzInput.h"

namespace {

constexpr wchar_t Watermark[] = L"New key";
const HiveTable Hives{{{ROOT_CLASSES_ROOT, L"HKEY_CLASSES_ROOT", L"HKCR"},
                       {ROOT_CURRENT_USER, L"HKEY_CURRENT_USER", L"HKCU"},
                       {ROOT_LOCAL_MACHINE, L"HKEY_LOCAL_MACHINE", L"HKLM"},
                       {ROOT_USERS, L"HKEY_USERS", L"HKU"},
                       {ROOT_CURRENT_CONFIG, L"HKEY_CURRENT_CONFIG", L"HKCC"}}};

// Both spellings of an accepted key are accepted and stand for each other.
void CheckSpellings(const std::wstring& key) {
    Require(!key.ends_with(L'\\') && key.find(L"\\\\") == key.npos && key.find(L'\\') != key.npos);
    const std::wstring abbreviated = NormaliseAbbreviation(AbbreviateHive(key, Hives), Hives);
    const std::wstring full = ExpandHive(abbreviated, Hives);
    Require(AbbreviateHive(full, Hives) == abbreviated && full.starts_with(L"HKEY_"));
    for (const auto& text : {abbreviated, full}) {
        Require(CheckKeyPath(text, Watermark, Hives).verdict == KeyVerdict::KeyAccepted);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::wstring text = Utf16Units(data, size);
    // Whoever corrects what is selected gets on, to a key or to another objection.
    for (;;) {
        const auto [verdict, selection] = CheckKeyPath(text, Watermark, Hives);
        if (verdict == KeyVerdict::KeyAccepted) CheckSpellings(text);
        const bool isCorrected = verdict > KeyVerdict::KeyBareHive;
        Require(selection.has_value() == (isCorrected || verdict == KeyVerdict::KeyUnknownHive));
        if (!selection) return 0;
        const auto start = static_cast<std::size_t>(selection->start);
        const auto end = selection->end < 0 ? text.size() : static_cast<std::size_t>(selection->end);
        Require(start <= end && end <= text.size());
        if (!isCorrected) return 0;
        Require(start < end && text.find_first_not_of(L'\\', start) >= end);
        text.replace(start, end - start, verdict == KeyVerdict::KeyMultipleBackslash ? L"\\" : L"");
    }
}
