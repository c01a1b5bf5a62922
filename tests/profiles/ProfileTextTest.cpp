// Decisions on profile paths, tokens, and users that a list holds twice.
#include "profiles/ProfileText.h"

#include <cstdint>
#include <gtest/gtest.h>

#include "files/SystemTokens.h"
#include "profiles/UserListDecision.h"

namespace {

using Text = std::wstring_view;

template <class Function>
void ExpectAll(Function function, std::initializer_list<std::pair<Text, Text>> cases) {
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(function(text), expected) << testing::PrintToString(std::wstring(text));
}

}  // namespace

TEST(ProfileText, SuffixesFollowTheVersionAndFromWindows8TheSetting) {
    const struct {
        std::uint32_t major, minor, setting;
        Text expected;
    } cases[] = {
        {5, 1, 1, L".V2"}, {6, 1, 1, L".V2"}, {6, 2, 0, L".V2"}, {6, 2, 1, L".V3"},
        {6, 3, 0, L".V2"}, {6, 3, 7, L".V4"}, {7, 0, 1, L".V4"}, {10, 0, 0, L".V6"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ProfilePathExtension({c.major, c.minor}, c.setting), c.expected) << c.major << "." << c.minor;
    ExpectAll(WithoutProfilePathExtension, {{L"\\\\srv\\p\\ann.V2", L"\\\\srv\\p\\ann"},
                                            {L"a.V5", L"a"},
                                            {L"ann.V2.V3", L"ann.V2"},
                                            {L"ann.v2", L"ann.v2"},
                                            {L"ann.V7", L"ann.V7"},
                                            {L"ann.V2\\", L"ann.V2\\"},
                                            {L".V2", L".V2"},
                                            {L"", L""}});
}

TEST(ProfileText, NamesAndServersAreFoundInWhatIsThere) {
    ExpectAll(ShortUserName, {{L"DOMAIN\\ann\\x", L"ann"},
                              {L"\\DOMAIN\\\\ann", L"ann"},
                              {L"\\ann", L""},
                              {L"ann", L""},
                              {L"DOMAIN\\", L""},
                              {L"\\\\\\", L""}});
    ExpectAll(ServerOf, {{L"\\\\srv\\profiles\\a\\b", L"\\\\srv"},
                         {L"\\\\srv\\profiles\\/\\", L"\\\\srv"},
                         {L"C:\\x\\y\\//", L"C:\\x"},
                         {L"\\\\srv", L"\\"},
                         {L"name", L""},
                         {L"", L""}});
}

TEST(SystemTokens, HaveThreeSpellingsAndNoOther) {
    const auto replace = [](Text root) { return [root](Text path) { return ReplaceSystemTokens(path, root); }; };
    ExpectAll(replace(L"D:\\W"), {{L"%systemroot%;%SYSTEMROOT%;%SystemRoot%", L"D:\\W;D:\\W;D:\\W"},
                                  {L"%systemdrive%;%SYSTEMDRIVE%;%SystemDrive%;%SystemDrive%", L"D:;D:;D:;D:"},
                                  {L"%SYSTEMroot%\\%Systemdrive%", L"%SYSTEMroot%\\%Systemdrive%"},
                                  {L"%%SystemRoot%%", L"%D:\\W%"},
                                  {L"%SystemRoot", L"%SystemRoot"},
                                  {L"", L""}});
    ExpectAll(replace(L""), {{L"%SystemRoot%", L"%SystemRoot%"}});
    ExpectAll(replace(L"D"), {{L"%SystemDrive%", L"D"}});
    // The drives are replaced after the roots, also in what a root brought in; nothing is replaced a second time.
    ExpectAll(replace(L"%SystemDrive%\\W"), {{L"%SystemRoot%", L"%S\\W"}});
    ExpectAll(replace(L"%SystemRoot%"), {{L"%SystemRoot%", L"%SystemRoot%"}});
}

// All combinations of the four answers: new and existing user, each with a hive (first) and with one to be loaded.
TEST(UserListDecision, OnlyTwoOfSixteenCombinationsLookAtTheHivesAlone) {
    using enum DuplicateOutcome;
    for (int bits = 0; bits < 16; ++bits) {
        SCOPED_TRACE(bits);
        const auto decide = [bits](std::int64_t newPrecedence, std::int64_t existingPrecedence, bool samePath) {
            return DecideDuplicate({(bits & 8) != 0, (bits & 4) != 0, newPrecedence},
                                   {(bits & 2) != 0, (bits & 1) != 0, existingPrecedence}, samePath);
        };
        const bool skips = bits == 0b1110;
        const bool replaces = bits == 0b0011;
        const auto either = [&](DuplicateOutcome other) {
            return skips ? SkipHiveToBeLoaded : replaces ? ReplaceHiveToBeLoaded : other;
        };
        EXPECT_EQ(decide(INT64_MAX, INT64_MIN, true), either(SkipSamePath));
        EXPECT_EQ(decide(INT64_MAX, INT64_MIN, false), either(ExistingBecomesSubordinate));
        EXPECT_EQ(decide(INT64_MIN, INT64_MAX, false), either(NewBecomesSubordinate));
        EXPECT_EQ(decide(5, 5, false), either(NewBecomesSubordinate)) << "a tie";
    }
}
