// Texts and numbers as Windows compares, converts and formats them.
#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

#include "helpers/Encodings.h"
#include "helpers/NumberFormat.h"
#include "helpers/ParseText.h"
#include "helpers/SystemText.h"
#include "helpers/TextCompare.h"
#include "support/FreshProcess.h"
#include "support/ImportPatch.h"
#include "support/Narrow.h"

namespace {

template <class Character>
std::string Bytes(const Character* text, int length) {
    const auto bytes = reinterpret_cast<const char*>(text);
    return {bytes, static_cast<size_t>(length) * sizeof(Character)};
}

std::string Utf8(const CString& text, bool padded = false) {
    int bytes = -1;
    const auto buffer = WideToUtf8(text, padded, bytes);
    EXPECT_EQ(buffer == nullptr, bytes == 0);
    return Bytes(buffer.get(), bytes);
}

std::string Packed(const CString& text) {
    const CString packed = Utf8PackedInWide(text);
    return Bytes(packed.GetString(), packed.GetLength());
}

// What CompareStringW was asked last: locale, flags and lengths.
using Question = std::array<DWORD, 4>;
Question s_question;

int WINAPI NoteAndCompare(LCID locale, DWORD flags, LPCWCH a, int aLength, LPCWCH b, int bLength) {
    s_question = {locale, flags, static_cast<DWORD>(aLength), static_cast<DWORD>(bLength)};
    return SystemFunction(&CompareStringW, L"kernel32.dll", "CompareStringW")(locale, flags, a, aLength, b, bLength);
}

TEST(Encodings, Utf8IsWrittenWithoutTerminatorAndReadWhateverItHolds) {
    EXPECT_EQ(Utf8(L"a\u00E4\u20AC\U0001F600\xDE00\xD83D"), "a\u00E4\u20AC\U0001F600\uFFFD\uFFFD");
    EXPECT_EQ(Utf8(CString(L"a\0b", 3), true), std::string("a\0b\0\0", 5));
    EXPECT_EQ(Utf8(L"", true), "");
    EXPECT_EQ(Packed(L"abcd"), std::string("abcd\0\0", 6));
    EXPECT_EQ(Packed(L"ab\u00E4e"), std::string("ab\u00E4e\0", 6)) << "an odd byte is dropped";
    EXPECT_EQ(Packed(L""), "");
    const auto wide = Utf8ToWide("a\u00E4\u20AC\U0001F600\x80z\xC0\x80\xF0\x9F\x98");
    EXPECT_EQ(std::wstring(wide.get(), 13),
              std::wstring(L"a\u00E4\u20AC\U0001F600\uFFFDz\uFFFD\uFFFD\uFFFD\0\0\0", 13));
    EXPECT_EQ(Utf8ToWide("")[0], L'\0');
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
    EXPECT_EQ(Bytes(bytes.get(), 4), std::string("\0\xff\x7f\0", 4)) << "three bytes and one more";
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
    EXPECT_EQ(std::wstring_view(guid).find_first_not_of(L"0123456789ABCDEF"), std::wstring_view::npos);
    EXPECT_NE(NewGuidText(), guid);
    static int s_freed = 0;
    const ImportPatch<decltype(&LocalFree)> patch(GetModuleHandleW(nullptr), "LocalFree", [](HLOCAL memory) {
        ++s_freed;
        return SystemFunction(&LocalFree, L"kernel32.dll", "LocalFree")(memory);
    });
    const CString text = SystemErrorText(ERROR_BAD_EXE_FORMAT);
    EXPECT_TRUE(text.Find(L"%1") >= 0 && text.Right(2) == L"\r\n") << Narrow(text.GetString());
    EXPECT_NE(text, SystemErrorText(ERROR_FILE_NOT_FOUND));
    EXPECT_TRUE(SystemErrorText(0x2FFFFFFF).IsEmpty());
    EXPECT_EQ(s_freed, 2);
}

TEST(TextCompare, AsksTheSystemForTheLocaleThatIsMeant) {
    const ImportPatch<decltype(&CompareStringW)> patch(GetModuleHandleW(nullptr), "CompareStringW", NoteAndCompare);
    const LCID user = GetUserDefaultLCID();
    const struct {
        std::function<int()> ask;
        int answer;
        Question question;
    } rows[] = {
        {[] { return CompareInvariantNoCase(L"Alpha", L"aLPHA"); }, CSTR_EQUAL, {0x7F, 1, 5, 5}},
        {[] { return CompareInvariantNoCase(CString(L"a"), CString(L"bc")); }, CSTR_LESS_THAN, {0x7F, 1, 1, 2}},
        {[] { return CompareInvariantNoCase(LPCWSTR{}, L"x"); }, 0, {0x7F, 1, 0, 1}},
        {[] { return CompareLocaleNoCase(0x407, L"\u00DC", L"\u00FC"); }, CSTR_EQUAL, {0x407, 1, 1, 1}},
        {[] { return CompareLocaleNoCase(0x407, CString(L"b"), CString(L"A")); }, CSTR_GREATER_THAN, {0x407, 1, 1, 1}},
        // With case, no language is asked.
        {[] { return StartsWith(L"Software", L"Soft", false) && !StartsWith(L"Software", L"soft", false); }, 1, {}},
        {[] { return StartsWith(L"Software", L"sOFT", true); }, 1, {user, 1, 4, 4}},
        {[] { return StartsWith(L"Soft", L"Software", true); }, 0, {}},
        {[] { return EndsWithCrLf(L"line\r\n"); }, 1, {user, 1, 2, 2}},
        {[] { return EndsWithCrLf(L"\r\nline") || EndsWithCrLf(L"line\n\r"); }, 0, {user, 1, 2, 2}},
        {[] { return EndsWithCrLf(L"\n") || EndsWithCrLf(L""); }, 0, {}},
        {[] { return FindText(L"aB", L"b", 0, false); }, -1, {0x400, 0, 1, 1}},
        {[] { return FindText(L"aB", L"b", 0, true); }, 1, {0x400, 1, 1, 1}}};
    for (const auto& [ask, answer, question] : rows) {
        s_question = {};
        EXPECT_EQ(ask(), answer) << &question - &rows[0].question;
        EXPECT_EQ(s_question, question);
    }
}

TEST(TextCompare, FindsFromTheStartOnAndReplacesWithoutScanningWhatWasPutIn) {
    const std::tuple<LPCWSTR, int, int> places[] = {
        {L"an", 0, 1}, {L"an", 2, 3}, {L"an", 4, -1}, {L"an", -1, -1}, {L"an", 2147483647, -1}, {L"a", 5, 5},
        {L"a", 6, -1}, {L"", 0, 0},   {L"", 6, 0},    {L"", 7, -1},    {L"banana", 0, 0},       {L"banana", 1, -1}};
    for (const auto& [needle, start, place] : places) EXPECT_EQ(FindText(L"banana", needle, start, false), place);
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
        {L"aaa", L"a", L"b", 2, false, L"aab", 1},     {L"100% %s", L"%s", L"%d%n", 0, false, L"100% %d%n", 1}};
    for (const auto& [before, oldText, newText, start, ignoreCase, result, count] : replaced) {
        CString text = before;
        EXPECT_EQ(ReplaceText(text, oldText, newText, start, ignoreCase), count) << Narrow(before);
        EXPECT_EQ(text, result);
    }
}

struct Locale {
    std::wstring decimal, thousand, grouping;
    DWORD negativeOrder = 1, leadingZero = 1;
};
Locale s_locale;

int WINAPI TellLocale(LCID locale, LCTYPE item, LPWSTR buffer, int size) {
    EXPECT_EQ(locale, DWORD{LOCALE_SYSTEM_DEFAULT});
    if ((item & LOCALE_RETURN_NUMBER) != 0) {
        const bool isZero = (item & 0xFFFF) == LOCALE_ILZERO;
        std::memcpy(buffer, isZero ? &s_locale.leadingZero : &s_locale.negativeOrder, sizeof(DWORD));
        return sizeof(DWORD) / sizeof(WCHAR);
    }
    const std::wstring& other = item == LOCALE_SDECIMAL ? s_locale.decimal : s_locale.thousand;
    const std::wstring& text = item == LOCALE_SGROUPING ? s_locale.grouping : other;
    if (size > 0) std::wcscpy(buffer, text.c_str());
    return static_cast<int>(text.size()) + 1;
}

using Texts = std::vector<CString>;

// The locale is read once for a process, so each one needs a process of its own, and a later change shows nowhere.
template <class Format>
void ExpectUnder(const Locale& locale, Format format, const Texts& expected) {
    EXPECT_IN_FRESH_PROCESS([&] {
        const ImportPatch<decltype(&GetLocaleInfoW)> patch(GetModuleHandleW(nullptr), "GetLocaleInfoW", TellLocale);
        for (const Locale& told : {locale, Locale{L"!", L"!", L"9;0"}}) {
            s_locale = told;
            EXPECT_EQ(format(), expected);
        }
    });
}

TEST(NumberFormat, GroupsSeparatorsAndSignsAreTheSystemsLocales) {
    // There is no order 5: what Windows does not format comes back plain.
    const std::pair<Locale, Texts> rows[] = {
        {{L".", L",", L"3;0", 0}, {L"123,456,789", L"(1,234)", L"0.50"}},
        {{L",", L".", L"3", 2}, {L"123456.789", L"- 1.234", L"0,50"}},
        {{L".", L",", L"", 3}, {L"123456789", L"1234-", L"0.50"}},
        {{L".", L",", L"3;0", 4, 0}, {L"123,456,789", L"1,234 -", L".50"}},
        {{L".", L",", L"3;0", 5}, {L"123,456,789", L"-1234", L"0.50"}},
        {{L"###", L"\u202F", L"3;2;0", 1, 0}, {L"12\u202F34\u202F56\u202F789", L"-1\u202F234", L"###50"}}};
    for (const auto& [locale, texts] : rows) {
        ExpectUnder(
            locale, [] { return Texts{FormatUnsigned(123456789), FormatSigned(-1234), FormatDecimal(0.5)}; }, texts);
    }
}

TEST(NumberFormat, ASizeOfExactlyAUnitStaysInTheSmallerOne) {
    CString plain;
    plain.Format(L"%.2f", 1e200);  // longer than Windows formats
    const auto format = [] {
        Texts texts{FormatUnsigned(MAXULONGLONG), FormatSigned(MINLONGLONG), FormatDecimal(1e200),
                    FormatByteSize(nullptr)};
        for (const LONGLONG bytes : {0LL, 1024LL, 1025LL, 1LL << 20, (1LL << 20) + 1, 1LL << 30, MAXLONGLONG, -1LL}) {
            LARGE_INTEGER size;
            size.QuadPart = bytes;
            texts.push_back(FormatByteSize(&size));
        }
        return texts;
    };
    ExpectUnder({L".", L",", L"3;0"}, format,
                {L"18,446,744,073,709,551,615", L"-9,223,372,036,854,775,808", plain, L"0 Bytes", L"0.00 Bytes",
                 L"1,024.00 Bytes", L"1.00 KB", L"1,024.00 KB", L"1.00 MB", L"1,024.00 MB", L"8,589,934,592.00 GB",
                 L"-1.00 Bytes"});
}

}  // namespace
