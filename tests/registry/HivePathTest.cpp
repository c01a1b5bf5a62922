#include "registry/HivePath.h"

#include <gtest/gtest.h>
#include <string>

TEST(SplitHivePath, FindsTheFiveLongNamesInAnyCaseAndNeedsABackslashBehindSomething) {
    using Subkey = std::optional<std::wstring_view>;
    const struct {
        std::wstring_view path;
        Subkey subkey;
        std::optional<RegistryHive> hive;  // an unknown first part is no failure
    } cases[] = {
        {L"HKEY_CLASSES_ROOT\\.txt", L".txt", RegistryHive::ClassesRoot},
        {L"HKEY_CURRENT_USER\\a\\b", L"a\\b", RegistryHive::CurrentUser},
        {L"hkey_local_machine\\SOFTWARE", L"SOFTWARE", RegistryHive::LocalMachine},
        {L"HKEY_USERS\\", L"", RegistryHive::Users},
        {L"HKEY_USERS\\\\x\\", L"\\x\\", RegistryHive::Users},
        {L"HKEY_CURRENT_CONFIG\\x", L"x", RegistryHive::CurrentConfig},
        {L"HKCU\\x", L"x", {}},
        {L" HKEY_USERS\\x", L"x", {}},
        {L"HKEY_USERSX\\x", L"x", {}},
        {L"HKEY_USER\\x", L"x", {}},
        {L"", {}, {}},
        {L"\\HKEY_USERS\\x", {}, {}},
        {L"HKEY_USERS", {}, {}},
        {L"HKEY_USERS/x", {}, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.path)));
        const auto parts = SplitHivePath(c.path);
        EXPECT_EQ(parts ? Subkey(parts->subkey) : Subkey(), c.subkey);
        EXPECT_EQ(parts ? parts->hive : std::nullopt, c.hive);
    }
}
