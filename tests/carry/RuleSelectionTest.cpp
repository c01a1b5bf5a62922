// What rules select, where keys of another installation lie, and what an undo file need not say twice.
#include "carry/RuleSelection.h"

#include <gtest/gtest.h>

#include "carry/CoveredKeys.h"
#include "carry/HiveMap.h"

namespace {

std::wstring Upper(std::wstring_view text) {
    std::wstring upper(text);
    for (wchar_t& c : upper) c = c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - 32) : c;
    return upper;
}

TEST(RuleSelection, OverlapsAreSelectedOnceAndTold) {
    const auto branch = CarryKind::Branch, key = CarryKind::Key, value = CarryKind::Value;
    const RuleSelection selection({{value, L"HKCU\\a", L"v"},               // 0, by 3
                                   {key, L"HKCU\\a\\b", L""},               // 1, by 2
                                   {branch, L"HKEY_CURRENT_USER\\A", L""},  // 2
                                   {branch, L"hkcu\\a", L""},               // 3 repeats 2
                                   {value, L"HKCU\\ab", L"v"},              // 4, with 6
                                   {value, L"HKCU\\AB", L"V"},              // 5 repeats 4
                                   {value, L"HKCU\\AB", L""},               // 6
                                   {key, L"HKLM\\k", L""},                  // 7
                                   {value, L"HKLM\\k", L"v"},               // 8, by 7
                                   {branch, L"HKLM\\k\\below", L""},        // 9
                                   {key, L"HKXX\\k", L""},                  // 10
                                   {key, L"HKLM\\", L""},                   // 11
                                   {key, L"HKLM\\a\\", L""},                // 12
                                   {key, L"HKLM\\a\\\\b", L""}},            // 13
                                  Upper);
    std::wstring parts;
    for (const SelectedPart& part : selection.Parts()) {
        parts += std::to_wstring(static_cast<int>(part.kind)) + FormatKeyName(part.key) + L"(";
        for (const std::wstring& name : part.values) parts += name + L",";
        parts += L") ";
    }
    EXPECT_EQ(parts,
              L"0HKEY_CURRENT_USER\\A() 2HKEY_CURRENT_USER\\ab(v,,) 1HKEY_LOCAL_MACHINE\\k() "
              L"0HKEY_LOCAL_MACHINE\\k\\below() ");
    std::string findings;
    for (const RuleFinding& each : selection.Findings()) {
        findings += std::to_string(each.rule) + ":" + std::to_string(static_cast<int>(each.flaw)) + "/" +
                    std::to_string(each.other) + " ";
    }
    EXPECT_EQ(findings, "0:4/2 1:4/2 3:3/2 5:3/4 8:4/7 10:0/10 11:1/11 12:2/12 13:2/13 ");
}

TEST(HiveMap, KeysLieInTheMountsOfUserAndInstallation) {
    const HiveMap user{L"S-1", std::nullopt};
    const HiveMap offline{L"", OfflineMounts{L"SW", L"SY", 2}};
    const std::tuple<const HiveMap&, const wchar_t*, const wchar_t*> cases[] = {
        {user, L"HKCU\\a", L"HKEY_USERS\\S-1\\a"},
        {user, L"HKCU", L"HKEY_USERS\\S-1"},
        {user, L"HKLM\\SOFTWARE\\a", L"HKEY_LOCAL_MACHINE\\SOFTWARE\\a"},
        {offline, L"HKCU\\a", L"none"},
        {offline, L"HKU\\S-1\\a", L"none"},
        {offline, L"HKLM\\software", L"HKEY_LOCAL_MACHINE\\SW"},
        {offline, L"HKLM\\Software\\WOW6432Node", L"HKEY_LOCAL_MACHINE\\SW\\WOW6432Node"},
        {offline, L"HKLM\\SOFTWAREX\\a", L"none"},
        {offline, L"HKLM\\SYSTEM", L"HKEY_LOCAL_MACHINE\\SY"},
        {offline, L"HKLM\\System\\currentcontrolset\\x", L"HKEY_LOCAL_MACHINE\\SY\\ControlSet002\\x"},
        {offline, L"HKLM\\System\\Setup", L"HKEY_LOCAL_MACHINE\\SY\\Setup"},
        {offline, L"HKCR\\.txt", L"HKEY_LOCAL_MACHINE\\SW\\Classes\\.txt"},
    };
    for (const auto& [map, key, place] : cases) {
        const auto mapped = MapKey(*ParseKeyName(key), map);
        EXPECT_EQ(mapped ? FormatKeyName(*mapped) : L"none", place);
    }
    for (const wchar_t* hive : {L"HKCU", L"HKCR\\", L"HKLM\\SOFTWARE\\", L"HKU\\.DEFAULT"}) {
        EXPECT_TRUE(IsWholeHive(*ParseKeyName(hive)));
    }
    for (const wchar_t* key : {L"HKCU\\a", L"HKCC\\a", L"HKLM\\SOFTWARE\\a"})
        EXPECT_FALSE(IsWholeHive(*ParseKeyName(key)));
}

TEST(CoveredKeys, CoverWhatLiesBelowAndForgetBeyondTheirLimit) {
    CoveredKeys covered;
    covered.Add(L"A\\B");
    EXPECT_TRUE(covered.Contains(L"A\\B\\C\\D"));
    EXPECT_FALSE(covered.Contains(L"A\\BC"));
    EXPECT_FALSE(covered.Contains(L"A"));
    covered.Add(std::wstring(CoveredKeys::kMostChars, L'x'));
    EXPECT_FALSE(covered.Contains(std::wstring(CoveredKeys::kMostChars, L'x')));
}

}  // namespace
