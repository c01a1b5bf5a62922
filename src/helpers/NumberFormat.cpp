#include "helpers/NumberFormat.h"

#include <iterator>

#include "helpers/NumberText.h"

namespace {

CString LocaleText(LCTYPE item) {
    CString text;
    const int size = GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, item, nullptr, 0);
    if (size <= 0) return text;
    const int written = GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, item, text.GetBufferSetLength(size), size);
    text.ReleaseBuffer(written > 0 ? -1 : 0);
    return text;
}

UINT LocaleNumber(LCTYPE item) {
    DWORD number = 0;
    const int written = GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, item | LOCALE_RETURN_NUMBER,
                                       reinterpret_cast<LPWSTR>(&number), sizeof(number) / sizeof(WCHAR));
    return written > 0 ? number : 0;
}

struct Separators {
    WCHAR decimal[8] = {};
    WCHAR thousand[8] = {};

    Separators() {
        GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_SDECIMAL, decimal, static_cast<int>(std::size(decimal)));
        GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_STHOUSAND, thousand, static_cast<int>(std::size(thousand)));
    }
};

NUMBERFMTW ReadFormat(UINT fractionDigits) {
    static Separators separators;
    NUMBERFMTW format{};
    format.NumDigits = fractionDigits;
    format.LeadingZero = LocaleNumber(LOCALE_ILZERO);
    format.NegativeOrder = LocaleNumber(LOCALE_INEGNUMBER);
    format.Grouping = GroupingNumber(LocaleText(LOCALE_SGROUPING).GetString());
    format.lpDecimalSep = separators.decimal;
    format.lpThousandSep = separators.thousand;
    return format;
}

CString FormatNumber(const CString& digits, const NUMBERFMTW& format) {
    WCHAR buffer[64];
    const int written =
        GetNumberFormatW(GetSystemDefaultLCID(), 0, digits, &format, buffer, static_cast<int>(std::size(buffer)));
    return written == 0 ? digits : CString(buffer);
}

const NUMBERFMTW& WholeFormat() {
    static const NUMBERFMTW format = ReadFormat(0);
    return format;
}

const NUMBERFMTW& FractionFormat() {
    static const NUMBERFMTW format = ReadFormat(2);
    return format;
}

LPCWSTR SizeFormat(ByteUnit unit) {
    switch (unit) {
        case ByteUnit::Gigabytes:
            return L"%s GB";
        case ByteUnit::Megabytes:
            return L"%s MB";
        case ByteUnit::Kilobytes:
            return L"%s KB";
        case ByteUnit::Bytes:
            break;
    }
    return L"%s Bytes";
}

}  // namespace

CString FormatUnsigned(ULONGLONG number) {
    CString digits;
    digits.Format(L"%llu", number);
    return FormatNumber(digits, WholeFormat());
}

CString FormatSigned(LONGLONG number) {
    CString digits;
    digits.Format(L"%I64d", number);
    return FormatNumber(digits, WholeFormat());
}

CString FormatDecimal(double number) {
    CString digits;
    digits.Format(L"%.2f", number);
    return FormatNumber(digits, FractionFormat());
}

CString FormatByteSize(const LARGE_INTEGER* size) {
    if (!size) return L"0 Bytes";
    const ScaledSize scaled = ScaleByteSize(static_cast<double>(size->QuadPart));
    CString text;
    text.Format(SizeFormat(scaled.unit), FormatDecimal(scaled.amount).GetString());
    return text;
}
