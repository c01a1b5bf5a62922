// Texts as Windows compares, converts and makes them.
#include <gtest/gtest.h>
#include <string>

#include "helpers/Encodings.h"
#include "helpers/ParseText.h"
#include "helpers/SystemText.h"
#include "helpers/TextCompare.h"
#include "support/ImportPatch.h"
#include "support/Narrow.h"

namespace {

std::string Utf8(const CString& text, bool padded = false) {
    int bytes = -1;
    const auto buffer = WideToUtf8(text, padded, bytes);
    EXPECT_EQ(buffer == nullptr, bytes == 0);
    return {buffer.get(), buffer.get() + bytes};
}

std::string BytesIn(const CString& text) {
    const auto bytes = reinterpret_cast<const char*>(text.GetString());
    return {bytes, bytes + text.GetLength() * sizeof(wchar_t)};
}

// What CompareStringW was asked last: locale, flags and lengths.
using Question = std::array<DWORD, 4>;
Question s_question;

class TextCompare : public testing::Test {
    ImportPatch<decltype(&CompareStringW)> m_patch{
        GetModuleHandleW(nullptr), "CompareStringW",
        [](LCID locale, DWORD flags, LPCWCH first, int firstLength, LPCWCH second, int secondLength) {
            s_question = {locale, flags, static_cast<DWORD>(firstLength), static_cast<DWORD>(secondLength)};
            return SystemFunction(&CompareStringW, L"kernel32.dll", "CompareStringW")(locale, flags, first, firstLength,
                                                                                      second, secondLength);
        }};
};

}  // namespace

TEST(Encodings, Utf8IsWrittenWithoutTerminatorAndReadWhateverItHolds) {
    EXPECT_EQ(Utf8(L"a\u00E4\u20AC\U0001F600"), "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(Utf8(L"\xDE00\xD83D"), "\xEF\xBF\xBD\xEF\xBF\xBD") << "lone surrogates";
    EXPECT_EQ(Utf8(CString(L"a\0b", 3), true), std::string("a\0b\0\0", 5));
    EXPECT_EQ(Utf8(L"", true), "");
    EXPECT_EQ(BytesIn(Utf8PackedInWide(L"abcd")), std::string("abcd\0\0", 6));
    EXPECT_EQ(BytesIn(Utf8PackedInWide(L"ab\u00E4e")), std::string("ab\xC3\xA4"
                                                                   "e\0",
                                                                   6))
        << "an odd byte is dropped";
    EXPECT_TRUE(Utf8PackedInWide(L"").IsEmpty());

    const std::pair<const char*, std::wstring> cases[] = {
        {"", L""},
        {"a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", L"a\u00E4\u20AC\U0001F600"},
        {"\x80z", L"\xFFFDz"},
        {"a\xC3", L"a\xFFFD"},
        {"\xF0\x9F\x98", L"\xFFFD"},
        {"\xC0\x80", L"\xFFFD\xFFFD"},
    };
    for (const auto& [utf8, expected] : cases) {
        const auto wide = Utf8ToWide(utf8);
        EXPECT_EQ(std::wstring(wide.get(), expected.size() + 3), expected + std::wstring(3, L'\0'));
    }
    EXPECT_EQ(Utf8ToWide(nullptr), nullptr);
}

TEST(Encodings, AnsiIsTheThreadsAndHexNeedsWholePairs) {
    const LCID before = GetThreadLocale();
    SetThreadLocale(0x0409);
    EXPECT_EQ(WideToAnsi(L"a\u00E4\u20AC\u0416\u0100"), "a\xE4\x80??") << "no letter that merely looks alike";
    EXPECT_TRUE(WideToAnsi(L"").IsEmpty() && WideToAnsi(nullptr).IsEmpty());
    SetThreadLocale(0x0419);
    EXPECT_EQ(WideToAnsi(L"\u0416"), "\xC6");
    SetThreadLocale(before);

    EXPECT_EQ(HexToBytes(L"00f"), nullptr);
    const auto bytes = HexToBytes(L"00Ff7f");
    EXPECT_EQ(std::string(bytes.get(), bytes.get() + 4), std::string("\0\xff\x7f\0", 4)) << "three bytes and one more";
    CString text = L"0x";
    BytesToHex({bytes.get(), 3}, text);
    EXPECT_EQ(text, L"0x00ff7f");
}

TEST(ParseText, CrossedBoundsAreAFaultUnlessThereIsNoText) {
    CStringList pieces;
    pieces.AddTail(L"old");
    EXPECT_EQ(SplitDotted(L"1..2.", pieces), 4);
    CString joined;
    for (POSITION place = pieces.GetHeadPosition(); place;) joined += L"[" + pieces.GetNext(place) + L"]";
    EXPECT_EQ(joined, L"[1][][2][]");
    EXPECT_EQ(SplitDotted(L"", pieces), 1);
    EXPECT_TRUE(ParseIntInRange(L"5", 5, 5));
    EXPECT_FALSE(ParseIntInRange(L"6", 5, 5) || ParseIntInRange(L"", 2, 1));
    EXPECT_THROW(ParseIntInRange(L"1", 2, 1), CInvalidArgException*);
}

TEST(SystemText, GuidsAreNewAndErrorTextsKeepPlaceholdersAndLineBreaks) {
    const CString guid = NewGuidText();
    EXPECT_EQ(guid.GetLength(), 32);
    EXPECT_EQ(std::wstring_view(guid.GetString()).find_first_not_of(L"0123456789ABCDEF"), std::wstring_view::npos);
    EXPECT_NE(NewGuidText(), guid);

    static int s_freed = 0;
    const ImportPatch<decltype(&LocalFree)> patch(GetModuleHandleW(nullptr), "LocalFree", [](HLOCAL memory) {
        ++s_freed;
        return SystemFunction(&LocalFree, L"kernel32.dll", "LocalFree")(memory);
    });
    const CString text = SystemErrorText(ERROR_BAD_EXE_FORMAT);
    EXPECT_GE(text.Find(L"%1"), 0) << Narrow(text.GetString());
    EXPECT_EQ(text.Right(2), L"\r\n");
    EXPECT_NE(text, SystemErrorText(ERROR_FILE_NOT_FOUND));
    EXPECT_TRUE(SystemErrorText(0x2FFFFFFF).IsEmpty());
    EXPECT_EQ(s_freed, 2);
}

TEST_F(TextCompare, AsksTheSystemForTheLocaleThatIsMeant) {
    const LCID user = GetUserDefaultLCID();
    EXPECT_EQ(CompareInvariantNoCase(L"Alpha", L"aLPHA"), CSTR_EQUAL);
    EXPECT_EQ(s_question, (Question{0x7F, 1, 5, 5}));
    EXPECT_EQ(CompareInvariantNoCase(CString(L"a"), CString(L"bc")), CSTR_LESS_THAN);
    EXPECT_EQ(s_question, (Question{0x7F, 1, 1, 2}));
    EXPECT_EQ(CompareLocaleNoCase(0x407, L"\u00DC", L"\u00FC"), CSTR_EQUAL);
    EXPECT_EQ(CompareLocaleNoCase(0x407, CString(L"b"), CString(L"A")), CSTR_GREATER_THAN);
    EXPECT_EQ(s_question, (Question{0x407, 1, 1, 1}));
    EXPECT_EQ(CompareInvariantNoCase(static_cast<LPCWSTR>(nullptr), L"x"), 0);

    s_question = {};
    EXPECT_TRUE(StartsWith(L"Software", L"Soft", false));
    EXPECT_FALSE(StartsWith(L"Software", L"soft", false));
    EXPECT_EQ(s_question, Question{}) << "with case, no language is asked";
    EXPECT_TRUE(StartsWith(L"Software", L"sOFT", true));
    EXPECT_EQ(s_question, (Question{user, 1, 4, 4}));
    EXPECT_FALSE(StartsWith(L"Soft", L"Software", true));
    EXPECT_TRUE(EndsWithCrLf(L"line\r\n"));
    EXPECT_EQ(s_question, (Question{user, 1, 2, 2}));
    for (const LPCWSTR text : {L"", L"\n", L"line\n\r", L"\r\nline"}) EXPECT_FALSE(EndsWithCrLf(text));

    EXPECT_EQ(FindText(L"aB", L"b", 0, false), -1);
    EXPECT_EQ(s_question, (Question{0x400, 0, 1, 1}));
    EXPECT_EQ(FindText(L"aB", L"b", 0, true), 1);
    EXPECT_EQ(s_question, (Question{0x400, 1, 1, 1}));
}

TEST(FindText, FindsFromTheStartOnAndReplacesWithoutScanningWhatWasPutIn) {
    const struct {
        LPCWSTR text, needle;
        int start, place;
    } places[] = {
        {L"banana", L"an", 0, 1},
        {L"banana", L"an", 2, 3},
        {L"banana", L"an", 4, -1},
        {L"banana", L"banana", 0, 0},
        {L"banana", L"a", 5, 5},
        {L"banana", L"a", 6, -1},
        {L"banana", L"", 0, 0},
        {L"banana", L"bananas", 0, -1},
        {L"banana", L"", 6, 0},
        {L"banana", L"", 7, -1},
        {L"", L"", 0, 0},
        {L"banana", L"an", -1, -1},
        {L"banana", L"an", 2147483647, -1},
    };
    for (const auto& [text, needle, start, place] : places) {
        EXPECT_EQ(FindText(text, needle, start, false), place) << Narrow(needle) << " from " << start;
    }
    const struct {
        LPCWSTR text, oldText, newText;
        int start;
        bool ignoreCase;
        LPCWSTR result;
        int count;
    } replaced[] = {
        {L"aaa", L"a", L"aa", 0, false, L"aaaaaa", 3}, {L"aaa", L"aa", L"b", 0, false, L"ba", 1},
        {L"aaa", L"a", L"", 0, false, L"", 3},         {L"abc", L"", L"x", 0, false, L"abc", 0},
        {L"xAxa", L"a", L"-", 0, true, L"x-x-", 2},    {L"xAxa", L"a", L"-", 0, false, L"xAx-", 1},
        {L"aaa", L"a", L"b", 2, false, L"aab", 1},     {L"aaa", L"a", L"b", 3, false, L"aaa", 0},
        {L"", L"a", L"b", 0, false, L"", 0},           {L"100% %s", L"%s", L"%d%n", 0, false, L"100% %d%n", 1},
    };
    for (const auto& [before, oldText, newText, start, ignoreCase, result, count] : replaced) {
        CString text = before;
        EXPECT_EQ(ReplaceText(text, oldText, newText, start, ignoreCase), count) << Narrow(before);
        EXPECT_EQ(text, result) << Narrow(before);
    }
}
