#include "entry/HiveText.h"

#include <gtest/gtest.h>

#include "entry/Hives.h"

TEST(HiveText, TheTableIsFilledFromTheStringTable) {
    for (std::size_t row = 0; row < Hives().size(); ++row) {
        EXPECT_EQ(Hives()[row].rootKey, ShippedHives()[row].rootKey);
        EXPECT_EQ(Hives()[row].fullName, ShippedHives()[row].fullName);
        EXPECT_EQ(Hives()[row].abbreviation, ShippedHives()[row].abbreviation);
    }
}

TEST(HiveText, ConvertsWholeTextsAndPredefinedHandles) {
    CString path = L"hkey_users\\\u00E9\u4E2D";
    EXPECT_EQ(AbbreviateHive(path), L"HKU\\\u00E9\u4E2D");
    EXPECT_EQ(NormaliseAbbreviation(L"hkU\\a"), L"HKU\\a");
    path = L"HKU\\a";
    ExpandHive(path);
    EXPECT_EQ(path, L"HKEY_USERS\\a");
    EXPECT_EQ(MakeHivePath(HKEY_CURRENT_USER, L"a"), L"HKCU\\a");
    EXPECT_EQ(MakeHivePath(HKEY_PERFORMANCE_DATA, L"a"), L"a");
    EXPECT_EQ(MakeHivePath(nullptr, L""), L"");
    EXPECT_EQ(CheckKeyPath(L"HKLM\\a\\", L"watermark").verdict, KeyVerdict::KeyTrailingBackslash);
}
