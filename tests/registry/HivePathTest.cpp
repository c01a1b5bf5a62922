#include "registry/HivePath.h"

#include <gtest/gtest.h>
#include <string>

TEST(SplitHivePath, FindsTheFiveLongNamesInAnyCaseAndNeedsABackslashBehindSomething) {
    const struct {
        std::wstring_view path;
        std::optional<RegistryHive> hive;  // an unknown first part is no failure
        std::wstring_view subkey;
    } cases[] = {
        {L"HKEY_CLASSES_ROOT\\.txt", RegistryHive::ClassesRoot, L".txt"},
        {L"HKEY_CURRENT_USER\\a\\b", RegistryHive::CurrentUser, L"a\\b"},
        {L"hkey_local_machine\\SOFTWARE", RegistryHive::LocalMachine, L"SOFTWARE"},
        {L"HKEY_USERS\\", RegistryHive::Users, L""},
        {L"HKEY_USERS\\\\x\\", RegistryHive::Users, L"\\x\\"},
        {L"HKEY_CURRENT_CONFIG\\x", RegistryHive::CurrentConfig, L"x"},
        {L"HKCU\\x", {}, L"x"},
        {L" HKEY_USERS\\x", {}, L"x"},
        {L"HKEY_USERSX\\x", {}, L"x"},
        {L"HKEY_USER\\x", {}, L"x"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.path)));
        const auto parts = SplitHivePath(c.path);
        ASSERT_TRUE(parts);
        EXPECT_EQ(parts->hive, c.hive);
        EXPECT_EQ(parts->subkey, c.subkey);
    }
    for (const std::wstring_view path : {L"", L"\\", L"\\HKEY_USERS\\x", L"HKEY_USERS", L"HKEY_USERS/x"})
        EXPECT_FALSE(SplitHivePath(path)) << testing::PrintToString(std::wstring(path));
    EXPECT_FALSE(SplitHivePath(std::wstring(70000, L'x')));
}
