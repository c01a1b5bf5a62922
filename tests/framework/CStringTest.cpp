#include <afx.h>

#include <algorithm>
#include <array>
#include <climits>
#include <gtest/gtest.h>
#include <vector>

namespace {

constexpr const wchar_t* kNull = nullptr;

// Each whole, since == of two strings ends at the first zero, and with a bar behind it.
std::wstring All(std::initializer_list<CString> texts) {
    std::wstring all;
    for (const CString& text : texts) all.append(text.GetString(), static_cast<size_t>(text.GetLength())) += L'|';
    return all;
}

using Ints = std::vector<int>;

}  // namespace

TEST(CString, GivesPiecesOfItselfAndFindsThem) {
    const CString t = L"abcde";
    EXPECT_EQ(All({t.Left(-1), t.Left(2), t.Left(INT_MAX), t.Right(INT_MIN), t.Right(2), t.Right(6)}),
              L"|ab|abcde||de|abcde|");
    EXPECT_EQ(All({t.Mid(1, 3), t.Mid(-2, 2), t.Mid(4, 5), t.Mid(6, 1), t.Mid(1, -1), t.Mid(1, INT_MAX), t.Mid(5)}),
              L"bcd|ab|e|||bcde||");
    const auto c = [](const wchar_t* text) { return CString(text); };
    EXPECT_EQ(All({c(L" \t\r\n a b \v\f").Trim(), c(L"  a ").TrimLeft(), c(L"  a ").TrimRight(), c(L"   ").Trim(),
                   c(L" a ").Trim(L""), c(L"\\\\a\\").TrimRight(L'\\'), c(L"\\\\a").TrimLeft(L'\\'),
                   c(L"xyaxy").Trim(L"yx")}),
              L"a b|a |  a|| a |\\\\a|a|a|");
    EXPECT_EQ(All({CString(L'x', 3), CString(L'x', -1), CString(L"abc", 2), CString("\xE4\x80"), c(kNull),
                   c(L"a\x00E4Z").MakeUpper(), c(L"A\x00C4z").MakeLower(), L'<' + t + L"=" + t + kNull + L'>'}),
              L"xxx||ab|\x00E4\x20AC||A\x00C4Z|a\x00E4z|<abcde=abcde>|");
    const CString path = L"HKCU\\A\\B";
    EXPECT_EQ((Ints{path.Find(L"\\"), path.Find(L"\\", 5), path.Find(L"\\", 7), path.Find(L"b"), path.Find(L"", 8),
                    path.Find(L"", 9), path.Find(L"H", -1), path.Find(kNull), path.Find(L"A\\BC"), path.Find(L'\\', 4),
                    path.Find(L'B', 8), path.ReverseFind(L'\\'), path.ReverseFind(L'x'), path[4], path.GetAt(8)}),
              (Ints{4, 6, -1, -1, 8, -1, -1, -1, -1, 4, -1, 6, -1, L'\\', 0}));
    for (const int outside : {-1, 9}) EXPECT_THROW(static_cast<void>(path[outside]), CInvalidArgException*);
}

TEST(CString, HasOneOrderWhicheverSideIsTheObjectAndAnotherByTheTableForCapitals) {
    const wchar_t* const ordered[] = {L"", L"A", L"Aa", L"B", L"_", L"a", L"ab", L"b", L"\xFFFD"};
    const auto six = [](const auto& a, const auto& b) { return std::array{a == b, a != b, a<b, a> b, a <= b, a >= b}; };
    for (const auto& left : ordered) {
        for (const auto& right : ordered) {
            const auto expected = six(&left, &right);
            EXPECT_EQ(six(CString(left), CString(right)), expected) << &left - ordered << ", " << &right - ordered;
            EXPECT_EQ(six(CString(left), right), expected) << &left - ordered << ", " << &right - ordered;
            EXPECT_EQ(six(left, CString(right)), expected) << &left - ordered << ", " << &right - ordered;
        }
    }
    const auto noCase = [](const wchar_t* left, const wchar_t* right) { return CString(left).CompareNoCase(right); };
    // In no language: a sharp s is not ss, a dotted capital is no i. A capital sharp s is not the small one, and what
    // stands between capitals and small letters is above both.
    EXPECT_EQ((Ints{noCase(L"HKey", L"hKEY"), noCase(L"\x00C4\x0416\x03A9", L"\x00E4\x0436\x03C9"), noCase(L"a", L"B"),
                    noCase(L"ab", L"A"), noCase(L"a", kNull), noCase(L"\x00DF", L"ss"), noCase(L"i", L"\x0130"),
                    noCase(L"\x1E9E", L"\x00DF"), noCase(L"_", L"a"), noCase(L"^", L"Z")}),
              (Ints{0, 0, -1, 1, 1, 1, -1, 1, 1, 1}));
}

TEST(CString, FormatsChangesInPlaceAndLendsItsBuffer) {
    CString text = L"once";
    text.Format(L"%s|%s|%S|%d|%5.2f|%c|%%|%04x|%I64d", text.GetString(), L"w", "n", -3, 2.5, L'c', 0xABU, 1LL << 40);
    EXPECT_EQ(text, L"once|w|n|-3| 2.50|c|%|00ab|1099511627776");
    EXPECT_THROW(text.Format(kNull), CInvalidArgException*);
    text.Format(L"<%s>", CString(L'k', 32000).GetString());
    EXPECT_EQ(text, L'<' + CString(L'k', 32000) + L'>');

    text = L"a-b-c";
    EXPECT_EQ((Ints{text.Replace(L"-", L"--"), text.Replace(L"---", L"x"), text.Replace(kNull, L"x")}),
              (Ints{2, 0, 0}));
    EXPECT_EQ(All({text}), L"a--b--c|");
    EXPECT_EQ((Ints{text.Replace(L"--", kNull), text.Remove(L'b'), text.GetLength()}), (Ints{2, 1, 2}));
    text = L"abc";
    wchar_t* const buffer = text.GetBuffer(10);
    EXPECT_STREQ(buffer, L"abc");
    std::fill_n(buffer, 10, L'z');
    buffer[4] = L'\0';
    text.ReleaseBuffer();
    text.GetBuffer(2)[0] = L'y';  // no smaller than the text
    text.ReleaseBuffer();
    EXPECT_EQ(All({text}), L"yzzz|");
    std::fill_n(text.GetBufferSetLength(6) + 4, 2, L'5');
    text.ReleaseBuffer(5);
    EXPECT_EQ(All({text}), L"yzzz5|");
    EXPECT_THROW(text.ReleaseBuffer(6), CInvalidArgException*);
}
