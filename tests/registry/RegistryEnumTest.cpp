// Walking keys and values, also while they change.
#include <gtest/gtest.h>
#include <string>

#include "registry/RegistryHelper.h"
#include "registry/Thrown.h"
#include "support/ImportPatch.h"
#include "support/ScopedRegistryKey.h"

namespace {

// What another process does in the key before each step of a walk; `room` is that for the name.
using Meanwhile = void (*)(HKEY key, DWORD index, DWORD room);
Meanwhile s_meanwhile = nullptr;

LSTATUS WINAPI EnumerateAfter(HKEY key, DWORD index, LPWSTR name, LPDWORD length, LPDWORD reserved, LPWSTR keyClass,
                              LPDWORD classLength, PFILETIME time) {
    s_meanwhile(key, index, *length);
    return SystemFunction(&RegEnumKeyExW, L"advapi32.dll", "RegEnumKeyExW")(key, index, name, length, reserved,
                                                                            keyClass, classLength, time);
}

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
    std::wstring SubKeysWhile(Meanwhile meanwhile) const {
        const ImportPatch<decltype(&RegEnumKeyExW)> patch(GetModuleHandleW(nullptr), "RegEnumKeyExW", EnumerateAfter);
        s_meanwhile = meanwhile;
        return SubKeys();
    }

    ScopedRegistryKey m_key;
    CRegistryHelper m_helper;
};

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

TEST_F(RegistryEnum, KeysThatComeAndGoMeanwhileAreLeftOut) {
    for (const LPCWSTR name : {L"a", L"b", L"c", L"d"}) m_key.AddKey(name);
    const Meanwhile deleteLast = [](HKEY key, DWORD index, DWORD) {
        if (index == 1) RegDeleteKeyW(key, L"d");
    };
    EXPECT_EQ(SubKeysWhile(deleteLast), L"a,b,c,");
    const Meanwhile deleteFirst = [](HKEY key, DWORD index, DWORD) {
        if (index == 1) RegDeleteKeyW(key, L"a");
    };
    EXPECT_EQ(SubKeysWhile(deleteFirst), L"a,c,") << "those behind it move up, so the walk passes over one more";
    const Meanwhile addLonger = [](HKEY key, DWORD, DWORD room) {
        CRegKey().Create(key, L"aaaaaaaaaaaa", nullptr, REG_OPTION_VOLATILE);
        EXPECT_EQ(room, 2u) << "given afresh for each key";
    };
    EXPECT_EQ(SubKeysWhile(addLonger), L"b,");
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
