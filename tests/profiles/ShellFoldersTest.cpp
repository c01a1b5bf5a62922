#include "profiles/ShellFolders.h"

#include <gtest/gtest.h>

TEST(ShellFolders, ARoamingUsersFoldersMoveUnlessTheyLieInLocalAppData) {
    constexpr std::wstring_view kLocal = L"C:\\Users\\ann";
    constexpr std::wstring_view kRoaming = L"\\\\srv\\p\\ann";
    constexpr std::wstring_view kAppData = L"C:\\Users\\ann\\AppData\\Local";
    struct Case {
        std::wstring_view text;
        std::wstring_view appData;
        std::wstring_view expected;
    };
    const Case cases[] = {
        {L"%USERPROFILE%\\Desktop", kAppData, L"\\\\srv\\p\\ann\\Desktop"},
        {L"C:\\Users\\ann\\Desktop", kAppData, L"\\\\srv\\p\\ann\\Desktop"},
        {L"%USERPROFILE%\\AppData\\Local\\Cache", kAppData, L"C:\\Users\\ann\\AppData\\Local\\Cache"},
        {L"%USERPROFILE%\\AppData\\LocalLow", kAppData, L"C:\\Users\\ann\\AppData\\LocalLow"},
        {L"%USERPROFILE%\\AppData\\local\\x", kAppData, L"\\\\srv\\p\\ann\\AppData\\local\\x"},
        {L"%userprofile%\\Desktop", kAppData, L"%userprofile%\\Desktop"},
        {L"D:\\Data", kAppData, L"D:\\Data"},
        {L"%USERPROFILE%;C:\\Users\\ann\\a;C:\\Users\\anna", kAppData,
         L"\\\\srv\\p\\ann;\\\\srv\\p\\ann\\a;\\\\srv\\p\\anna"},
        {L"%USERPROFILE%\\Desktop", L"", L"C:\\Users\\ann\\Desktop"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.text)));
        EXPECT_EQ(RoamingFolder(c.text, kRoaming, kLocal, c.appData), c.expected);
    }
    // A roaming profile whose path begins with the local one's is put in twice, by each of the two replacements.
    EXPECT_EQ(RoamingFolder(L"%USERPROFILE%\\a", L"C:\\Users\\ann.V2", kLocal, kAppData), L"C:\\Users\\ann.V2.V2\\a");
    // A profile path that holds the token itself does not go round for ever.
    EXPECT_EQ(LocalFolder(L"%USERPROFILE%\\a", L"%USERPROFILE%\\b"), L"%USERPROFILE%\\b\\a");
    EXPECT_EQ(LocalFolder(L"%USERPROFILE%\\a", L""), L"%USERPROFILE%\\a");
}

TEST(ShellFolders, AnUpdateFillsTheFirstEmptyPathOfTheName) {
    const auto update = [](std::wstring_view name, std::initializer_list<UserPath> emptyPaths) {
        std::bitset<kUserPathCount> empty;
        for (const UserPath path : emptyPaths) empty.set(static_cast<std::size_t>(path));
        return PathToUpdate(name, empty);
    };
    EXPECT_EQ(update(L"dESKTOP", {UserPath::Desktop, UserPath::Personal}), UserPath::Desktop);
    EXPECT_EQ(update(L"desktop", {UserPath::Personal}), std::nullopt);
    EXPECT_EQ(update(L"Profile", {UserPath::Profile, UserPath::LocalProfile}), UserPath::Profile);
    EXPECT_EQ(update(L"LOCALPROFILE", {UserPath::Profile, UserPath::LocalProfile}), UserPath::LocalProfile);
    EXPECT_EQ(update(L"Programs", {UserPath::Programs}), UserPath::Programs);
    EXPECT_EQ(update(L"Recent", {UserPath::Recent}), UserPath::Recent);
    EXPECT_EQ(update(NameOf(UserPath::Links), {UserPath::Links}), std::nullopt);
    EXPECT_EQ(update(L"", {UserPath::Desktop}), std::nullopt);
    EXPECT_EQ(update(L"Desktop ", {UserPath::Desktop}), std::nullopt);
}
