#include "registry/OfflinePath.h"

#include <gtest/gtest.h>
#include <set>
#include <vector>

namespace {

// A machine made of plain values; it also notes what it was asked.
class FakeMachine final : public OfflineFacts {
public:
    bool preinstallation = true;
    bool mounts = true;
    bool target64 = false;
    std::set<std::wstring> keys;
    std::optional<std::uint32_t> controlSet = 1;
    std::vector<std::wstring> asked;

    bool IsPreinstallation() override { return Note(L"preinstallation", preinstallation); }
    bool MountHives() override { return Note(L"mount", mounts); }
    bool IsTarget64Bit() override { return Note(L"64", target64); }
    bool KeyOpens(const std::wstring& path) override { return Note(L"key " + path, keys.contains(path)); }
    std::optional<std::uint32_t> CurrentControlSet() override { return Note(L"control set", controlSet); }

    std::wstring Path(std::wstring_view path, std::uint32_t access = kRead, bool nativeViewOnly = false) {
        asked.clear();
        return OfflinePath(path, access, nativeViewOnly, *this);
    }

    static constexpr std::uint32_t kRead = 0x20019;
    static constexpr std::uint32_t kRead64 = kRead | 0x100;
    static constexpr std::uint32_t kRead32 = kRead | 0x200;

private:
    template <class T>
    T Note(std::wstring question, T answer) {
        asked.push_back(std::move(question));
        return answer;
    }
};

using Questions = std::vector<std::wstring>;

}  // namespace

TEST(OfflinePath, MovesSoftwareAndSystemByTheirFirstLetters) {
    FakeMachine machine;
    const struct {
        std::wstring_view path;
        std::wstring_view expected;
    } cases[] = {
        {L"", L""},
        {L"SYSTEM", L"SYSTEM"},
        {L"SYSTEM\\", L"SYSTEM\\"},
        {L"SYSTEM\\A", L"OS_SYSTEM\\A"},
        {L"SYSTEMATIC", L"OS_SYSTEMATIC"},
        {L"SYSTEMS", L"SYSTEMS"},
        {L"SOFTWARE", L"OS_SOFTWARE"},
        {L"SOFTWAR", L"SOFTWAR"},
        {L"SOFTWARX\\", L"SOFTWARX\\"},
        {L"SoftWare\\\\", L"OS_SoftWare\\\\"},
        {L"\\SOFTWARE\\x", L"\\SOFTWARE\\x"},
        {L" SYSTEM\\x", L" SYSTEM\\x"},
        {L"OS_SOFTWARE\\x", L"OS_SOFTWARE\\x"},
        {L"\x017Foftware\\x", L"\x017Foftware\\x"},
        {L"HARDWARE\\DESCRIPTION", L"HARDWARE\\DESCRIPTION"},
        {L"SYSTEM\\CurrentControlSet\\Services", L"OS_SYSTEM\\ControlSet001\\Services"},
        {L"SYSTEM\\currentcontrolset\\currentcontrolset", L"OS_SYSTEM\\ControlSet001\\currentcontrolset"},
        {L"SYSTEM\\CurrentControlSetX", L"OS_SYSTEM\\ControlSet001X"},
        {L"SOFTWARE\\CurrentControlSet", L"OS_SOFTWARE\\ControlSet001"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(machine.Path(c.path), c.expected) << testing::PrintToString(std::wstring(c.path));
    const std::wstring longName(70000, L'x');
    EXPECT_EQ(machine.Path(L"SYSTEM\\" + longName), L"OS_SYSTEM\\" + longName);
    machine.controlSet = 0xFFFFFFFF;
    EXPECT_EQ(machine.Path(L"SYSTEM\\CurrentControlSet"), L"OS_SYSTEM\\ControlSet4294967295");
    machine.controlSet = std::nullopt;
    EXPECT_EQ(machine.Path(L"system\\currentCONTROLset\\x"), L"OS_system\\currentCONTROLset\\x");
}

TEST(OfflinePath, ChoosesTheViewOfA64BitTarget) {
    FakeMachine machine;
    machine.target64 = true;
    machine.keys = {L"OS_SOFTWARE\\Both"};
    const struct {
        std::wstring_view path;
        std::uint32_t access;
        bool nativeViewOnly;
        std::wstring_view expected;
        bool probes;
    } cases[] = {
        {L"SOFTWARE\\Both", FakeMachine::kRead, false, L"OS_SOFTWARE\\Both", true},
        {L"software\\Foo", FakeMachine::kRead, false, L"OS_SOFTWARE\\Wow6432Node\\Foo", true},
        {L"SOFTWARE", FakeMachine::kRead, false, L"OS_SOFTWARE\\Wow6432Node", true},
        {L"SOFTWARES\\x", FakeMachine::kRead, false, L"OS_SOFTWARE\\Wow6432NodeS\\x", true},
        {L"SOFTWARE\\Foo", FakeMachine::kRead64, false, L"OS_SOFTWARE\\Foo", false},
        {L"SOFTWARE\\Both", FakeMachine::kRead32, false, L"OS_SOFTWARE\\Wow6432Node\\Both", false},
        {L"SOFTWARE\\Foo", FakeMachine::kRead64 | FakeMachine::kRead32, false, L"OS_SOFTWARE\\Foo", false},
        {L"SOFTWARE\\Foo", FakeMachine::kRead, true, L"OS_SOFTWARE\\Foo", false},
        {L"SOFTWARE\\Foo", FakeMachine::kRead32, true, L"OS_SOFTWARE\\Foo", false},
        {L"SYSTEM\\Foo", FakeMachine::kRead32, false, L"OS_SYSTEM\\Foo", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(c.path)) + " " + std::to_string(c.access));
        EXPECT_EQ(machine.Path(c.path, c.access, c.nativeViewOnly), c.expected);
        EXPECT_EQ(machine.asked.size(), c.probes ? 4u : 3u);
    }
}

TEST(OfflinePath, AsksInOrderAndNoMoreThanItNeeds) {
    FakeMachine machine;
    machine.target64 = true;
    EXPECT_EQ(machine.Path(L"SOFTWARE\\CurrentControlSet\\x"), L"OS_SOFTWARE\\Wow6432Node\\ControlSet001\\x");
    EXPECT_EQ(machine.asked, (Questions{L"preinstallation", L"mount", L"64", L"key OS_SOFTWARE\\CurrentControlSet\\x",
                                        L"control set"}));
    machine.mounts = false;
    EXPECT_EQ(machine.Path(L"SYSTEM\\CurrentControlSet\\x"), L"SYSTEM\\CurrentControlSet\\x");
    EXPECT_EQ(machine.asked, (Questions{L"preinstallation", L"mount"}));
    machine.preinstallation = false;
    EXPECT_EQ(machine.Path(L"SOFTWARE\\x"), L"SOFTWARE\\x");
    EXPECT_EQ(machine.asked, Questions{L"preinstallation"});
}
