#include "profiles/ShellFolders.h"

#include <gtest/gtest.h>
#include <vector>

TEST(ShellFolders, ARoamingUsersFoldersMoveUnlessTheyLieInLocalAppData) {
    constexpr std::wstring_view kLocal = L"C:\\Users\\ann";
    constexpr std::wstring_view kRoaming = L"\\\\srv\\p\\ann";
    constexpr std::wstring_view kAppData = L"C:\\Users\\ann\\AppData\\Local";
    const struct {
        std::wstring_view text, appData, expected;
    } cases[] = {
        {L"%USERPROFILE%\\Desktop", kAppData, L"\\\\srv\\p\\ann\\Desktop"},
        {L"%USERPROFILE%\\AppData\\LocalLow", kAppData, L"C:\\Users\\ann\\AppData\\LocalLow"},
        {L"\\\\?\\C:\\Users\\ann\\AppData\\Local\\x", kAppData, L"\\\\?\\C:\\Users\\ann\\AppData\\Local\\x"},
        {L"%USERPROFILE%\\AppData\\local\\x", kAppData, L"\\\\srv\\p\\ann\\AppData\\local\\x"},
        {L"%userprofile%\\D:\\Data", kAppData, L"%userprofile%\\D:\\Data"},
        {L"%USERPROFILE%;C:\\Users\\ann\\a;C:\\Users\\anna", kAppData,
         L"\\\\srv\\p\\ann;\\\\srv\\p\\ann\\a;\\\\srv\\p\\anna"},
        {L"%USERPROFILE%\\Desktop", L"", L"C:\\Users\\ann\\Desktop"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(RoamingFolder(c.text, kRoaming, kLocal, c.appData), c.expected) << testing::PrintToString(c.text);
    // A roaming profile whose path begins with the local one's is put in twice, by each of the two replacements.
    EXPECT_EQ(RoamingFolder(L"%USERPROFILE%\\a", L"C:\\Users\\ann.V2", kLocal, kAppData), L"C:\\Users\\ann.V2.V2\\a");
    // A profile path that holds the token itself does not go round for ever.
    EXPECT_EQ(LocalFolder(L"%USERPROFILE%\\a", L"%USERPROFILE%\\b"), L"%USERPROFILE%\\b\\a");
    EXPECT_EQ(LocalFolder(L"%USERPROFILE%\\a", L""), L"%USERPROFILE%\\a");
}

TEST(ShellFolders, AnUpdateFillsTheFirstEmptyPathOfTheName) {
    using enum UserPath;
    const std::tuple<std::wstring_view, std::vector<UserPath>, std::optional<UserPath>> cases[] = {
        {L"dESKTOP", {Desktop, Personal}, Desktop},
        {L"desktop", {Personal}, {}},
        {L"Profile", {Profile, LocalProfile}, Profile},
        {L"LOCALPROFILE", {Profile, LocalProfile}, LocalProfile},
        {L"Programs", {Programs}, Programs},
        {L"Recent", {Recent}, Recent},
        {NameOf(Links), {Links}, {}},
        {L"Desktop ", {Desktop}, {}},
    };
    for (const auto& [name, emptyPaths, expected] : cases) {
        std::bitset<kUserPathCount> empty;
        for (const UserPath path : emptyPaths) empty.set(static_cast<std::size_t>(path));
        EXPECT_EQ(PathToUpdate(name, empty), expected) << testing::PrintToString(name);
    }
}
