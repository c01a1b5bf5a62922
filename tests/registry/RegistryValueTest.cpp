// What the typed readers and writers make of values, as other programs leave them too.
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "registry/RegistryHelper.h"
#include "registry/Thrown.h"
#include "support/ImportPatch.h"
#include "support/Narrow.h"
#include "support/ScopedRegistryKey.h"

namespace {

using Bytes = std::vector<BYTE>;

Bytes BytesOf(std::wstring_view text) {
    Bytes bytes(text.size() * sizeof(wchar_t));
    std::memcpy(bytes.data(), text.data(), bytes.size());
    return bytes;
}

class RegistryValue : public testing::Test {
protected:
    RegistryValue() { m_helper.OpenOrCreate(HKEY_CURRENT_USER, m_key.Path().c_str(), KEY_ALL_ACCESS, 0); }

    void Set(DWORD type, const Bytes& bytes) { m_key.SetData(L"", L"v", type, bytes.data(), bytes.size()); }

    // The value as the bare call reads it.
    Bytes Raw(LPCWSTR name, DWORD wantedType) const {
        DWORD type = 0;
        DWORD size = 0;
        RegQueryValueExW(m_key.Key(), name, nullptr, &type, nullptr, &size);
        EXPECT_EQ(type, wantedType);
        Bytes bytes(size);
        RegQueryValueExW(m_key.Key(), name, nullptr, nullptr, bytes.data(), &size);
        return bytes;
    }

    ScopedRegistryKey m_key;
    CRegistryHelper m_helper;
};

// A query of the size alone is followed by a change of the value, as another process might make it.
DWORD s_nextType = REG_SZ;
Bytes s_nextBytes;

LSTATUS WINAPI QueryAndChange(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size) {
    const auto query = SystemFunction(&RegQueryValueExW, L"advapi32.dll", "RegQueryValueExW");
    const LSTATUS status = query(key, name, reserved, type, data, size);
    if (!data) RegSetValueExW(key, name, 0, s_nextType, s_nextBytes.data(), static_cast<DWORD>(s_nextBytes.size()));
    return status;
}

}  // namespace

TEST_F(RegistryValue, TextEndsWithOrWithoutTerminator) {
    struct Case {
        DWORD type;
        Bytes bytes;
        std::wstring expected;
    };
    const std::wstring megabyte(512 * 1024, L'x');
    const Case cases[] = {
        {REG_SZ, BytesOf({L"abc\0", 4}), L"abc"},
        {REG_SZ, BytesOf(L"abc"), L"abc"},
        {REG_SZ, {'a', 0, 'b'}, L"ab"},
        {REG_SZ, {'a'}, L"a"},
        {REG_SZ, {0xFF, 0xFF, 0xFF}, L"\xFFFF\x00FF"},
        {REG_SZ, {}, L""},
        {REG_SZ, BytesOf({L"a\0b\0", 4}), L"a"},
        {REG_SZ, BytesOf({L"\0\0", 2}), L""},
        {REG_SZ, BytesOf(L"\xD83D"), L"\xD83D"},
        {REG_SZ, BytesOf(megabyte), megabyte},
        {REG_EXPAND_SZ, BytesOf({L"%SystemRoot%\0", 13}), L"%SystemRoot%"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.bytes.size());
        Set(c.type, c.bytes);
        const CString text = m_helper.GetStringValue(L"v");
        EXPECT_TRUE(std::wstring(text.GetString()) == c.expected) << Narrow(text.Left(40).GetString());
        EXPECT_EQ(static_cast<size_t>(text.GetLength()), c.expected.size());
    }
    EXPECT_TRUE(m_helper.GetStringValue(L"missing").IsEmpty());
}

// Each reader takes one type alone and no more bytes than it has room for.
TEST_F(RegistryValue, NumbersAndTextsOfAnotherTypeOrSizeAreRefused) {
    const auto dword = [&] { m_helper.GetDwordValue(L"v"); };
    const auto flag = [&] { m_helper.GetBoolValue(L"v"); };
    const auto int64 = [&] { m_helper.GetInt64Value(L"v"); };
    const auto text = [&] { m_helper.GetStringValue(L"v"); };
    const struct {
        DWORD type;
        size_t bytes;
        DWORD ofDword, ofInt64, ofText;
    } cases[] = {
        {REG_DWORD, 4, 0, 0x70C, 0x70C},
        {REG_DWORD, 2, 0, 0x70C, 0x70C},
        {REG_DWORD, 0, 0, 0x70C, 0x70C},
        {REG_DWORD, 5, ERROR_MORE_DATA, 0x70C, 0x70C},
        {REG_DWORD, 1 << 20, ERROR_MORE_DATA, 0x70C, 0x70C},
        {REG_BINARY, 8, 0x70C, 0, 0x70C},
        {REG_BINARY, 7, 0x70C, 0x70C, 0x70C},
        {REG_BINARY, 0, 0x70C, 0x70C, 0x70C},
        {REG_BINARY, 9, 0x70C, ERROR_MORE_DATA, 0x70C},
        {REG_QWORD, 8, 0x70C, 0x70C, 0x70C},
        {REG_SZ, 1 << 20, 0x70C, 0x70C, 0},
        {REG_DWORD_BIG_ENDIAN, 4, 0x70C, 0x70C, 0x70C},
        {REG_MULTI_SZ, 4, 0x70C, 0x70C, 0x70C},
        {0x7777, 4, 0x70C, 0x70C, 0x70C},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.type) + " of " + std::to_string(c.bytes));
        Set(c.type, Bytes(c.bytes));
        EXPECT_EQ(StatusThrownBy(dword), c.ofDword);
        EXPECT_EQ(StatusThrownBy(flag), c.ofDword);
        EXPECT_EQ(StatusThrownBy(int64), c.ofInt64);
        EXPECT_EQ(StatusThrownBy(text), c.ofText);
    }
    RegDeleteValueW(m_key.Key(), L"v");
    EXPECT_EQ(StatusThrownBy(dword), 2u);
    EXPECT_EQ(StatusThrownBy(flag), 2u);
    EXPECT_EQ(StatusThrownBy(int64), 2u);
    EXPECT_EQ(StatusThrownBy(text), 0u) << "a missing text is an empty one";
    EXPECT_FALSE(m_helper.ValueExists(L"v"));

    Set(REG_DWORD, {0x34, 0x12});
    EXPECT_EQ(m_helper.GetDwordValue(L"v"), 0x1234u) << "what the value lacks reads 0";
    EXPECT_TRUE(m_helper.GetBoolValue(L"v"));
    Set(REG_BINARY, {0x08, 0x07, 0x06, 0x05, 0x04, 0x03, 0x02, 0x81});
    EXPECT_EQ(m_helper.GetInt64Value(L"v"), static_cast<LONGLONG>(0x8102030405060708));
    EXPECT_TRUE(m_helper.ValueExists(L"V"));
}

TEST_F(RegistryValue, AFailedPlacementLeavesTheCallersAsItWas) {
    WINDOWPLACEMENT placement{};
    Bytes bytes(44);
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<BYTE>(i + 1);
    Set(REG_BINARY, bytes);
    m_helper.GetPlacementValue(L"v", placement);
    EXPECT_EQ(placement.length, 0x04030201u);
    EXPECT_EQ(placement.rcNormalPosition.bottom, 0x2C2B2A29);

    const WINDOWPLACEMENT before = placement;
    Set(REG_BINARY, Bytes(45));
    EXPECT_EQ(StatusThrownBy([&] { m_helper.GetPlacementValue(L"v", placement); }), DWORD{ERROR_MORE_DATA});
    Set(REG_SZ, Bytes(44));
    EXPECT_EQ(StatusThrownBy([&] { m_helper.GetPlacementValue(L"v", placement); }), 0x70Cu);
    EXPECT_EQ(StatusThrownBy([&] { m_helper.GetPlacementValue(L"missing", placement); }), 2u);
    EXPECT_EQ(std::memcmp(&placement, &before, sizeof(placement)), 0);

    Set(REG_BINARY, {0xFF});
    m_helper.GetPlacementValue(L"v", placement);
    EXPECT_EQ(placement.length, 0xFFu);
    EXPECT_EQ(placement.rcNormalPosition.bottom, 0) << "what the value lacks reads 0";
}

TEST_F(RegistryValue, BinaryOfAnySize) {
    for (const size_t size : {1, 3, 44, 1 << 20}) {
        Bytes bytes(size);
        for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<BYTE>(i * 7);
        Set(REG_BINARY, bytes);
        DWORD read = 0;
        const auto buffer = m_helper.GetBinaryValue(L"v", &read);
        ASSERT_EQ(read, size);
        EXPECT_EQ(std::memcmp(buffer.get(), bytes.data(), size), 0);
    }
    DWORD size = 77;
    Set(REG_BINARY, {});
    EXPECT_EQ(m_helper.GetBinaryValue(L"v", &size), nullptr);
    EXPECT_EQ(size, 0u);
    size = 77;
    Set(REG_SZ, {0, 0});
    EXPECT_EQ(StatusThrownBy([&] { m_helper.GetBinaryValue(L"v", &size); }), 0x70Cu);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(StatusThrownBy([&] { m_helper.GetBinaryValue(L"missing"); }), 2u);
}

TEST_F(RegistryValue, AValueThatGrowsUnderTheReaderIsAFailureAndOneThatShrinksIsReadAsItIsThen) {
    const ImportPatch<decltype(&RegQueryValueExW)> patch(GetModuleHandleW(nullptr), "RegQueryValueExW", QueryAndChange);
    const auto changeTo = [&](DWORD type, const Bytes& now, const Bytes& next) {
        Set(type, now);
        s_nextType = type;
        s_nextBytes = next;
    };
    const Bytes longText = BytesOf(std::wstring(1000, L'x'));
    changeTo(REG_SZ, BytesOf({L"ab\0", 3}), longText);
    EXPECT_EQ(StatusThrownBy([&] { m_helper.GetStringValue(L"v"); }), DWORD{ERROR_MORE_DATA});
    changeTo(REG_SZ, longText, BytesOf(L"ab"));
    EXPECT_EQ(m_helper.GetStringValue(L"v"), L"ab");
    DWORD size = 77;
    changeTo(REG_BINARY, Bytes(4), Bytes(1000));
    EXPECT_EQ(StatusThrownBy([&] { m_helper.GetBinaryValue(L"v", &size); }), DWORD{ERROR_MORE_DATA});
    EXPECT_EQ(size, 0u);
    changeTo(REG_BINARY, Bytes(1000), Bytes(3, 9));
    const auto buffer = m_helper.GetBinaryValue(L"v", &size);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(buffer[2], 9);
    EXPECT_EQ(buffer[3], 0);
}

TEST_F(RegistryValue, WritesTypesAndBytes) {
    m_helper.SetBoolValue(L"yes", true);
    m_helper.SetBoolValue(L"no", false);
    EXPECT_EQ(Raw(L"yes", REG_DWORD), (Bytes{1, 0, 0, 0}));
    EXPECT_EQ(Raw(L"no", REG_DWORD), (Bytes{0, 0, 0, 0}));
    m_helper.SetInt64Value(L"number", 0x0102030405060708);
    EXPECT_EQ(Raw(L"number", REG_BINARY), (Bytes{8, 7, 6, 5, 4, 3, 2, 1}));
    WINDOWPLACEMENT placement{};
    placement.rcNormalPosition.bottom = 0x01020304;
    m_helper.SetPlacementValue(L"placement", placement);
    const Bytes written = Raw(L"placement", REG_BINARY);
    ASSERT_EQ(written.size(), 44u);
    EXPECT_EQ(Bytes(written.end() - 4, written.end()), (Bytes{4, 3, 2, 1}));
    EXPECT_EQ(m_helper.SetStringValue(L"text", L"ab"), ERROR_SUCCESS);
    EXPECT_EQ(Raw(L"text", REG_SZ), BytesOf({L"ab\0", 3}));
    EXPECT_EQ(m_helper.SetStringValue(L"text", nullptr), 13);
}

TEST_F(RegistryValue, TheFrameworksTextQueryTrustsNothing) {
    WCHAR buffer[4] = {L'?', L'?', L'?', L'?'};
    const auto query = [&](ULONG chars, ULONG& result) {
        result = chars;
        return m_helper.QueryStringValue(L"v", buffer, &result);
    };
    ULONG chars = 0;
    Set(REG_SZ, BytesOf({L"abc\0", 4}));
    EXPECT_EQ(query(4, chars), ERROR_SUCCESS);
    EXPECT_EQ(chars, 4u);
    EXPECT_EQ(query(3, chars), ERROR_MORE_DATA);
    EXPECT_EQ(m_helper.QueryStringValue(L"v", nullptr, &(chars = 0)), ERROR_SUCCESS);
    EXPECT_EQ(chars, 4u);
    Set(REG_SZ, BytesOf(L"abcd"));
    EXPECT_EQ(query(4, chars), ERROR_INVALID_DATA);
    Set(REG_SZ, {'a', 0, 0});
    EXPECT_EQ(query(4, chars), ERROR_INVALID_DATA);
    Set(REG_BINARY, {0, 0});
    EXPECT_EQ(query(4, chars), ERROR_INVALID_DATA);
    Set(REG_SZ, {});
    buffer[0] = L'?';
    EXPECT_EQ(query(0, chars), ERROR_SUCCESS);
    EXPECT_EQ(buffer[0], L'?') << "a buffer of no characters is not written to";
    EXPECT_EQ(query(4, chars), ERROR_SUCCESS);
    EXPECT_EQ(buffer[0], L'\0');
}
