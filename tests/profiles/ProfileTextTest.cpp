#include "profiles/ProfileText.h"

#include <gtest/gtest.h>

namespace {

struct Case {
    std::wstring_view text;
    std::wstring_view expected;
};

template <class Function>
void ExpectAll(Function function, std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
        EXPECT_EQ(function(c.text), c.expected) << testing::PrintToString(std::wstring(c.text));
    }
}

}  // namespace

TEST(ProfilePathExtension, FollowsTheVersionAndFromWindows8TheSetting) {
    struct VersionCase {
        std::uint32_t major;
        std::uint32_t minor;
        std::uint32_t setting;
        std::wstring_view expected;
    };
    const VersionCase cases[] = {
        {5, 1, 1, L".V2"}, {6, 1, 1, L".V2"}, {6, 2, 0, L".V2"}, {6, 2, 1, L".V3"},  {6, 3, 0, L".V2"},
        {6, 3, 7, L".V4"}, {6, 9, 1, L".V4"}, {7, 0, 1, L".V4"}, {10, 0, 0, L".V6"}, {11, 0, 1, L".V6"},
    };
    for (const VersionCase& c : cases) {
        EXPECT_EQ(ProfilePathExtension({c.major, c.minor}, c.setting), c.expected)
            << c.major << "." << c.minor << " setting " << c.setting;
    }
}

TEST(ProfileText, TakesOffAWholeSuffixOnly) {
    ExpectAll(WithoutProfilePathExtension, {
                                               {L"\\\\srv\\p\\ann.V2", L"\\\\srv\\p\\ann"},
                                               {L"ann.V5", L"ann"},
                                               {L"a.V6", L"a"},
                                               {L"ann.V2.V3", L"ann.V2"},
                                               {L"ann.v2", L"ann.v2"},
                                               {L"ann.V1", L"ann.V1"},
                                               {L"ann.V7", L"ann.V7"},
                                               {L"ann.V2\\", L"ann.V2\\"},
                                               {L".V2", L".V2"},
                                               {L"", L""},
                                           });
}

TEST(ProfileText, TakesTheNameBehindTheDomain) {
    ExpectAll(ShortUserName, {
                                 {L"DOMAIN\\ann", L"ann"},
                                 {L"DOMAIN\\ann\\x", L"ann"},
                                 {L"\\DOMAIN\\\\ann", L"ann"},
                                 {L"\\ann", L""},
                                 {L"ann", L""},
                                 {L"DOMAIN\\", L""},
                                 {L"\\\\\\", L""},
                             });
}

TEST(ProfileText, FindsTheServerOfAShare) {
    ExpectAll(ServerOf, {
                            {L"\\\\srv\\profiles\\a\\b", L"\\\\srv"},
                            {L"\\\\srv\\profiles\\/\\", L"\\\\srv"},
                            {L"C:\\x\\y\\//", L"C:\\x"},
                            {L"\\\\srv", L"\\"},
                            {L"name", L""},
                            {L"\\\\", L""},
                            {L"", L""},
                        });
}
