#include "helpers/NumberFormat.h"

#include <cstring>
#include <cwchar>
#include <gtest/gtest.h>
#include <limits>

#include "support/FreshProcess.h"
#include "support/ImportPatch.h"
#include "support/Narrow.h"

namespace {

struct Locale {
    LPCWSTR decimal = L".";
    LPCWSTR thousand = L",";
    LPCWSTR grouping = L"3;0";
    DWORD negativeOrder = 1;
    DWORD leadingZero = 1;
};

Locale s_locale;
int s_asked = 0;

int AnswerText(LPCWSTR text, LPWSTR buffer, int size) {
    const int length = static_cast<int>(std::wcslen(text)) + 1;
    if (size == 0) return length;
    if (size < length) return 0;
    std::wmemcpy(buffer, text, static_cast<size_t>(length));
    return length;
}

int AnswerNumber(DWORD number, LPWSTR buffer) {
    std::memcpy(buffer, &number, sizeof(number));
    return sizeof(number) / sizeof(WCHAR);
}

int WINAPI AnswerLocaleInfo(LCID locale, LCTYPE item, LPWSTR buffer, int size) {
    EXPECT_EQ(locale, 0x800u);
    ++s_asked;
    switch (item) {
        case LOCALE_SDECIMAL:
            return AnswerText(s_locale.decimal, buffer, size);
        case LOCALE_STHOUSAND:
            return AnswerText(s_locale.thousand, buffer, size);
        case LOCALE_SGROUPING:
            return AnswerText(s_locale.grouping, buffer, size);
        case LOCALE_INEGNUMBER | LOCALE_RETURN_NUMBER:
            return AnswerNumber(s_locale.negativeOrder, buffer);
        case LOCALE_ILZERO | LOCALE_RETURN_NUMBER:
            return AnswerNumber(s_locale.leadingZero, buffer);
        default:
            ADD_FAILURE() << "not asked by anybody: " << item;
            return 0;
    }
}

void ExpectText(const CString& text, LPCWSTR expected) {
    EXPECT_EQ(Narrow(text.GetString()), Narrow(expected));
}

// The locale is read once for a process, so each one needs a process of its own.
#define EXPECT_UNDER_LOCALE(locale, ...)                                                                \
    EXPECT_IN_FRESH_PROCESS([&] {                                                                       \
        s_locale = locale;                                                                              \
        const ImportPatch<decltype(&GetLocaleInfoW)> patch(GetModuleHandleW(nullptr), "GetLocaleInfoW", \
                                                           AnswerLocaleInfo);                           \
        __VA_ARGS__                                                                                     \
    })

}  // namespace

TEST(NumberFormat, GroupsAsTheLocaleSays) {
    struct Case {
        LPCWSTR grouping, expected;
    };
    const Case cases[] = {
        {L"3;0", L"123,456,789"}, {L"3;2;0", L"12,34,56,789"}, {L"3", L"123456,789"}, {L"", L"123456789"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(Narrow(c.grouping));
        EXPECT_UNDER_LOCALE(Locale{.grouping = c.grouping}, ExpectText(FormatUnsigned(123456789), c.expected););
    }
}

TEST(NumberFormat, WritesTheLocalesSeparatorsAndSigns) {
    const Locale german{.decimal = L",", .thousand = L"."};
    EXPECT_UNDER_LOCALE(german, {
        ExpectText(FormatDecimal(-1234567.891), L"-1.234.567,89");
        ExpectText(FormatUnsigned(std::numeric_limits<ULONGLONG>::max()), L"18.446.744.073.709.551.615");
        ExpectText(FormatSigned(std::numeric_limits<LONGLONG>::min()), L"-9.223.372.036.854.775.808");
        ExpectText(FormatSigned(999), L"999");
    });
    const LPCWSTR expected[] = {L"(1,234)", L"-1,234", L"- 1,234", L"1,234-", L"1,234 -"};
    for (DWORD order = 0; order < std::size(expected); ++order) {
        EXPECT_UNDER_LOCALE(Locale{.negativeOrder = order}, ExpectText(FormatSigned(-1234), expected[order]););
    }
    EXPECT_UNDER_LOCALE(Locale{.leadingZero = 0}, ExpectText(FormatDecimal(0.5), L".50"););
    const Locale wide{.decimal = L"###", .thousand = L"\x202F"};
    EXPECT_UNDER_LOCALE(wide, ExpectText(FormatDecimal(1234),
                                         L"1\x202F"
                                         L"234###00"););
}

TEST(NumberFormat, WhatWindowsDoesNotFormatComesBackPlain) {
    EXPECT_UNDER_LOCALE(Locale{.negativeOrder = 9}, ExpectText(FormatSigned(-1234), L"-1234"););
    EXPECT_UNDER_LOCALE(Locale{}, {
        CString digits;
        digits.Format(L"%.2f", 1e200);
        ASSERT_GT(digits.GetLength(), 64);
        ExpectText(FormatDecimal(1e200), digits);
        const CString infinite = FormatDecimal(std::numeric_limits<double>::infinity());
        EXPECT_FALSE(infinite.IsEmpty());
    });
}

TEST(NumberFormat, ReadsTheLocaleOnce) {
    EXPECT_UNDER_LOCALE(Locale{}, {
        FormatUnsigned(1);
        FormatDecimal(1);
        const int asked = s_asked;
        s_locale.thousand = L"'";
        ExpectText(FormatUnsigned(1234), L"1,234");
        ExpectText(FormatDecimal(1234), L"1,234.00");
        EXPECT_EQ(s_asked, asked);
    });
}

TEST(FormatByteSize, AnExactUnitStaysInTheSmallerOne) {
    EXPECT_UNDER_LOCALE(Locale{}, {
        const auto size = [](LONGLONG bytes) {
            LARGE_INTEGER record{};
            record.QuadPart = bytes;
            return FormatByteSize(&record);
        };
        ExpectText(FormatByteSize(nullptr), L"0 Bytes");
        ExpectText(size(0), L"0.00 Bytes");
        ExpectText(size(5), L"5.00 Bytes");
        ExpectText(size(1024), L"1,024.00 Bytes");
        ExpectText(size(1025), L"1.00 KB");
        ExpectText(size(1048576), L"1,024.00 KB");
        ExpectText(size(1048577), L"1.00 MB");
        ExpectText(size(1073741824), L"1,024.00 MB");
        ExpectText(size(5368709120), L"5.00 GB");
        ExpectText(size(std::numeric_limits<LONGLONG>::max()), L"8,589,934,592.00 GB");
        ExpectText(size(-1), L"-1.00 Bytes");
    });
}
