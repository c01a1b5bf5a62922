#include "registry/HivePath.h"

#include <gtest/gtest.h>
#include <string>

TEST(SplitHivePath, FindsTheFiveLongNamesInAnyCase) {
    struct Case {
        std::wstring_view path;
        RegistryHive hive;
        std::wstring_view subkey;
    };
    const Case cases[] = {
        {L"HKEY_CLASSES_ROOT\\.txt", RegistryHive::ClassesRoot, L".txt"},
        {L"HKEY_CURRENT_USER\\a\\b", RegistryHive::CurrentUser, L"a\\b"},
        {L"hkey_local_machine\\SOFTWARE", RegistryHive::LocalMachine, L"SOFTWARE"},
        {L"hkey_users\\x", RegistryHive::Users, L"x"},
        {L"HKEY_USERS\\", RegistryHive::Users, L""},
        {L"HKEY_USERS\\\\x\\", RegistryHive::Users, L"\\x\\"},
        {L"HKEY_CURRENT_CONFIG\\x", RegistryHive::CurrentConfig, L"x"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.path)));
        const auto parts = SplitHivePath(c.path);
        ASSERT_TRUE(parts);
        EXPECT_EQ(parts->hive, c.hive);
        EXPECT_EQ(parts->subkey, c.subkey);
    }
}

TEST(SplitHivePath, AnUnknownFirstPartIsNoFailure) {
    for (const std::wstring_view path :
         {L"HKCU\\x", L" HKEY_USERS\\x", L"HKEY_USERS \\x", L"HKEY_USERSX\\x", L"HKEY_USER\\x"}) {
        const auto parts = SplitHivePath(path);
        ASSERT_TRUE(parts);
        EXPECT_FALSE(parts->hive);
        EXPECT_EQ(parts->subkey, L"x");
    }
}

TEST(SplitHivePath, NeedsAFirstPartAndABackslash) {
    for (const std::wstring_view path : {L"", L"\\", L"\\HKEY_USERS\\x", L"HKEY_USERS", L"HKEY_USERS/x", L"x"}) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(path)));
        EXPECT_FALSE(SplitHivePath(path));
    }
    EXPECT_FALSE(SplitHivePath(std::wstring(70000, L'x')));
}
