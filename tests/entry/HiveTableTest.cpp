#include "entry/HiveTable.h"

#include <gtest/gtest.h>

#include "entry/Hives.h"

namespace {

struct Conversion {
    const wchar_t* input;
    const wchar_t* expected;
};

TEST(AbbreviateHive, ReplacesALeadingFullNameInAnyCase) {
    const Conversion cases[] = {
        {L"HKEY_CLASSES_ROOT\\.txt", L"HKCR\\.txt"},
        {L"HKEY_CURRENT_USER\\Software", L"HKCU\\Software"},
        {L"HKEY_LOCAL_MACHINE\\Software", L"HKLM\\Software"},
        {L"HKEY_USERS\\.DEFAULT", L"HKU\\.DEFAULT"},
        {L"HKEY_CURRENT_CONFIG\\System", L"HKCC\\System"},
        {L"hkey_Users\\HKEY_USERS\\x", L"HKU\\HKEY_USERS\\x"},  // the leading one only, the rest as typed
        {L"HKEY_USERS", L"HKU"},
        {L"HKEY_USERSx\\y", L"HKUx\\y"},  // what follows the prefix is not looked at
        {L"HKEY_USER\\y", L"HKEY_USER\\y"},
        {L" HKEY_USERS\\y", L" HKEY_USERS\\y"},
        {L"\\HKEY_USERS", L"\\HKEY_USERS"},
        {L"HKCU\\Software", L"HKCU\\Software"},
        {L"H\u212AEY_USERS\\y", L"H\u212AEY_USERS\\y"},  // the Kelvin sign is not a K
        {L"", L""},
    };
    for (const auto& [input, expected] : cases) EXPECT_EQ(AbbreviateHive(input, ShippedHives()), expected) << input;
}

TEST(NormaliseAbbreviation, SpellsALeadingAbbreviationAsTheTableDoes) {
    const Conversion cases[] = {
        {L"hkcu\\Software\\hkcu", L"HKCU\\Software\\hkcu"},
        {L"hKcR\\x", L"HKCR\\x"},
        {L"hku\\S-1-5-18", L"HKU\\S-1-5-18"},
        {L"hkcc", L"HKCC"},
        {L"hklmx", L"HKLMx"},
        {L"hk\\x", L"hk\\x"},
        {L"hkey_users\\x", L"hkey_users\\x"},
        {L"", L""},
    };
    for (const auto& [input, expected] : cases) {
        EXPECT_EQ(NormaliseAbbreviation(input, ShippedHives()), expected) << input;
    }
}

TEST(ExpandHive, ReplacesAnAbbreviationInTheTablesCase) {
    const Conversion cases[] = {
        {L"HKCR\\.txt", L"HKEY_CLASSES_ROOT\\.txt"},
        {L"HKCU\\Software", L"HKEY_CURRENT_USER\\Software"},
        {L"HKLM\\HKLM\\x", L"HKEY_LOCAL_MACHINE\\HKLM\\x"},
        {L"HKU\\UKH", L"HKEY_USERS\\UKH"},
        {L"HKCC\\System", L"HKEY_CURRENT_CONFIG\\System"},
        {L"HKCU", L"HKEY_CURRENT_USER"},
        {L"hkcu\\Software", L"hkcu\\Software"},
        {L"HKEY_USERS\\x", L"HKEY_USERS\\x"},
        {L"HK", L"HK"},
        {L"", L""},
        // Letters of the abbreviation behind it go with it, in any order and number.
        {L"HKCUCU", L"HKEY_CURRENT_USER"},
        {L"HKCUUCHKx\\HKCU", L"HKEY_CURRENT_USERx\\HKCU"},
        {L"HKUHKUS\\x", L"HKEY_USERSS\\x"},
        {L"HKCUcu", L"HKEY_CURRENT_USERcu"},
    };
    for (const auto& [input, expected] : cases) EXPECT_EQ(ExpandHive(input, ShippedHives()), expected) << input;
}

TEST(MakeHivePath, JoinsWithABackslashWhateverTheSubkey) {
    EXPECT_EQ(MakeHivePath(0x80000004, L"Global", ShippedHives()), L"Global") << "no hive of ours";
    EXPECT_EQ(MakeHivePath(0x80000000, L".txt", ShippedHives()), L"HKCR\\.txt");
    EXPECT_EQ(MakeHivePath(0x80000001, L"", ShippedHives()), L"HKCU\\");
    EXPECT_EQ(MakeHivePath(0x80000002, L"\\a%s\\", ShippedHives()), L"HKLM\\\\a%s\\");
    EXPECT_EQ(MakeHivePath(0x80000003, L"S-1-5-18", ShippedHives()), L"HKU\\S-1-5-18");
    EXPECT_EQ(MakeHivePath(0x80000005, L"System", ShippedHives()), L"HKCC\\System");
}

}  // namespace
