#include <gtest/gtest.h>
#include <string>

#include "helpers/AsciiCase.h"

TEST(IgnoringAsciiCase, OnlyLatinLettersHaveTwoCases) {
    EXPECT_TRUE(EqualIgnoringAsciiCase(L"Hkey_Users", L"HKEY_USERS"));
    EXPECT_FALSE(EqualIgnoringAsciiCase(L"HKEY_USER", L"HKEY_USERS"));
    EXPECT_FALSE(EqualIgnoringAsciiCase(L"\x017FYSTEM", L"SYSTEM"));  // long s
    EXPECT_FALSE(EqualIgnoringAsciiCase(L"[", L"{"));
    EXPECT_TRUE(StartsWithIgnoringAsciiCase(L"softwareX", L"SOFTWARE"));
    EXPECT_FALSE(StartsWithIgnoringAsciiCase(L"soft", L"SOFTWARE"));
    EXPECT_EQ(FindIgnoringAsciiCase(L"a\\CurrentControlSet", L"currentcontrolset"), 2u);
    EXPECT_EQ(FindIgnoringAsciiCase(L"currentcontrolse", L"currentcontrolset"), std::wstring_view::npos);
    EXPECT_EQ(FindIgnoringAsciiCase(L"", L"x"), std::wstring_view::npos);
}
