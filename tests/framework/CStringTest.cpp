#include <afx.h>

#include <algorithm>
#include <climits>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

constexpr wchar_t kNoText[] = L"";
constexpr const wchar_t* kNull = nullptr;

// All of it, since == of two strings ends at the first zero.
std::wstring Whole(const CString& text) {
    return {text.GetString(), static_cast<size_t>(text.GetLength())};
}

}  // namespace

TEST(CString, AssigningAPieceOfItselfKeepsThePiece) {
    CString text = L"a text that is long enough to live on the heap";
    text = text.GetString() + 2;
    EXPECT_EQ(text, L"text that is long enough to live on the heap");
    text += text.GetString() + 40;
    EXPECT_EQ(text, L"text that is long enough to live on the heapheap");
    text.Append(text.GetString(), 4);
    EXPECT_EQ(text.Right(8), L"heaptext");
    text += text;
    EXPECT_EQ(text.GetLength(), 2 * 52);
}

TEST(CString, LeftRightAndMidClamp) {
    const CString text = L"abcde";
    const struct {
        int count;
        const wchar_t* left;
        const wchar_t* right;
    } ends[] = {{INT_MIN, L"", L""},
                {-1, L"", L""},
                {0, L"", L""},
                {2, L"ab", L"de"},
                {5, L"abcde", L"abcde"},
                {6, L"abcde", L"abcde"},
                {INT_MAX, L"abcde", L"abcde"}};
    for (const auto& row : ends) {
        EXPECT_EQ(Whole(text.Left(row.count)), row.left) << row.count;
        EXPECT_EQ(Whole(text.Right(row.count)), row.right) << row.count;
    }
    const struct {
        int first;
        int count;
        const wchar_t* expected;
    } middles[] = {
        {0, 0, L""},  {1, 3, L"bcd"},        {-2, 2, L"ab"},          {4, 5, L"e"},      {5, 1, L""}, {6, 1, L""},
        {1, -1, L""}, {1, INT_MAX, L"bcde"}, {INT_MAX, INT_MAX, L""}, {INT_MIN, 1, L"a"}};
    for (const auto& row : middles) EXPECT_EQ(Whole(text.Mid(row.first, row.count)), row.expected) << row.first;
    EXPECT_EQ(Whole(text.Mid(3)), L"de");
    EXPECT_EQ(Whole(text.Mid(5)), L"");
    EXPECT_EQ(Whole(text.Mid(-1)), L"abcde");
}

TEST(CString, Finds) {
    const CString text = L"HKCU\\A\\B";
    const struct {
        const wchar_t* what;
        int start;
        int expected;
    } rows[] = {{L"\\", 0, 4},  {L"\\", 5, 6},       {L"\\", 7, -1}, {L"\\B", 0, 6},
                {L"b", 0, -1},  {L"", 3, 3},         {L"", 8, 8},    {L"", 9, -1},
                {L"H", -1, -1}, {L"H", INT_MAX, -1}, {kNull, 0, -1}, {L"HKCU\\A\\BC", 0, -1}};
    for (const auto& row : rows) EXPECT_EQ(text.Find(row.what, row.start), row.expected) << row.start;
    EXPECT_EQ(text.Find(L'\\'), 4);
    EXPECT_EQ(text.Find(L'\\', 4), 4);
    EXPECT_EQ(text.Find(L'B', 7), 7);
    EXPECT_EQ(text.Find(L'B', 8), -1);
    EXPECT_EQ(text.Find(L'H', -1), -1);
    EXPECT_EQ(text.ReverseFind(L'\\'), 6);
    EXPECT_EQ(text.ReverseFind(L'x'), -1);
    EXPECT_EQ(CString().Find(L""), 0);
    EXPECT_EQ(CString().Find(L'a'), -1);
    EXPECT_EQ(CString().ReverseFind(L'a'), -1);
}

TEST(CString, Compares) {
    EXPECT_LT(CString(L"A").Compare(L"a"), 0);
    EXPECT_GT(CString(L"ab").Compare(L"a"), 0);
    EXPECT_EQ(CString().Compare(kNull), 0);
    // Code units above 0x7FFF are still above.
    EXPECT_GT(CString(L"\xFFFD").Compare(L"z"), 0);

    EXPECT_EQ(CString(L"HKey").CompareNoCase(L"hKEY"), 0);
    EXPECT_EQ(CString(L"\x00C4\x0416\x03A9").CompareNoCase(L"\x00E4\x0436\x03C9"), 0);
    EXPECT_NE(CString(L"\x00DF").CompareNoCase(L"ss"), 0);  // in no language: sharp s is not ss
    EXPECT_NE(CString(L"i").CompareNoCase(L"\x0130"), 0);   // nor is the dotted capital an i
    EXPECT_LT(CString(L"a").CompareNoCase(L"B"), 0);
    EXPECT_GT(CString(L"ab").CompareNoCase(L"A"), 0);
    EXPECT_GT(CString(L"a").CompareNoCase(kNull), 0);
    // The table is that for capitals: what stands between capitals and small letters is above both, the capital sharp s
    // (1E9E) is not the small one (DF), and Cherokee, whose small letters came later, is one.
    EXPECT_GT(CString(L"_").CompareNoCase(L"a"), 0);
    EXPECT_GT(CString(L"^").CompareNoCase(L"Z"), 0);
    EXPECT_NE(CString(L"\x1E9E").CompareNoCase(L"\x00DF"), 0);
}

// By the texts and not by their addresses, whichever side is the object.
TEST(CString, HasOneOrderInAllComparisons) {
    const wchar_t* const ordered[] = {L"", L"A", L"Aa", L"B", L"_", L"a", L"ab", L"b", L"\xFFFD"};
    for (const auto& left : ordered) {
        for (const auto& right : ordered) {
            const CString a = left;
            const CString b = right;
            const auto order = &left <=> &right;
            for (const bool equal : {a == b, a == right, left == b}) EXPECT_EQ(equal, order == 0) << left << right;
            for (const bool unequal : {a != b, a != right, left != b}) EXPECT_EQ(unequal, order != 0) << left << right;
            for (const bool below : {a < b, a < right, left < b}) EXPECT_EQ(below, order < 0) << left << right;
            for (const bool above : {a > b, a > right, left > b}) EXPECT_EQ(above, order > 0) << left << right;
            for (const bool notAbove : {a <= b, a <= right, left <= b}) EXPECT_EQ(notAbove, order <= 0) << left;
            for (const bool notBelow : {a >= b, a >= right, left >= b}) EXPECT_EQ(notBelow, order >= 0) << left;
        }
    }
    std::vector<CString> texts(std::rbegin(ordered), std::rend(ordered));
    std::sort(texts.begin(), texts.end());
    EXPECT_TRUE(std::equal(texts.begin(), texts.end(), std::begin(ordered)));
    EXPECT_EQ((std::set<CString>{L"b", L"a", CString(L"b"), L"a"}).size(), 2u);
    EXPECT_EQ((std::map<CString, int>{{L"key", 7}}).at(CString(L"key")), 7);
}

TEST(CString, Trims) {
    EXPECT_EQ(CString(L" \t\r\n a b \v\f").Trim(), L"a b");
    EXPECT_EQ(CString(L"  a ").TrimLeft(), L"a ");
    EXPECT_EQ(CString(L"  a ").TrimRight(), L"  a");
    EXPECT_EQ(CString(L"   ").Trim(), L"");
    EXPECT_EQ(CString(L"   ").TrimRight(), L"");
    EXPECT_EQ(CString(L"\\\\a\\b\\").TrimRight(L'\\'), L"\\\\a\\b");
    EXPECT_EQ(CString(L"\\\\a\\b\\").TrimLeft(L'\\'), L"a\\b\\");
    EXPECT_EQ(CString(L"\\\\").TrimRight(L'\\'), L"");
    EXPECT_EQ(CString(L"xyaxy").Trim(L"yx"), L"a");
    EXPECT_EQ(CString(L" a ").Trim(L""), L" a ");
    EXPECT_EQ(CString(L" a ").TrimLeft(kNull), L" a ");
    EXPECT_EQ(CString(L" a ").Trim(L'a'), L" a ");
}

TEST(CString, FormatsAsTheWindowsRuntimeDoes) {
    CString text;
    text.Format(L"%s|%S|%d|%5.2f|%c|%%|%04x|%I64d", L"wide", "narrow", -3, 2.5, L'c', 0xABU, 1LL << 40);
    EXPECT_EQ(text, L"wide|narrow|-3| 2.50|c|%|00ab|1099511627776");
    const CString key(L'k', 32000);
    text.Format(L"<%s>", key.GetString());
    EXPECT_EQ(text.GetLength(), 32002);
    EXPECT_EQ(text.Right(2), L"k>");
    text.Format(L"%s", L"");
    EXPECT_TRUE(text.IsEmpty());
    // The old text may be an argument.
    text = L"once";
    text.Format(L"%s %s", text.GetString(), L"more");
    EXPECT_EQ(text, L"once more");
    EXPECT_THROW(text.Format(kNull), CInvalidArgException*);
    EXPECT_EQ(text, L"once more");
}

TEST(CString, ChangesInPlace) {
    CString text = L"a-b-c";
    EXPECT_EQ(text.Replace(L"-", L"--"), 2);
    EXPECT_EQ(Whole(text), L"a--b--c");
    EXPECT_EQ(text.Replace(L"---", L"x"), 0);
    EXPECT_EQ(text.Replace(L"--", kNull), 2);
    EXPECT_EQ(Whole(text), L"abc");
    EXPECT_EQ(text.Replace(L"", L"x"), 0);
    EXPECT_EQ(text.Replace(kNull, L"x"), 0);
    text = L"aaaa";
    EXPECT_EQ(text.Replace(L"aa", L"a"), 2);
    EXPECT_EQ(Whole(text), L"aa");
    EXPECT_EQ(text.Remove(L'a'), 2);
    EXPECT_TRUE(text.IsEmpty());

    EXPECT_EQ(CString(L"a\x00E4Z").MakeUpper(), L"A\x00C4Z");
    EXPECT_EQ(CString(L"A\x00C4z").MakeLower(), L"a\x00E4z");
    EXPECT_EQ(CString().MakeUpper(), L"");
}

TEST(CString, LendsItsBuffer) {
    CString text = L"abc";
    wchar_t* buffer = text.GetBuffer(10);
    EXPECT_STREQ(buffer, L"abc");
    for (int i = 0; i < 10; ++i) buffer[i] = L'z';
    buffer[4] = L'\0';
    text.ReleaseBuffer();
    EXPECT_EQ(text, L"zzzz");

    text.GetBuffer(2)[0] = L'y';  // no smaller than the text
    text.ReleaseBuffer();
    EXPECT_EQ(text, L"yzzz");

    buffer = text.GetBufferSetLength(6);
    buffer[4] = L'5';
    buffer[5] = L'6';
    text.ReleaseBuffer(5);
    EXPECT_EQ(text, L"yzzz5");
    EXPECT_THROW(text.ReleaseBuffer(6), CInvalidArgException*);
    EXPECT_THROW(text.GetBuffer(-1), CInvalidArgException*);
    EXPECT_THROW(text.GetBufferSetLength(-1), CInvalidArgException*);

    // A copy made before is not written through.
    const CString copy = text;
    text.GetBuffer()[0] = L'!';
    text.ReleaseBuffer();
    EXPECT_EQ(copy, L"yzzz5");
    EXPECT_EQ(text, L"!zzz5");
}
