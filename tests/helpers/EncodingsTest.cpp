#include "helpers/Encodings.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

#include "support/ImportPatch.h"

namespace {

std::string Utf8(const CString& text, bool padded = false) {
    int bytes = -1;
    const auto buffer = WideToUtf8(text, padded, bytes);
    return buffer ? std::string(reinterpret_cast<const char*>(buffer.get()), static_cast<size_t>(bytes)) : "(null)";
}

// A text whose terminator is the last byte before memory that cannot be read.
class TextAtPageEnd {
public:
    explicit TextAtPageEnd(const std::string& text) {
        constexpr size_t kPage = 4096;
        m_pages = static_cast<char*>(VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        DWORD old = 0;
        VirtualProtect(m_pages + kPage, kPage, PAGE_NOACCESS, &old);
        m_text = m_pages + kPage - text.size() - 1;
        std::memcpy(m_text, text.c_str(), text.size() + 1);
    }
    ~TextAtPageEnd() { VirtualFree(m_pages, 0, MEM_RELEASE); }
    TextAtPageEnd(const TextAtPageEnd&) = delete;
    TextAtPageEnd& operator=(const TextAtPageEnd&) = delete;

    const char* Get() const { return m_text; }

private:
    char* m_pages;
    char* m_text;
};

}  // namespace

TEST(WideToUtf8, EncodesWithoutTerminator) {
    EXPECT_EQ(Utf8(L"a\x00E4\x20AC\xD83D\xDE00"), "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(Utf8(L"ab", true), std::string("ab\0\0", 4));
    EXPECT_EQ(Utf8(CString(L"a\0b", 3)), std::string("a\0b", 3));
    int bytes = -1;
    EXPECT_EQ(WideToUtf8(L"", false, bytes), nullptr);
    EXPECT_EQ(bytes, 0);
    EXPECT_EQ(WideToUtf8(L"", true, bytes), nullptr);
}

TEST(WideToUtf8, ALoneSurrogateBecomesTheReplacementCharacter) {
    EXPECT_EQ(Utf8(L"\xD83D"), "\xEF\xBF\xBD");
    EXPECT_EQ(Utf8(L"\xDE00"), "\xEF\xBF\xBD");
    EXPECT_EQ(Utf8(L"a\xD83D"
                   L"b"),
              "a\xEF\xBF\xBD"
              "b");
    EXPECT_EQ(Utf8(L"\xDE00\xD83D"), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Utf8ToWide, DecodesAndReplacesWhatIsMalformed) {
    struct Case {
        const char* utf8;
        std::wstring expected;
    };
    // One replacement for each longest piece that could have begun a character.
    const Case cases[] = {
        {"", L""},
        {"a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", L"a\x00E4\x20AC\xD83D\xDE00"},
        {"\x80", L"\xFFFD"},
        {"a\xC3", L"a\xFFFD"},
        {"\xC3"
         "b",
         L"\xFFFD"
         L"b"},
        {"\xE2\x82", L"\xFFFD"},
        {"\xF0\x9F\x98", L"\xFFFD"},
        {"\xC0\x80", L"\xFFFD\xFFFD"},
        {"\xF5\xFF", L"\xFFFD\xFFFD"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(std::string(c.utf8)));
        const TextAtPageEnd input(c.utf8);
        const auto wide = Utf8ToWide(input.Get());
        ASSERT_NE(wide, nullptr);
        EXPECT_EQ(std::wstring(wide.get()), c.expected);
        EXPECT_EQ(wide[c.expected.size() + 1], 0);
        EXPECT_EQ(wide[c.expected.size() + 2], 0);
    }
    EXPECT_EQ(Utf8ToWide(nullptr), nullptr);
}

// How many replacements these give differs between versions of Windows.
TEST(Utf8ToWide, AnEncodedSurrogateIsNoCharacter) {
    for (const char* utf8 : {"\xED\xA0\x80", "\xED\xA0\xBD\xED\xB8\x80", "\xF4\x90\x80\x80"}) {
        const TextAtPageEnd input(utf8);
        const auto wide = Utf8ToWide(input.Get());
        ASSERT_NE(wide, nullptr);
        const std::wstring text = wide.get();
        EXPECT_GE(text.size(), 1u);
        EXPECT_EQ(text.find_first_not_of(L'\xFFFD'), std::wstring::npos);
    }
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
