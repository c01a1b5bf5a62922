#include "entry/CharFilter.h"

#include <gtest/gtest.h>
#include <string>

TEST(MayTypeCharacter, AllowsTheGivenOnesAndTheEditsOwnControls) {
    for (const wchar_t c : std::wstring(L"ab\u4E2D\x03\x08\x16\x18"))
        EXPECT_TRUE(MayTypeCharacter(c, L"ab\u4E2D")) << static_cast<int>(c);
    for (const wchar_t c : std::wstring(L"cA\r\t\x1B\x01", 6))
        EXPECT_FALSE(MayTypeCharacter(c, L"ab\u4E2D")) << static_cast<int>(c);
    EXPECT_FALSE(MayTypeCharacter(L'\0', L"ab"));
    for (const wchar_t c : std::wstring(L"c\r\x1B\0", 4)) EXPECT_TRUE(MayTypeCharacter(c, L"")) << static_cast<int>(c);
}
