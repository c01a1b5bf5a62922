// Walking keys and values, also while they change.
#include <gtest/gtest.h>
#include <string>

#include "registry/RegistryHelper.h"
#include "registry/Thrown.h"
#include "support/ImportPatch.h"
#include "support/ScopedRegistryKey.h"

namespace {

class RegistryEnum : public testing::Test {
protected:
    RegistryEnum() { m_helper.OpenOrCreate(HKEY_CURRENT_USER, m_key.Path().c_str(), KEY_ALL_ACCESS, 0); }

    static std::wstring Joined(const CStringList& names) {
        std::wstring text;
        for (POSITION place = names.GetHeadPosition(); place;) text += std::wstring(names.GetNext(place)) + L",";
        return text;
    }

    std::wstring SubKeys() const {
        CStringList names;
        names.AddTail(L"old");
        m_helper.EnumSubKeys(names);
        return Joined(names);
    }

    ScopedRegistryKey m_key;
    CRegistryHelper m_helper;
};

using Enumerate = decltype(&RegEnumKeyExW);
Enumerate s_enumerate = nullptr;
LPCWSTR s_victim = nullptr;

}  // namespace

TEST_F(RegistryEnum, ListsTheSubKeys) {
    EXPECT_EQ(SubKeys(), L"");
    const std::wstring longest(255, L'n');
    m_key.AddKey(L"b");
    m_key.AddKey(L"a");
    m_key.AddKey(longest);
    EXPECT_EQ(SubKeys(), L"a,b," + longest + L",");
    DWORD count = 0;
    DWORD longestName = 0;
    m_helper.GetSubKeyInfo(count, longestName);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(longestName, 255u);
}

TEST_F(RegistryEnum, AKeyThatDisappearsIsLeftOut) {
    for (const LPCWSTR name : {L"a", L"b", L"c", L"d"}) m_key.AddKey(name);
    const ImportPatch<Enumerate> patch(GetModuleHandleW(nullptr), "RegEnumKeyExW",
                                       [](HKEY key, DWORD index, LPWSTR name, LPDWORD length, LPDWORD reserved,
                                          LPWSTR keyClass, LPDWORD classLength, PFILETIME time) {
                                           if (index == 1) RegDeleteKeyW(key, s_victim);
                                           return s_enumerate(key, index, name, length, reserved, keyClass, classLength,
                                                              time);
                                       });
    s_enumerate = patch.Original();
    s_victim = L"d";
    EXPECT_EQ(SubKeys(), L"a,b,c,");
    s_victim = L"a";  // those behind it move up, so the walk passes over one more
    EXPECT_EQ(SubKeys(), L"a,c,");
}

TEST_F(RegistryEnum, ALongerNameThatAppearsIsLeftOut) {
    for (const LPCWSTR name : {L"a", L"c"}) m_key.AddKey(name);
    const ImportPatch<Enumerate> patch(
        GetModuleHandleW(nullptr), "RegEnumKeyExW",
        [](HKEY key, DWORD index, LPWSTR name, LPDWORD length, LPDWORD reserved, LPWSTR keyClass, LPDWORD classLength,
           PFILETIME time) {
            HKEY added = nullptr;
            RegCreateKeyExW(key, L"bbbbbbbbbbbb", 0, nullptr, REG_OPTION_VOLATILE, KEY_READ, nullptr, &added, nullptr);
            RegCloseKey(added);
            EXPECT_EQ(*length, 2u) << "the room is given afresh for each key";
            return s_enumerate(key, index, name, length, reserved, keyClass, classLength, time);
        });
    s_enumerate = patch.Original();
    EXPECT_EQ(SubKeys(), L"a,");
}

TEST_F(RegistryEnum, ReadsValueNamesAndTypes) {
    const std::wstring longest(16383, L'n');
    m_key.SetText(L"", L"", L"12345");
    m_key.SetText(L"", longest, L"x", REG_EXPAND_SZ);
    DWORD count = 0;
    DWORD longestName = 0;
    DWORD longestData = 0;
    m_helper.GetValueInfo(count, longestName, longestData);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(longestName, 16383u);
    EXPECT_EQ(longestData, 12u);
    for (DWORD index = 0; index < count; ++index) {
        CString name = L"?";
        DWORD type = 0;
        m_helper.EnumValue(index, longestName, name, type);
        EXPECT_EQ(type, name.IsEmpty() ? DWORD{REG_SZ} : DWORD{REG_EXPAND_SZ});
        EXPECT_TRUE(name.IsEmpty() || name.GetString() == longest);
    }
    EXPECT_EQ(m_helper.GetStringValue(longest.c_str()), L"x");
}

TEST_F(RegistryEnum, ValueFailuresLeaveTheName) {
    m_key.SetText(L"", L"name", L"x");
    CString name = L"kept";
    DWORD type = 0;
    EXPECT_EQ(StatusThrownBy([&] { m_helper.EnumValue(0, 0, name, type); }), 0xDu);
    EXPECT_EQ(StatusThrownBy([&] { m_helper.EnumValue(0, 3, name, type); }), DWORD{ERROR_MORE_DATA});
    EXPECT_EQ(StatusThrownBy([&] { m_helper.EnumValue(1, 4, name, type); }), DWORD{ERROR_NO_MORE_ITEMS});
    EXPECT_EQ(name, L"kept");
    m_helper.EnumValue(0, 4, name, type);
    EXPECT_EQ(name, L"name");
}
