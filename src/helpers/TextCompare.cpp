#include "helpers/TextCompare.h"

#include <cwchar>

namespace {

int Length(LPCWSTR text) {
    return text ? static_cast<int>(std::wcslen(text)) : 0;
}

bool EqualsAt(LPCWSTR text, const CString& needle, DWORD flags) {
    const int length = needle.GetLength();
    return CompareStringW(LOCALE_USER_DEFAULT, flags, text, length, needle, length) == CSTR_EQUAL;
}

bool EqualByUser(LPCWSTR a, LPCWSTR b, int length) {
    return CompareStringW(GetUserDefaultLCID(), NORM_IGNORECASE, a, length, b, length) == CSTR_EQUAL;
}

}  // namespace

int CompareInvariantNoCase(const CString& a, const CString& b) {
    return CompareLocaleNoCase(LOCALE_INVARIANT, a, b);
}

int CompareInvariantNoCase(LPCWSTR a, LPCWSTR b) {
    return CompareLocaleNoCase(LOCALE_INVARIANT, a, b);
}

int CompareLocaleNoCase(LCID locale, const CString& a, const CString& b) {
    return CompareStringW(locale, NORM_IGNORECASE, a, a.GetLength(), b, b.GetLength());
}

int CompareLocaleNoCase(LCID locale, LPCWSTR a, LPCWSTR b) {
    return CompareStringW(locale, NORM_IGNORECASE, a, Length(a), b, Length(b));
}

bool StartsWith(const CString& text, const CString& prefix, bool ignoreCase) {
    const int length = prefix.GetLength();
    if (length > text.GetLength()) return false;
    return ignoreCase ? EqualByUser(text, prefix, length) : text.Left(length) == prefix;
}

bool EndsWithCrLf(const CString& text) {
    constexpr int kLength = 2;
    if (text.GetLength() < kLength) return false;
    return EqualByUser(text.GetString() + text.GetLength() - kLength, L"\r\n", kLength);
}

int FindText(const CString& text, const CString& needle, int start, bool ignoreCase) {
    const int last = text.GetLength() - needle.GetLength();
    if (start > last) return -1;
    if (needle.IsEmpty()) return 0;
    if (start < 0) return -1;
    const DWORD flags = ignoreCase ? NORM_IGNORECASE : 0;
    for (int i = start; i <= last; ++i) {
        if (EqualsAt(text.GetString() + i, needle, flags)) return i;
    }
    return -1;
}

// The result is built beside the text: a hit never touches what was put in, so searching the old text from behind the
// hit finds the same places as rebuilding the whole text each time, in linear instead of quadratic time.
int ReplaceText(CString& text, const CString& oldText, const CString& newText, int start, bool ignoreCase) {
    if (oldText.IsEmpty()) return 0;
    CString result;
    int count = 0;
    int copied = 0;
    for (int hit = FindText(text, oldText, start, ignoreCase); hit >= 0;
         hit = FindText(text, oldText, copied, ignoreCase)) {
        result.Append(text.GetString() + copied, hit - copied);
        result += newText;
        copied = hit + oldText.GetLength();
        ++count;
    }
    if (count == 0) return 0;
    result.Append(text.GetString() + copied, text.GetLength() - copied);
    text = result;
    return count;
}
