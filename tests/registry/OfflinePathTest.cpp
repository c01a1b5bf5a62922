#include "registry/OfflinePath.h"

#include <gtest/gtest.h>

namespace {

// A machine made of plain values; it also notes what it was asked, a letter for each question.
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

    // The questions, the new path.
    std::pair<std::string, std::wstring> Ask(std::wstring_view path, std::uint32_t view = 0, bool nativeOnly = false) {
        constexpr std::uint32_t kRead = 0x20019;
        asked.clear();
        std::wstring result = OfflinePath(path, kRead | view, nativeOnly, *this);
        return {asked, result};
    }
};

using Answer = std::pair<std::string, std::wstring>;

}  // namespace

TEST(OfflinePath, MovesSoftwareAndSystemByTheirFirstLettersAndAsksNoMoreThanItNeeds) {
    FakeMachine machine;
    const struct {
        std::wstring_view path;
        Answer answer;
    } cases[] = {
        {L"", {"p", L""}},
        {L"SYSTEM\\", {"p", L"SYSTEM\\"}},
        {L"SYSTEM\\A", {"pmb", L"OS_SYSTEM\\A"}},
        {L"SYSTEMATIC", {"pmb", L"OS_SYSTEMATIC"}},
        {L"SYSTEMS", {"p", L"SYSTEMS"}},
        {L"SOFTWARE", {"pmb", L"OS_SOFTWARE"}},
        {L"SOFTWAR", {"p", L"SOFTWAR"}},
        {L"SOFTWARX\\", {"p", L"SOFTWARX\\"}},
        {L"SoftWare\\\\", {"pmb", L"OS_SoftWare\\\\"}},
        {L"\\SOFTWARE\\x", {"p", L"\\SOFTWARE\\x"}},
        {L"OS_SOFTWARE\\x", {"p", L"OS_SOFTWARE\\x"}},
        {L"\x017Foftware\\x", {"p", L"\x017Foftware\\x"}},
        {L"HARDWARE\\DESCRIPTION", {"p", L"HARDWARE\\DESCRIPTION"}},
        {L"SYSTEM\\CurrentControlSet\\Services", {"pmbc", L"OS_SYSTEM\\ControlSet001\\Services"}},
        {L"SYSTEM\\currentcontrolset\\currentcontrolset", {"pmbc", L"OS_SYSTEM\\ControlSet001\\currentcontrolset"}},
        {L"SYSTEM\\CurrentControlSetX", {"pmbc", L"OS_SYSTEM\\ControlSet001X"}},
        {L"SOFTWARE\\CurrentControlSet", {"pmbc", L"OS_SOFTWARE\\ControlSet001"}},
    };
    for (const auto& c : cases) EXPECT_EQ(machine.Ask(c.path), c.answer) << testing::PrintToString(c.path);
    machine.controlSet = 0xFFFFFFFF;
    EXPECT_EQ(machine.Ask(L"SYSTEM\\CurrentControlSet").second, L"OS_SYSTEM\\ControlSet4294967295");
    machine.controlSet = std::nullopt;
    EXPECT_EQ(machine.Ask(L"system\\currentCONTROLset\\x").second, L"OS_system\\currentCONTROLset\\x");
    machine.mounts = false;
    EXPECT_EQ(machine.Ask(L"SYSTEM\\CurrentControlSet"), Answer("pm", L"SYSTEM\\CurrentControlSet"));
    machine.preinstallation = false;
    EXPECT_EQ(machine.Ask(L"SOFTWARE\\x"), Answer("p", L"SOFTWARE\\x"));
}

TEST(OfflinePath, ChoosesTheViewOfA64BitTarget) {
    constexpr std::uint32_t k64 = 0x100;
    constexpr std::uint32_t k32 = 0x200;
    FakeMachine machine;
    machine.target64 = true;
    const struct {
        std::wstring_view path;
        std::uint32_t view;
        bool nativeViewOnly;
        Answer answer;
    } cases[] = {
        {L"SOFTWARE\\Both", 0, false, {"pmbk", L"OS_SOFTWARE\\Both"}},
        {L"software\\Foo", 0, false, {"pmbk", L"OS_SOFTWARE\\Wow6432Node\\Foo"}},
        {L"SOFTWARES\\x", 0, false, {"pmbk", L"OS_SOFTWARE\\Wow6432NodeS\\x"}},
        {L"SOFTWARE\\CurrentControlSet", 0, false, {"pmbkc", L"OS_SOFTWARE\\Wow6432Node\\ControlSet001"}},
        {L"SOFTWARE\\Foo", k64, false, {"pmb", L"OS_SOFTWARE\\Foo"}},
        {L"SOFTWARE\\Both", k32, false, {"pmb", L"OS_SOFTWARE\\Wow6432Node\\Both"}},
        {L"SOFTWARE\\Foo", k64 | k32, false, {"pmb", L"OS_SOFTWARE\\Foo"}},
        {L"SOFTWARE\\Foo", 0, true, {"pmb", L"OS_SOFTWARE\\Foo"}},
        {L"SOFTWARE\\Foo", k32, true, {"pmb", L"OS_SOFTWARE\\Foo"}},
        {L"SYSTEM\\Foo", k32, false, {"pmb", L"OS_SYSTEM\\Foo"}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(machine.Ask(c.path, c.view, c.nativeViewOnly), c.answer) << testing::PrintToString(c.path) << c.view;
}
