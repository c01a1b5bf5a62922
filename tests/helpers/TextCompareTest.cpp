#include "helpers/TextCompare.h"

#include <gtest/gtest.h>

#include "support/ImportPatch.h"
#include "support/Narrow.h"

namespace {

// What CompareStringW was asked for last.
struct Question {
    LCID locale = 0;
    DWORD flags = 0;
    int firstLength = 0;
    int secondLength = 0;
};

Question s_question;
decltype(&CompareStringW) s_compare = nullptr;

int WINAPI NoteAndCompare(LCID locale, DWORD flags, LPCWCH first, int firstLength, LPCWCH second, int secondLength) {
    s_question = {locale, flags, firstLength, secondLength};
    return s_compare(locale, flags, first, firstLength, second, secondLength);
}

class TextCompare : public testing::Test {
protected:
    TextCompare() : m_patch(GetModuleHandleW(nullptr), "CompareStringW", NoteAndCompare) {
        s_compare = m_patch.Original();
        s_question = {};
    }

    static void ExpectAsked(LCID locale, DWORD flags, int firstLength, int secondLength) {
        EXPECT_EQ(s_question.locale, locale);
        EXPECT_EQ(s_question.flags, flags);
        EXPECT_EQ(s_question.firstLength, firstLength);
        EXPECT_EQ(s_question.secondLength, secondLength);
    }

private:
    ImportPatch<decltype(&CompareStringW)> m_patch;
};

}  // namespace

TEST_F(TextCompare, AnswersTheSystemsResultForTheAskedLocale) {
    EXPECT_EQ(CompareInvariantNoCase(L"Alpha", L"aLPHA"), CSTR_EQUAL);
    ExpectAsked(0x7F, 1, 5, 5);
    EXPECT_EQ(CompareInvariantNoCase(CString(L"a"), CString(L"bc")), CSTR_LESS_THAN);
    ExpectAsked(0x7F, 1, 1, 2);
    EXPECT_EQ(CompareLocaleNoCase(0x407, L"\x00DC", L"\x00FC"), CSTR_EQUAL);
    ExpectAsked(0x407, 1, 1, 1);
    EXPECT_EQ(CompareLocaleNoCase(0x407, CString(L"b"), CString(L"A")), CSTR_GREATER_THAN);
    ExpectAsked(0x407, 1, 1, 1);
    EXPECT_EQ(CompareInvariantNoCase(L"", L""), CSTR_EQUAL);
    EXPECT_EQ(CompareInvariantNoCase(static_cast<LPCWSTR>(nullptr), L"x"), 0);
}

TEST_F(TextCompare, StartsAndEnds) {
    EXPECT_TRUE(StartsWith(L"Software", L"Soft", false));
    EXPECT_FALSE(StartsWith(L"Software", L"soft", false));
    EXPECT_EQ(s_question.locale, 0u) << "with case, no language is asked";
    EXPECT_TRUE(StartsWith(L"Software", L"sOFT", true));
    ExpectAsked(GetUserDefaultLCID(), 1, 4, 4);
    EXPECT_FALSE(StartsWith(L"Soft", L"Software", true));
    EXPECT_TRUE(EndsWithCrLf(L"line\r\n"));
    ExpectAsked(GetUserDefaultLCID(), 1, 2, 2);
    for (const LPCWSTR text : {L"", L"\n", L"line\n\r", L"\r\nline"}) EXPECT_FALSE(EndsWithCrLf(text));
}

TEST_F(TextCompare, FindsFromTheStartOn) {
    struct Case {
        LPCWSTR text;
        LPCWSTR needle;
        int start;
        bool ignoreCase;
        int expected;
    };
    const Case cases[] = {
        {L"banana", L"an", 0, false, 1},
        {L"banana", L"an", 2, false, 3},
        {L"banana", L"an", 4, false, -1},
        {L"banana", L"AN", 0, false, -1},
        {L"banana", L"AN", 0, true, 1},
        {L"banana", L"banana", 0, false, 0},
        {L"banana", L"a", 5, false, 5},
        {L"banana", L"a", 6, false, -1},
        {L"banana", L"bananas", 0, false, -1},
        {L"banana", L"", 0, false, 0},
        {L"banana", L"", 6, false, 0},
        {L"banana", L"", 7, false, -1},
        {L"", L"", 0, false, 0},
        {L"", L"a", 0, true, -1},
        {L"banana", L"an", -1, false, -1},
        {L"banana", L"an", 2147483647, false, -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(Narrow(c.text) + " / " + Narrow(c.needle) + " from " + std::to_string(c.start));
        EXPECT_EQ(FindText(c.text, c.needle, c.start, c.ignoreCase), c.expected);
    }
    FindText(L"ab", L"b", 0, false);
    ExpectAsked(0x400, 0, 1, 1);
    FindText(L"ab", L"b", 0, true);
    ExpectAsked(0x400, 1, 1, 1);
}

TEST_F(TextCompare, ReplacesWithoutScanningWhatWasPutIn) {
    struct Case {
        LPCWSTR text;
        LPCWSTR oldText;
        LPCWSTR newText;
        int start;
        bool ignoreCase;
        LPCWSTR result;
        int count;
    };
    const Case cases[] = {
        {L"aaa", L"a", L"aa", 0, false, L"aaaaaa", 3}, {L"aaa", L"aa", L"b", 0, false, L"ba", 1},
        {L"aaa", L"a", L"", 0, false, L"", 3},         {L"abc", L"", L"x", 0, false, L"abc", 0},
        {L"xAxa", L"a", L"-", 0, true, L"x-x-", 2},    {L"xAxa", L"a", L"-", 0, false, L"xAx-", 1},
        {L"aaa", L"a", L"b", 2, false, L"aab", 1},     {L"aaa", L"a", L"b", 3, false, L"aaa", 0},
        {L"", L"a", L"b", 0, false, L"", 0},           {L"100% %s", L"%s", L"%d%n", 0, false, L"100% %d%n", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(Narrow(c.text) + " / " + Narrow(c.oldText));
        CString text = c.text;
        EXPECT_EQ(ReplaceText(text, c.oldText, c.newText, c.start, c.ignoreCase), c.count);
        EXPECT_EQ(text, c.result);
    }
}
