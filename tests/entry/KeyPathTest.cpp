// What may be typed as a key path, and the spellings of one.
#include "entry/KeyPath.h"

#include <gtest/gtest.h>
#include <string>

#include "entry/CharFilter.h"
#include "entry/Hives.h"

namespace {

using enum KeyVerdict;

constexpr wchar_t kWatermark[] = L"Click here to create a new rule";

}  // namespace

TEST(CheckKeyPath, DecidesAndSelects) {
    constexpr int kKeep = -9;  // the selection stays as it is
    const std::wstring longKey = L"HKLM\\" + std::wstring(100000, L'x');
    const struct {
        std::wstring text;
        KeyVerdict verdict;
        int start = kKeep;
        int end = kKeep;
    } cases[] = {
        {L"", KeyBlank},
        {kWatermark, KeyBlank},
        {L"click here to create a new rule", KeyUnknownHive, 0, -1},
        {std::wstring(kWatermark) + L" ", KeyUnknownHive, 0, -1},

        {L"hkcr\\a", KeyAccepted},
        {L"HKCU\\a", KeyAccepted},
        {L"HKLM\\a", KeyAccepted},
        {L"HKCC\\a", KeyAccepted},
        {L"HKEY_CLASSES_ROOT\\a", KeyAccepted},
        {L"HKEY_CURRENT_USER\\a", KeyAccepted},
        {L"HKey_Local_Machine\\Software", KeyAccepted},
        {L"HKEY_USERS\\a", KeyAccepted},
        {L"HKEY_CURRENT_CONFIG\\a", KeyAccepted},
        {L"HKU\\ \t/*?\u4E2D\"%s", KeyAccepted},  // no rule on other characters
        {std::wstring(L"HKU\\a\0b", 7), KeyAccepted},
        {longKey, KeyAccepted},

        {L"Software", KeyUnknownHive, 0, -1},
        {L"HKXX\\Software", KeyUnknownHive, 0, 4},
        {L"\\HKLM\\a", KeyUnknownHive, 0, 0},
        {L"\\\\\\", KeyUnknownHive, 0, 0},
        {L" HKLM\\a", KeyUnknownHive, 0, 5},
        {L"HKLM \\a", KeyUnknownHive, 0, 5},
        {L"HKLMx\\a\\\\", KeyUnknownHive, 0, 5},  // outranks the backslash rules
        {L"HKLM/a", KeyUnknownHive, 0, -1},
        {std::wstring(L"HKLM\0\\a", 7), KeyUnknownHive, 0, 5},

        {L"HKLM", KeyBareHive},
        {L"hkey_users\\", KeyBareHive},

        {L"HKCU\\\\", KeyTrailingBackslash, 4, 6},
        {L"HKCU\\Software\\\\", KeyTrailingBackslash, 13, 15},
        {L"HKLM\\a\\", KeyTrailingBackslash, 6, 7},
        {L"HKLM\\a\\\\b\\", KeyTrailingBackslash, 9, 10},  // outranks the doubled one
        {L"HKLM" + std::wstring(100000, L'\\'), KeyTrailingBackslash, 4, 100004},

        {L"HKLM\\\\\\a\\b", KeyMultipleBackslash, 4, 7},
        {L"HKLM\\a\\\\b", KeyMultipleBackslash, 6, 8},
        {L"HKLM\\a\\\\b\\\\c", KeyMultipleBackslash, 6, 8},
        {L"HKU\\a\\b\\\\\\\\c\\\\\\d", KeyMultipleBackslash, 7, 11},
        {longKey + L"\\\\y", KeyMultipleBackslash, 100005, 100007},
    };
    for (const auto& [text, verdict, start, end] : cases) {
        const KeyCheck check = CheckKeyPath(text, kWatermark, ShippedHives());
        EXPECT_EQ(check.verdict, verdict) << text.substr(0, 50);
        EXPECT_EQ(check.selection.value_or(KeySelection{kKeep, kKeep}), (KeySelection{start, end}))
            << text.substr(0, 50);
    }
    HiveTable hives = ShippedHives();
    hives[2].abbreviation = L"Undefined string resource requested: 219";
    EXPECT_EQ(CheckKeyPath(L"HKLM\\a", kWatermark, hives).verdict, KeyUnknownHive) << "its text did not load";
    EXPECT_EQ(CheckKeyPath(L"HKEY_LOCAL_MACHINE\\a", kWatermark, hives).verdict, KeyAccepted);
}

TEST(HiveTable, ConvertsBetweenTheSpellings) {
    using Convert = std::wstring (*)(std::wstring_view, const HiveTable&);
    const struct {
        Convert convert;
        const wchar_t* input;
        const wchar_t* expected;
    } cases[] = {
        {AbbreviateHive, L"HKEY_CLASSES_ROOT\\.txt", L"HKCR\\.txt"},
        {AbbreviateHive, L"HKEY_CURRENT_USER\\Software", L"HKCU\\Software"},
        {AbbreviateHive, L"HKEY_LOCAL_MACHINE\\Software", L"HKLM\\Software"},
        {AbbreviateHive, L"HKEY_CURRENT_CONFIG", L"HKCC"},
        {AbbreviateHive, L"hkey_Users\\HKEY_USERS\\x",
         L"HKU\\HKEY_USERS\\x"},                          // the leading one only, the rest as typed
        {AbbreviateHive, L"HKEY_USERSx\\y", L"HKUx\\y"},  // what follows it is not looked at
        {AbbreviateHive, L"HKEY_USER\\y", L"HKEY_USER\\y"},
        {AbbreviateHive, L" HKEY_USERS\\y", L" HKEY_USERS\\y"},
        {AbbreviateHive, L"H\u212AEY_USERS\\y", L"H\u212AEY_USERS\\y"},  // the Kelvin sign is not a K
        {NormaliseAbbreviation, L"hkcu\\Software\\hkcu", L"HKCU\\Software\\hkcu"},
        {NormaliseAbbreviation, L"hKcR\\x", L"HKCR\\x"},
        {NormaliseAbbreviation, L"hku\\S-1-5-18", L"HKU\\S-1-5-18"},
        {NormaliseAbbreviation, L"hklmx", L"HKLMx"},
        {NormaliseAbbreviation, L"hk\\x", L"hk\\x"},
        {NormaliseAbbreviation, L"hkey_users\\x", L"hkey_users\\x"},
        {ExpandHive, L"HKCR\\.txt", L"HKEY_CLASSES_ROOT\\.txt"},
        {ExpandHive, L"HKCU", L"HKEY_CURRENT_USER"},
        {ExpandHive, L"HKLM\\HKLM\\x", L"HKEY_LOCAL_MACHINE\\HKLM\\x"},
        {ExpandHive, L"HKU\\UKH", L"HKEY_USERS\\UKH"},
        {ExpandHive, L"HKCC\\System", L"HKEY_CURRENT_CONFIG\\System"},
        {ExpandHive, L"hkcu\\Software", L"hkcu\\Software"},
        {ExpandHive, L"HKEY_USERS\\x", L"HKEY_USERS\\x"},
        {ExpandHive, L"", L""},
        // Letters of the abbreviation behind it go with it, in any order and number.
        {ExpandHive, L"HKCUUCHKx\\HKCU", L"HKEY_CURRENT_USERx\\HKCU"},
        {ExpandHive, L"HKUHKUS\\x", L"HKEY_USERSS\\x"},
        {ExpandHive, L"HKCUcu", L"HKEY_CURRENT_USERcu"},
    };
    for (const auto& c : cases) EXPECT_EQ(c.convert(c.input, ShippedHives()), c.expected) << c.input;
    EXPECT_EQ(MakeHivePath(0x80000004, L"Global", ShippedHives()), L"Global") << "no hive of ours";
    EXPECT_EQ(MakeHivePath(0x80000001, L"", ShippedHives()), L"HKCU\\");
    EXPECT_EQ(MakeHivePath(0x80000005, L"\\a%s\\", ShippedHives()), L"HKCC\\\\a%s\\");
}

TEST(MayTypeCharacter, AllowsTheGivenOnesAndTheEditsOwnControls) {
    for (const wchar_t c : std::wstring(L"ab\u4E2D\x03\x08\x16\x18"))
        EXPECT_TRUE(MayTypeCharacter(c, L"ab\u4E2D")) << int{c};
    for (const wchar_t c : std::wstring(L"cA\r\t\x1B\x01\0", 7))
        EXPECT_FALSE(MayTypeCharacter(c, L"ab\u4E2D")) << int{c};
    for (const wchar_t c : std::wstring(L"c\r\x1B\0", 4)) EXPECT_TRUE(MayTypeCharacter(c, L"")) << int{c};
}
