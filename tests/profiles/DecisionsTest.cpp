// Decisions on profile paths, tokens, shell folders, and users that a list holds twice.
#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

#include "files/SystemTokens.h"
#include "profiles/ProfileText.h"
#include "profiles/ShellFolders.h"
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
    const std::tuple<std::uint32_t, std::uint32_t, std::uint32_t, Text> cases[] = {
        {5, 1, 1, L".V2"}, {6, 1, 1, L".V2"}, {6, 2, 0, L".V2"}, {6, 2, 1, L".V3"},
        {6, 3, 0, L".V2"}, {6, 3, 7, L".V4"}, {7, 0, 1, L".V4"}, {10, 0, 0, L".V6"},
    };
    for (const auto& [major, minor, setting, expected] : cases)
        EXPECT_EQ(ProfilePathExtension({major, minor}, setting), expected) << major << "." << minor;
    ExpectAll(WithoutProfilePathExtension, {{L"\\\\srv\\p\\ann.V2", L"\\\\srv\\p\\ann"},
                                            {L"a.V5", L"a"},
                                            {L"ann.V2.V3", L"ann.V2"},
                                            {L"ann.v2", L"ann.v2"},
                                            {L"ann.V7", L"ann.V7"},
                                            {L"ann.V2\\", L"ann.V2\\"},
                                            {L".V2", L".V2"}});
    ExpectAll(
        ShortUserName,
        {{L"DOMAIN\\ann\\x", L"ann"}, {L"\\DOMAIN\\\\ann", L"ann"}, {L"\\ann", L""}, {L"ann", L""}, {L"\\\\\\", L""}});
    ExpectAll(ServerOf, {{L"\\\\srv\\profiles\\a\\b", L"\\\\srv"},
                         {L"\\\\srv\\profiles\\/\\", L"\\\\srv"},
                         {L"C:\\x\\y\\//", L"C:\\x"},
                         {L"\\\\srv", L"\\"},
                         {L"name", L""}});
}

TEST(SystemTokens, HaveThreeSpellingsAndNoOther) {
    const auto replace = [](Text root) { return [root](Text path) { return ReplaceSystemTokens(path, root); }; };
    ExpectAll(replace(L"D:\\W"), {{L"%systemroot%;%SYSTEMROOT%;%SystemRoot%", L"D:\\W;D:\\W;D:\\W"},
                                  {L"%systemdrive%;%SYSTEMDRIVE%;%SystemDrive%;%SystemDrive%", L"D:;D:;D:;D:"},
                                  {L"%SYSTEMroot%\\%Systemdrive%", L"%SYSTEMroot%\\%Systemdrive%"},
                                  {L"%%SystemRoot%%", L"%D:\\W%"},
                                  {L"%SystemRoot", L"%SystemRoot"}});
    ExpectAll(replace(L""), {{L"%SystemRoot%", L"%SystemRoot%"}});
    ExpectAll(replace(L"D"), {{L"%SystemDrive%", L"D"}});
    // The drives are replaced after the roots, also in what a root brought in; nothing is replaced a second time.
    ExpectAll(replace(L"%SystemDrive%\\W"), {{L"%SystemRoot%", L"%S\\W"}});
    ExpectAll(replace(L"%SystemRoot%"), {{L"%SystemRoot%", L"%SystemRoot%"}});
}

TEST(ShellFolders, ARoamingUsersMoveUnlessTheyLieInLocalAppDataAndAnUpdateFillsTheFirstEmptyPathOfTheName) {
    constexpr Text kLocal = L"C:\\Users\\ann";
    const auto roaming = [&](Text appData, Text profile = L"\\\\srv\\p\\ann") {
        return [=](Text text) { return RoamingFolder(text, profile, kLocal, appData); };
    };
    constexpr Text kAppData = L"C:\\Users\\ann\\AppData\\Local";
    ExpectAll(
        roaming(kAppData),
        {{L"%USERPROFILE%\\Desktop", L"\\\\srv\\p\\ann\\Desktop"},
         {L"%USERPROFILE%\\AppData\\LocalLow", L"C:\\Users\\ann\\AppData\\LocalLow"},
         {L"\\\\?\\C:\\Users\\ann\\AppData\\Local\\x", L"\\\\?\\C:\\Users\\ann\\AppData\\Local\\x"},
         {L"%USERPROFILE%\\AppData\\local\\x", L"\\\\srv\\p\\ann\\AppData\\local\\x"},
         {L"%userprofile%\\D:\\Data", L"%userprofile%\\D:\\Data"},
         {L"%USERPROFILE%;C:\\Users\\ann\\a;C:\\Users\\anna", L"\\\\srv\\p\\ann;\\\\srv\\p\\ann\\a;\\\\srv\\p\\anna"}});
    ExpectAll(roaming(L""), {{L"%USERPROFILE%\\Desktop", L"C:\\Users\\ann\\Desktop"}});
    // A roaming profile whose path begins with the local one's is put in twice, by each of the two replacements.
    ExpectAll(roaming(kAppData, L"C:\\Users\\ann.V2"), {{L"%USERPROFILE%\\a", L"C:\\Users\\ann.V2.V2\\a"}});
    // A profile path that holds the token itself does not go round for ever.
    EXPECT_EQ(LocalFolder(L"%USERPROFILE%\\a", L"%USERPROFILE%\\b"), L"%USERPROFILE%\\b\\a");
    EXPECT_EQ(LocalFolder(L"%USERPROFILE%\\a", L""), L"%USERPROFILE%\\a");

    using enum UserPath;
    const std::tuple<Text, std::vector<UserPath>, std::optional<UserPath>> updates[] = {
        {L"dESKTOP", {Desktop, Personal}, Desktop},
        {L"desktop", {Personal}, {}},
        {L"Profile", {Profile, LocalProfile}, Profile},
        {L"LOCALPROFILE", {Profile, LocalProfile}, LocalProfile},
        {L"Programs", {Programs}, Programs},
        {L"Recent", {Recent}, Recent},
        {NameOf(Links), {Links}, {}},
        {L"Desktop ", {Desktop}, {}},
    };
    for (const auto& [name, emptyPaths, expected] : updates) {
        std::bitset<kUserPathCount> empty;
        for (const UserPath path : emptyPaths) empty.set(static_cast<std::size_t>(path));
        EXPECT_EQ(PathToUpdate(name, empty), expected) << testing::PrintToString(std::wstring(name));
    }
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
        const auto either = [&](DuplicateOutcome other) {
            return bits == 0b1110 ? SkipHiveToBeLoaded : bits == 0b0011 ? ReplaceHiveToBeLoaded : other;
        };
        EXPECT_EQ(decide(INT64_MAX, INT64_MIN, true), either(SkipSamePath));
        EXPECT_EQ(decide(INT64_MAX, INT64_MIN, false), either(ExistingBecomesSubordinate));
        EXPECT_EQ(decide(INT64_MIN, INT64_MAX, false), either(NewBecomesSubordinate));
        EXPECT_EQ(decide(5, 5, false), either(NewBecomesSubordinate)) << "a tie";
    }
}
