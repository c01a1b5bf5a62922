#include "helpers/NumberFormat.h"

#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "support/FreshProcess.h"
#include "support/ImportPatch.h"

namespace {

constexpr LCID kSystemLocale = 0x0807;

struct Locale {
    std::wstring decimal, thousand, grouping;
    DWORD negativeOrder = 1, leadingZero = 1;
};
Locale s_locale;

int WINAPI AnswerLocaleInfo(LCID locale, LCTYPE item, LPWSTR buffer, int size) {
    EXPECT_EQ(locale, 0x800U);
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

int WINAPI FormatNumber(LCID locale, DWORD flags, LPCWSTR digits, const NUMBERFMTW* format, LPWSTR buffer, int size) {
    EXPECT_EQ(locale, kSystemLocale);
    return GetNumberFormatEx(LOCALE_NAME_USER_DEFAULT, flags, digits, format, buffer, size);
}

using Texts = std::vector<CString>;

// The locale is read once for a process, so each one needs a process of its own, and a later change shows nowhere.
void ExpectUnder(const Locale& locale, const std::function<Texts()>& format, const Texts& expected) {
    EXPECT_IN_FRESH_PROCESS([&] {
        const HMODULE program = GetModuleHandleW(nullptr);
        const ImportPatch<decltype(&GetLocaleInfoW)> info(program, "GetLocaleInfoW", AnswerLocaleInfo);
        const ImportPatch<decltype(&GetNumberFormatW)> number(program, "GetNumberFormatW", FormatNumber);
        const ImportPatch<decltype(&GetSystemDefaultLCID)> system(program, "GetSystemDefaultLCID",
                                                                  [] { return kSystemLocale; });
        for (const Locale& told : {locale, Locale{L"!", L"!", L"9;0"}}) {
            s_locale = told;
            EXPECT_EQ(format(), expected);
        }
    });
}

TEST(NumberFormat, GroupsSeparatorsAndSignsAreTheSystemsLocales) {
    const Texts rows[] = {{L"3;0", L"123,456,789", L"(1,234)"}, {L"3;2;0", L"12,34,56,789", L"-1,234"},
                          {L"3", L"123456,789", L"- 1,234"},    {L"", L"123456789", L"1234-"},
                          {L"3;0", L"123,456,789", L"1,234 -"}, {L"3;0", L"123,456,789", L"-1234"}};
    // There is no order 5: what Windows does not format comes back plain.
    for (DWORD order = 0; order < std::size(rows); ++order) {
        const Texts& row = rows[order];
        ExpectUnder({L".", L",", row[0].GetString(), order},
                    [] {
                        return Texts{FormatUnsigned(123456789), FormatSigned(-1234)};
                    },
                    {row[1], row[2]});
    }
    ExpectUnder({L"###", L"\u202F", L"3;0", 1, 0},
                [] {
                    return Texts{FormatDecimal(-1234567.891), FormatUnsigned(std::numeric_limits<ULONGLONG>::max()),
                                 FormatSigned(std::numeric_limits<LONGLONG>::min()), FormatDecimal(0.5)};
                },
                {L"-1\u202F234\u202F567###89", L"18\u202F446\u202F744\u202F073\u202F709\u202F551\u202F615",
                 L"-9\u202F223\u202F372\u202F036\u202F854\u202F775\u202F808", L"###50"});
}

TEST(NumberFormat, ASizeOfExactlyAUnitStaysInTheSmallerOne) {
    CString plain;
    plain.Format(L"%.2f", 1e200);  // longer than Windows formats
    const auto sizes = [] {
        Texts texts{FormatDecimal(1e200), FormatByteSize(nullptr)};
        for (const LONGLONG bytes :
             {0LL, 1024LL, 1025LL, 1048576LL, 1048577LL, 1073741824LL, 5368709120LL, MAXLONGLONG, -1LL}) {
            LARGE_INTEGER size;
            size.QuadPart = bytes;
            texts.push_back(FormatByteSize(&size));
        }
        return texts;
    };
    ExpectUnder({L".", L",", L"3;0"}, sizes,
                {plain, L"0 Bytes", L"0.00 Bytes", L"1,024.00 Bytes", L"1.00 KB", L"1,024.00 KB", L"1.00 MB",
                 L"1,024.00 MB", L"5.00 GB", L"8,589,934,592.00 GB", L"-1.00 Bytes"});
}

}  // namespace
