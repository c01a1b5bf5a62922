// What the readers and writers of CRegistryHelper make of values and names, as other programs leave and change them.
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

#include "registry/RegistryHelper.h"
#include "registry/Thrown.h"
#include "support/ImportPatch.h"
#include "support/Narrow.h"
#include "support/ScopedRegistryKey.h"

namespace {

using namespace std::string_literals;

const std::string kMegabyte(1 << 20, 'x');

void Nothing(HKEY, DWORD) {}

class RegistryValue : public testing::Test {
protected:
    RegistryValue() { m_helper.OpenOrCreate(HKEY_CURRENT_USER, m_key.Path().c_str(), KEY_ALL_ACCESS, 0); }

    void Set(DWORD type, std::string_view bytes) { m_key.SetData(L"", L"v", type, bytes.data(), bytes.size()); }

    // What all readers give, or "!" and the status thrown: number and flag, 64-bit number, placement (first and last
    // field), bytes (how many, the last), text (in full, or its length). A failure leaves what the caller has, but for
    // the size.
    std::string ReadAll() const {
        std::string all;
        const auto tell = [&all](auto reader) {
            CString text;
            const DWORD status = StatusThrownBy([&] { reader(text); });
            if (status != ERROR_SUCCESS) text.Format(L"!%x", status);
            all += Narrow(text.GetString()) + " ";
            return status == ERROR_SUCCESS;
        };
        const CString v = L"v";
        WINDOWPLACEMENT placement{};
        placement.length = 5;
        DWORD size = 77;
        tell([&](CString& t) { t.Format(L"%x/%d", m_helper.GetDwordValue(v), m_helper.GetBoolValue(v)); });
        tell([&](CString& t) { t.Format(L"%I64x", m_helper.GetInt64Value(v)); });
        const bool isPlaced = tell([&](CString& t) {
            m_helper.GetPlacementValue(v, placement);
            t.Format(L"%x/%x", placement.length, placement.rcNormalPosition.bottom);
        });
        const bool hasBytes = tell([&](CString& t) {
            const auto bytes = m_helper.GetBinaryValue(v, &size);
            t.Format(L"%x/%x", size, bytes ? bytes[size - 1] : -1);
        });
        EXPECT_TRUE((isPlaced || placement.length == 5) && (hasBytes || size == 0));
        tell([&](CString& t) {
            const CString text = m_helper.GetStringValue(v);
            t = text.GetLength() < 40 ? L"'" + text + L"'" : CString(std::to_wstring(text.GetLength()).c_str());
        });
        return all;
    }
    // What is listed while another process does something before each step.
    std::string SubKeysWhile(void (*meanwhile)(HKEY, DWORD)) {
        const SeenCall<RegEnumKeyExW> step(GetModuleHandleW(nullptr), "RegEnumKeyExW",
                                           [=](HKEY key, DWORD index, auto...) { meanwhile(key, index); });
        CStringList names;
        names.AddTail(L"old");
        m_helper.EnumSubKeys(names);
        std::string text;
        for (POSITION place = names.GetHeadPosition(); place;) text += Narrow(names.GetNext(place).GetString()) + ",";
        return text;
    }

    ScopedRegistryKey m_key;
    CRegistryHelper m_helper;
};

}  // namespace

TEST_F(RegistryValue, EachReaderTakesOneTypeAndNoMoreBytesThanItHasRoomFor) {
    const std::string placement = "\1\2\3\4" + std::string(36, 'p') + "\x29\x2a\x2b\x2c";
    const std::tuple<DWORD, std::string, const char*> cases[] = {
        {REG_DWORD, "\x34\x12\0\0"s, "1234/1 !70c !70c !70c !70c "},
        {REG_DWORD, "\x34\x12", "1234/1 !70c !70c !70c !70c "},  // what a value lacks reads 0
        {REG_DWORD, "\1\0\0\0\0"s, "!ea !70c !70c !70c !70c "},
        {REG_BINARY, "\x8\x7\x6\x5\x4\x3\x2\x81", "!70c 8102030405060708 5060708/0 8/81 !70c "},
        {REG_BINARY, "1234567", "!70c !70c 34333231/0 7/37 !70c "},
        {REG_BINARY, "", "!70c !70c 0/0 0/ffffffff !70c "},
        {REG_BINARY, placement, "!70c !ea 4030201/2c2b2a29 2c/2c !70c "},
        {REG_BINARY, placement + "x", "!70c !ea !ea 2d/78 !70c "},
        {REG_BINARY, kMegabyte, "!70c !ea !ea 100000/78 !70c "},
        {REG_QWORD, "12345678", "!70c !70c !70c !70c !70c "},
        {0x7777, "1234", "!70c !70c !70c !70c !70c "},
        // Texts with and without a terminator, odd, with zeros inside, with half a pair.
        {REG_SZ, "a\0b\0\0\0"s, "!70c !70c !70c !70c 'ab' "},
        {REG_SZ, "a\0b\0"s, "!70c !70c !70c !70c 'ab' "},
        {REG_SZ, "a\0b"s, "!70c !70c !70c !70c 'ab' "},
        {REG_SZ, "\xff\xff\xff", "!70c !70c !70c !70c '\xEF\xBF\xBF\xC3\xBF' "},
        {REG_SZ, "", "!70c !70c !70c !70c '' "},
        {REG_SZ, "a\0\0\0b\0\0\0"s, "!70c !70c !70c !70c 'a' "},
        {REG_SZ, kMegabyte, "!70c !70c !70c !70c 524288 "},
        {REG_EXPAND_SZ, "%\0O\0S\0%\0"s, "!70c !70c !70c !70c '%OS%' "},
    };
    for (const auto& [type, bytes, told] : cases) {
        Set(type, bytes);
        EXPECT_EQ(ReadAll(), told) << "type " << type << ", " << testing::PrintToString(bytes.substr(0, 20));
    }
    EXPECT_TRUE(m_helper.ValueExists(L"V"));
    m_key.Remove(L"v");
    EXPECT_EQ(ReadAll(), "!2 !2 !2 !2 '' ");
    EXPECT_FALSE(m_helper.ValueExists(L"v"));
    // What is written is read, and not read as another type.
    m_helper.SetBoolValue(L"v", true);
    EXPECT_EQ(ReadAll(), "1/1 !70c !70c !70c !70c ");
    m_helper.SetBoolValue(L"v", false);
    EXPECT_EQ(ReadAll(), "0/0 !70c !70c !70c !70c ");
    m_helper.SetInt64Value(L"v", 0x0102030405060708);
    EXPECT_EQ(ReadAll(), "!70c 102030405060708 5060708/0 8/1 !70c ");
    WINDOWPLACEMENT window{};
    window.rcNormalPosition.bottom = 0x01020304;
    m_helper.SetPlacementValue(L"v", window);
    EXPECT_EQ(ReadAll(), "!70c !ea 0/1020304 2c/1 !70c ");
    EXPECT_EQ(m_helper.SetStringValue(L"v", L"ab"), ERROR_SUCCESS);
    EXPECT_EQ(m_helper.SetStringValue(L"v", nullptr), 13);
    EXPECT_EQ(ReadAll(), "!70c !70c !70c !70c 'ab' ");
}

TEST_F(RegistryValue, ChangesUnderTheReaderAreAFailureOrReadAsTheyAreThen) {
    const SeenCall<RegQueryValueExW> query(
        GetModuleHandleW(nullptr), "RegQueryValueExW", [](auto...) {},
        [](HKEY key, LPCWSTR, LPDWORD, LPDWORD, LPBYTE data, LPDWORD) {
            // Once the size alone has been asked.
            if (data == nullptr) RegSetKeyValueW(key, L"", L"v", REG_SZ, L"four!", 8);
        });
    Set(REG_SZ, "x");
    EXPECT_EQ(StatusThrownBy([&] { m_helper.GetStringValue(L"v"); }), DWORD{ERROR_MORE_DATA});
    Set(REG_SZ, kMegabyte);
    EXPECT_EQ(m_helper.GetStringValue(L"v"), L"four");
    Set(REG_BINARY, "x");
    EXPECT_EQ(ReadAll(), "!70c !70c 78/0 !ea 'four' ");
    Set(REG_BINARY, kMegabyte);
    EXPECT_EQ(ReadAll(), "!70c !ea !ea 8/0 'four' ");
}

TEST_F(RegistryValue, NamesAreListedAsFarAsTheyAreThere) {
    const std::wstring longest(16383, L'n');
    DWORD count = 0, longestName = 0, longestData = 0, type = 0;
    CString name = L"kept";
    const auto valueAt = [&](DWORD index, DWORD most) {
        return StatusThrownBy([&] { m_helper.EnumValue(index, most, name, type); });
    };
    EXPECT_EQ(SubKeysWhile(Nothing), "");
    for (const LPCWSTR key : {L"d", L"c", L"b", L"a"}) m_key.AddKey(key);
    m_key.AddKey(std::wstring(255, L'n'));
    m_key.SetText(L"", L"12345");
    m_key.SetText(longest, L"x", REG_EXPAND_SZ);
    EXPECT_EQ(valueAt(0, 0), 0xDu);
    EXPECT_EQ(valueAt(1, 3), DWORD{ERROR_MORE_DATA});
    EXPECT_EQ(valueAt(2, 4), DWORD{ERROR_NO_MORE_ITEMS});
    EXPECT_EQ(name, L"kept");
    m_helper.GetSubKeyInfo(count, longestName);
    EXPECT_EQ(std::pair(count, longestName), std::pair(DWORD{5}, DWORD{255}));
    m_helper.GetValueInfo(count, longestName, longestData);
    EXPECT_EQ(std::tuple(count, longestName, longestData), std::tuple(DWORD{2}, DWORD{16383}, DWORD{12}));
    EXPECT_EQ(valueAt(1, longestName), 0u);
    EXPECT_EQ(std::pair(std::wstring(name), type), std::pair(longest, DWORD{REG_EXPAND_SZ}));
    EXPECT_EQ(valueAt(0, longestName), 0u);
    EXPECT_EQ(std::pair(std::wstring(name), type), std::pair(std::wstring(), DWORD{REG_SZ}));
    EXPECT_EQ(SubKeysWhile(Nothing), "a,b,c,d," + std::string(255, 'n') + ",");
    RegDeleteKeyW(m_key.Key(), std::wstring(255, L'n').c_str());
    EXPECT_EQ(SubKeysWhile([](HKEY key, DWORD index) { index == 1 ? RegDeleteKeyW(key, L"d") : 0; }), "a,b,c,");
    EXPECT_EQ(SubKeysWhile([](HKEY key, DWORD index) { index == 1 ? RegDeleteKeyW(key, L"a") : 0; }), "a,c,")
        << "those behind it move up, so the walk passes over one more";
    EXPECT_EQ(SubKeysWhile([](HKEY key, DWORD) { CRegKey().Create(key, L"aaaaaa", nullptr, REG_OPTION_VOLATILE); }),
              "b,");
}
