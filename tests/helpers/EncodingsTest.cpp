#include "helpers/Encodings.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace {

std::string Utf8(const CString& text, bool padded = false) {
    int bytes = -1;
    const auto buffer = WideToUtf8(text, padded, bytes);
    return buffer ? std::string(reinterpret_cast<const char*>(buffer.get()), static_cast<size_t>(bytes)) : "(null)";
}

}  // namespace

TEST(HexToBytes, NeedsWholePairs) {
    EXPECT_EQ(HexToBytes(L"00f"), nullptr);
    const auto bytes = HexToBytes(L"00Ff7fzz");
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(std::memcmp(bytes.get(), "\x00\xff\x7f\x00\x00", 5), 0) << "four bytes and one more";
    EXPECT_NE(HexToBytes(L""), nullptr);
    CString text = L"0x";
    BytesToHex({bytes.get(), 3}, text);
    EXPECT_EQ(text, L"0x00ff7f");
}

TEST(WideToUtf8, EncodesWithoutTerminator) {
    EXPECT_EQ(Utf8(L"a\x00E4\x20AC\xD83D\xDE00"), "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(Utf8(L"\xDE00\xD83D"), "\xEF\xBF\xBD\xEF\xBF\xBD") << "lone surrogates";
    EXPECT_EQ(Utf8(L"ab", true), std::string("ab\0\0", 4));
    EXPECT_EQ(Utf8(CString(L"a\0b", 3)), std::string("a\0b", 3));
    int bytes = -1;
    EXPECT_EQ(WideToUtf8(L"", true, bytes), nullptr);
    EXPECT_EQ(bytes, 0);
}

TEST(Utf8ToWide, DecodesAndReplacesWhatIsMalformed) {
    const std::pair<const char*, std::wstring> cases[] = {
        {"", L""},
        {"a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", L"a\x00E4\x20AC\xD83D\xDE00"},
        {"\x80z", L"\xFFFDz"},
        {"a\xC3", L"a\xFFFD"},
        {"\xF0\x9F\x98", L"\xFFFD"},
        {"\xC0\x80", L"\xFFFD\xFFFD"},
    };
    for (const auto& [utf8, expected] : cases) {
        SCOPED_TRACE(testing::PrintToString(std::string(utf8)));
        const auto wide = Utf8ToWide(utf8);
        ASSERT_NE(wide, nullptr);
        EXPECT_EQ(std::wstring(wide.get(), expected.size() + 3), expected + std::wstring(3, L'\0'));
    }
    EXPECT_EQ(Utf8ToWide(nullptr), nullptr);
}

TEST(WideToAnsi, AnswersTheThreadsCodePage) {
    const LCID before = GetThreadLocale();
    ASSERT_TRUE(SetThreadLocale(0x0409));
    EXPECT_EQ(WideToAnsi(L"plain"), "plain");
    EXPECT_EQ(WideToAnsi(L"\x00E4\x20AC"), "\xE4\x80");
    EXPECT_EQ(WideToAnsi(L"\x0416"), "?");
    EXPECT_EQ(WideToAnsi(L"\x0100"), "?") << "no letter that merely looks alike";
    EXPECT_TRUE(WideToAnsi(L"").IsEmpty());
    EXPECT_TRUE(WideToAnsi(nullptr).IsEmpty());
    ASSERT_TRUE(SetThreadLocale(0x0419));
    EXPECT_EQ(WideToAnsi(L"\x0416"), "\xC6");
    SetThreadLocale(before);
}

TEST(Utf8PackedInWide, CarriesTwoBytesInEachCharacter) {
    const CString even = Utf8PackedInWide(L"abcd");
    ASSERT_EQ(even.GetLength(), 3);
    EXPECT_EQ(std::memcmp(even.GetString(), "abcd\0\0", 6), 0);
    const CString odd = Utf8PackedInWide(
        L"ab\x00E4"
        L"e");
    ASSERT_EQ(odd.GetLength(), 3);
    EXPECT_EQ(std::memcmp(odd.GetString(),
                          "ab\xC3\xA4"
                          "e\0",
                          6),
              0);
    EXPECT_TRUE(Utf8PackedInWide(L"").IsEmpty());
}
