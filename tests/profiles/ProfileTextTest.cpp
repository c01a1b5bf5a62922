#include "profiles/ProfileText.h"

#include <gtest/gtest.h>

TEST(ProfilePathExtension, FollowsTheVersionAndFromWindows8TheSetting) {
    struct Case {
        std::uint32_t major;
        std::uint32_t minor;
        std::uint32_t setting;
        std::wstring_view expected;
    };
    const Case cases[] = {
        {5, 1, 1, L".V2"},          {6, 0, 1, L".V2"},  {6, 1, 1, L".V2"},  {6, 2, 0, L".V2"},
        {6, 2, 1, L".V3"},          {6, 3, 0, L".V2"},  {6, 3, 7, L".V4"},  {6, 9, 1, L".V4"},
        {7, 0, 0xffffffff, L".V4"}, {10, 0, 0, L".V6"}, {10, 0, 1, L".V6"}, {11, 0, 0, L".V6"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.major << "." << c.minor << " setting " << c.setting);
        EXPECT_EQ(ProfilePathExtension({c.major, c.minor}, c.setting), c.expected);
    }
}

TEST(ProfilePathExtension, OnlyAWholeSuffixComesOff) {
    struct Case {
        std::wstring_view path;
        std::wstring_view expected;
    };
    const Case cases[] = {
        {L"\\\\srv\\p\\ann.V2", L"\\\\srv\\p\\ann"},
        {L"ann.V5", L"ann"},
        {L"a.V6", L"a"},
        {L"ann.V2.V3", L"ann.V2"},
        {L"ann.v2", L"ann.v2"},
        {L"ann.V1", L"ann.V1"},
        {L"ann.V7", L"ann.V7"},
        {L"ann.V2\\", L"ann.V2\\"},
        {L"annV2", L"annV2"},
        {L".V2", L".V2"},
        {L"", L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.path)));
        EXPECT_EQ(WithoutProfilePathExtension(c.path), c.expected);
    }
}

TEST(ProfileText, TakesTheNameBehindTheDomain) {
    struct Case {
        std::wstring_view name;
        std::wstring_view expected;
    };
    const Case cases[] = {
        {L"DOMAIN\\ann", L"ann"},
        {L"DOMAIN\\ann\\x", L"ann"},
        {L"DOMAIN\\\\ann", L"ann"},
        {L"\\ann", L""},
        {L"\\DOMAIN\\ann", L"ann"},
        {L"ann", L""},
        {L"DOMAIN\\", L""},
        {L"\\\\\\", L""},
        {L"", L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.name)));
        EXPECT_EQ(ShortUserName(c.name), c.expected);
    }
}

TEST(ProfileText, FindsTheServerOfAShare) {
    struct Case {
        std::wstring_view path;
        std::wstring_view expected;
    };
    const Case cases[] = {
        {L"\\\\srv\\profiles\\ann", L"\\\\srv"},
        {L"\\\\srv\\profiles\\a\\b\\c", L"\\\\srv"},
        {L"\\\\srv\\profiles", L"\\\\srv"},
        {L"\\\\srv\\profiles\\/\\", L"\\\\srv"},
        {L"C:\\x\\y", L"C:\\x"},
        {L"C:\\x\\y\\//", L"C:\\x"},
        {L"\\\\srv", L"\\"},
        {L"name", L""},
        {L"\\\\", L""},
        {L"", L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.path)));
        EXPECT_EQ(ServerOf(c.path), c.expected);
    }
}
