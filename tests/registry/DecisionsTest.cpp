// Hive names, the paths of an installed system's hives, and version texts.
#include <gtest/gtest.h>
#include <string>

#include "registry/HivePath.h"
#include "registry/OfflinePath.h"
#include "registry/VersionText.h"

namespace {

using Text = std::wstring_view;

// The questions, a letter for each, and the new path.
using Answer = std::pair<std::string, std::wstring>;

// A machine made of plain values.
struct FakeMachine final : OfflineFacts {
    bool preinstallation = true;
    bool mounts = true;
    bool target64 = false;
    std::optional<std::uint32_t> controlSet = 1;
    std::string asked;

    bool IsPreinstallation() override { return asked += 'p', preinstallation; }
    bool MountHives() override { return asked += 'm', mounts; }
    bool IsTarget64Bit() override { return asked += 'b', target64; }
    bool KeyOpens(const std::wstring& path) override { return asked += 'k', path == L"OS_SOFTWARE\\Both"; }
    std::optional<std::uint32_t> CurrentControlSet() override { return asked += 'c', controlSet; }

    struct Case {
        Text path;
        Answer answer;
        std::uint32_t view = 0;
        bool nativeViewOnly = false;
    };
    void Expect(std::initializer_list<Case> cases) {
        constexpr std::uint32_t kRead = 0x20019;
        for (const Case& c : cases) {
            asked.clear();
            const std::wstring path = OfflinePath(c.path, kRead | c.view, c.nativeViewOnly, *this);
            EXPECT_EQ(Answer(asked, path), c.answer) << testing::PrintToString(std::wstring(c.path)) << c.view;
        }
    }
};

}  // namespace

TEST(SplitHivePath, FindsTheFiveLongNamesInAnyCaseAndNeedsABackslashBehindSomething) {
    using Subkey = std::optional<Text>;
    // An unknown first part is no failure.
    const std::tuple<Text, Subkey, std::optional<RegistryHive>> cases[] = {
        {L"HKEY_CLASSES_ROOT\\.txt", L".txt", RegistryHive::ClassesRoot},
        {L"HKEY_CURRENT_USER\\a\\b", L"a\\b", RegistryHive::CurrentUser},
        {L"hkey_local_machine\\SOFTWARE", L"SOFTWARE", RegistryHive::LocalMachine},
        {L"HKEY_USERS\\", L"", RegistryHive::Users},
        {L"HKEY_USERS\\\\x\\", L"\\x\\", RegistryHive::Users},
        {L"HKEY_CURRENT_CONFIG\\x", L"x", RegistryHive::CurrentConfig},
        {L"HKCU\\x", L"x", {}},
        {L" HKEY_USERS\\x", L"x", {}},
        {L"HKEY_USERSX\\x", L"x", {}},
        {L"\\HKEY_USERS\\x", {}, {}},
        {L"HKEY_USERS", {}, {}},
        {L"HKEY_USERS/x", {}, {}},
    };
    for (const auto& [path, subkey, hive] : cases) {
        const auto parts = SplitHivePath(path);
        EXPECT_TRUE(parts ? parts->subkey == subkey && parts->hive == hive : !subkey)
            << testing::PrintToString(std::wstring(path));
    }
}

TEST(OfflinePath, MovesSoftwareAndSystemByTheirFirstLettersAndAsksNoMoreThanItNeeds) {
    constexpr std::uint32_t k64 = 0x100;
    constexpr std::uint32_t k32 = 0x200;
    FakeMachine machine;
    machine.Expect({
        {L"SYSTEM\\", {"p", L"SYSTEM\\"}},
        {L"SYSTEM\\A", {"pmb", L"OS_SYSTEM\\A"}},
        {L"SYSTEMATIC", {"pmb", L"OS_SYSTEMATIC"}},
        {L"SOFTWARE", {"pmb", L"OS_SOFTWARE"}},
        {L"SOFTWARX\\", {"p", L"SOFTWARX\\"}},
        {L"SoftWare\\\\", {"pmb", L"OS_SoftWare\\\\"}},
        {L"\\SOFTWARE\\x", {"p", L"\\SOFTWARE\\x"}},
        {L"OS_SOFTWARE\\x", {"p", L"OS_SOFTWARE\\x"}},
        {L"\x017Foftware\\x", {"p", L"\x017Foftware\\x"}},
        {L"SYSTEM\\currentcontrolset\\currentcontrolset", {"pmbc", L"OS_SYSTEM\\ControlSet001\\currentcontrolset"}},
        {L"SYSTEM\\CurrentControlSetX", {"pmbc", L"OS_SYSTEM\\ControlSet001X"}},
        {L"SOFTWARE\\CurrentControlSet", {"pmbc", L"OS_SOFTWARE\\ControlSet001"}},
    });
    machine.target64 = true;
    machine.Expect({
        {L"SOFTWARE\\Both", {"pmbk", L"OS_SOFTWARE\\Both"}},
        {L"software\\Foo", {"pmbk", L"OS_SOFTWARE\\Wow6432Node\\Foo"}},
        {L"SOFTWARES\\x", {"pmbk", L"OS_SOFTWARE\\Wow6432NodeS\\x"}},
        {L"SOFTWARE\\CurrentControlSet", {"pmbkc", L"OS_SOFTWARE\\Wow6432Node\\ControlSet001"}},
        {L"SOFTWARE\\Foo", {"pmb", L"OS_SOFTWARE\\Foo"}, k64},
        {L"SOFTWARE\\Both", {"pmb", L"OS_SOFTWARE\\Wow6432Node\\Both"}, k32},
        {L"SOFTWARE\\Foo", {"pmb", L"OS_SOFTWARE\\Foo"}, k64 | k32},
        {L"SOFTWARE\\Foo", {"pmb", L"OS_SOFTWARE\\Foo"}, k32, true},
        {L"SYSTEM\\Foo", {"pmb", L"OS_SYSTEM\\Foo"}, k32},
    });
    machine.controlSet = 0xFFFFFFFF;
    machine.Expect({{L"SYSTEM\\CurrentControlSet", {"pmbc", L"OS_SYSTEM\\ControlSet4294967295"}}});
    machine.controlSet = std::nullopt;
    machine.Expect({{L"system\\currentCONTROLset\\x", {"pmbc", L"OS_system\\currentCONTROLset\\x"}}});
    machine.mounts = false;
    machine.Expect({{L"SYSTEM\\CurrentControlSet", {"pm", L"SYSTEM\\CurrentControlSet"}}});
    machine.preinstallation = false;
    machine.Expect({{L"SOFTWARE\\x", {"p", L"SOFTWARE\\x"}}});
}

TEST(VersionText, IsReadAsFourNumbersAndComparedByAsManyAsAsked) {
    const std::pair<Text, VersionParts> texts[] = {
        {L"8.1.0.5.7", {8, 1, 0, 5}},  {L"10", {10, 0, 0, 0}},   {L"..3", {0, 0, 3, 0}},
        {L"a.2b. 3.x4", {0, 2, 3, 0}}, {L"1,2,3", {1, 0, 0, 0}}, {L"-1.99999999999", {0xFFFFFFFF, 0x7FFFFFFF, 0, 0}},
    };
    for (const auto& [text, parts] : texts) EXPECT_EQ(ParseVersionParts(text), parts) << parts[0];
    const VersionParts longer{8, 1, 0, 5};
    const VersionParts shorter{8, 1, 0, 0};
    for (const int count : {-3, 0, 2, 3, 4, 100}) {
        EXPECT_TRUE(IsAtLeast(longer, shorter, count)) << count;
        EXPECT_EQ(IsAtLeast(shorter, longer, count), count < 4) << count;
        EXPECT_EQ(IsAtLeast({9, 9, 9, 9}, {10, 0, 0, 0}, count), count <= 0) << count;
    }
    EXPECT_TRUE(IsAtLeast({0xFFFFFFFF, 0, 0, 0}, {1, 0, 0, 0}, 1));
    for (const Text known : {L"8.0", L"8.21", L"8.8", L"10.5.1.2", L"11.0"})
        EXPECT_TRUE(BeginsWithKnownProductVersion(known)) << testing::PrintToString(std::wstring(known));
    for (const Text unknown : {L"", L"8", L"8.3", L"8.4.1", L"9.0", L"18.0", L"10.6", L"11.1", L"08.0"})
        EXPECT_FALSE(BeginsWithKnownProductVersion(unknown)) << testing::PrintToString(std::wstring(unknown));
}
