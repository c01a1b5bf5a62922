#include "entry/KeyPath.h"

#include <gtest/gtest.h>
#include <string>

#include "entry/Hives.h"

namespace {

using enum KeyVerdict;

constexpr wchar_t kWatermark[] = L"Click here to create a new rule";
constexpr std::optional<KeySelection> kKeep;

std::optional<KeySelection> Select(int start, int end) {
    return KeySelection{start, end};
}

TEST(CheckKeyPath, DecidesAndSelects) {
    const struct {
        std::wstring text;
        KeyVerdict verdict;
        std::optional<KeySelection> selection;
    } cases[] = {
        {L"", KeyBlank, kKeep},
        {kWatermark, KeyBlank, kKeep},
        {L"click here to create a new rule", KeyUnknownHive, Select(0, -1)},
        {std::wstring(kWatermark) + L" ", KeyUnknownHive, Select(0, -1)},

        {L"HKCR\\a", KeyAccepted, kKeep},
        {L"HKCU\\a", KeyAccepted, kKeep},
        {L"HKLM\\a", KeyAccepted, kKeep},
        {L"HKU\\a", KeyAccepted, kKeep},
        {L"HKCC\\a", KeyAccepted, kKeep},
        {L"HKEY_CLASSES_ROOT\\a", KeyAccepted, kKeep},
        {L"HKEY_CURRENT_USER\\a", KeyAccepted, kKeep},
        {L"HKey_Local_Machine\\Software", KeyAccepted, kKeep},
        {L"HKEY_USERS\\a", KeyAccepted, kKeep},
        {L"HKEY_CURRENT_CONFIG\\a", KeyAccepted, kKeep},
        {L"hklm\\Software", KeyAccepted, kKeep},
        {L"HKU\\ \t/*?\u4E2D\"%s", KeyAccepted, kKeep},  // no rule on other characters
        {std::wstring(L"HKU\\a\0b", 7), KeyAccepted, kKeep},

        {L"Software", KeyUnknownHive, Select(0, -1)},
        {L"HKXX\\Software", KeyUnknownHive, Select(0, 4)},
        {L"\\", KeyUnknownHive, Select(0, 0)},
        {L"\\HKLM\\a", KeyUnknownHive, Select(0, 0)},
        {L"\\\\\\", KeyUnknownHive, Select(0, 0)},
        {L" HKLM\\a", KeyUnknownHive, Select(0, 5)},
        {L"HKLM \\a", KeyUnknownHive, Select(0, 5)},
        {L"HKL\\a", KeyUnknownHive, Select(0, 3)},
        {L"HKLMx\\a\\\\", KeyUnknownHive, Select(0, 5)},  // outranks the backslash rules
        {L"HKLM/a", KeyUnknownHive, Select(0, -1)},
        {L"HKPD\\a", KeyUnknownHive, Select(0, 4)},
        {std::wstring(L"HKLM\0\\a", 7), KeyUnknownHive, Select(0, 5)},

        {L"HKLM", KeyBareHive, kKeep},
        {L"HKLM\\", KeyBareHive, kKeep},
        {L"hkey_users", KeyBareHive, kKeep},
        {L"HKEY_USERS\\", KeyBareHive, kKeep},

        {L"HKCU\\\\", KeyTrailingBackslash, Select(4, 6)},
        {L"HKCU\\Software\\\\", KeyTrailingBackslash, Select(13, 15)},
        {L"HKLM\\a\\", KeyTrailingBackslash, Select(6, 7)},
        {L"HKLM\\a\\\\\\", KeyTrailingBackslash, Select(6, 9)},
        {L"HKLM\\a\\\\b\\", KeyTrailingBackslash, Select(9, 10)},  // outranks the doubled one

        {L"HKLM\\\\a", KeyMultipleBackslash, Select(4, 6)},
        {L"HKLM\\\\\\a\\b", KeyMultipleBackslash, Select(4, 7)},
        {L"HKLM\\a\\\\b", KeyMultipleBackslash, Select(6, 8)},
        {L"HKLM\\a\\\\\\b", KeyMultipleBackslash, Select(6, 9)},
        {L"HKLM\\a\\\\b\\\\c", KeyMultipleBackslash, Select(6, 8)},
        {L"HKU\\a\\b\\\\\\\\c\\\\\\d", KeyMultipleBackslash, Select(7, 11)},
    };
    for (const auto& [text, verdict, selection] : cases) {
        const KeyCheck check = CheckKeyPath(text, kWatermark, ShippedHives());
        EXPECT_EQ(check.verdict, verdict) << text;
        EXPECT_EQ(check.selection, selection) << text;
    }
}

TEST(CheckKeyPath, HasNoLimitOnTheLength) {
    const std::wstring key = L"HKLM\\" + std::wstring(100000, L'x');
    EXPECT_EQ(CheckKeyPath(key, kWatermark, ShippedHives()), (KeyCheck{KeyAccepted, {}}));
    EXPECT_EQ(CheckKeyPath(key + L"\\\\y", kWatermark, ShippedHives()),
              (KeyCheck{KeyMultipleBackslash, Select(100005, 100007)}));
    const std::wstring backslashes(100000, L'\\');
    EXPECT_EQ(CheckKeyPath(L"HKLM" + backslashes, kWatermark, ShippedHives()),
              (KeyCheck{KeyTrailingBackslash, Select(4, 100004)}));
}

TEST(CheckKeyPath, AHiveTextThatDidNotLoadLeavesItsHiveUnknown) {
    HiveTable hives = ShippedHives();
    hives[2].abbreviation = L"Undefined string resource requested: 219";
    EXPECT_EQ(CheckKeyPath(L"HKLM\\a", kWatermark, hives).verdict, KeyUnknownHive);
    EXPECT_EQ(CheckKeyPath(L"HKEY_LOCAL_MACHINE\\a", kWatermark, hives).verdict, KeyAccepted);
}

}  // namespace
