// The string class: a text with value semantics that stands in for a pointer wherever Windows wants one.
//
//     CString path = L"HKCU\\Software";
//     const int slash = path.ReverseFind(L'\\');           // 4; -1 if there is none
//     CString title;
//     title.Format(L"%s has %d rules", path.GetString(), 3);
//     title.TrimRight(L"s");
//     if (path.Left(slash).CompareNoCase(L"hkcu") == 0) SetWindowTextW(window, title);
//     LPWSTR raw = title.GetBuffer(GetWindowTextLengthW(window));
//     GetWindowTextW(window, raw, title.GetLength() + 1);
//     title.ReleaseBuffer();                                // the length is now up to the first zero
//     std::set<CString> names = {path, title};              // in the order of Compare
//
// Positions and lengths count characters (UTF-16 units in CStringW). A null pointer is an empty text everywhere.
// Positions and counts outside the text are clamped, unless a member says otherwise.
#pragma once

#include <algorithm>
#include <compare>
#include <string>
#include <utility>

#include "framework/Exception.h"
#include "framework/StringTraits.h"

template <typename BaseType, class StringTraits>
class CStringT {
public:
    using XCHAR = BaseType;
    using PXSTR = BaseType*;
    using PCXSTR = const BaseType*;
    using YCHAR = typename StringTraits::OtherChar;
    using PCYSTR = const YCHAR*;

    CStringT() = default;
    CStringT(PCXSTR text) : m_text(View(text)) {}  // NOLINT(google-explicit-constructor)
    // Converts by the process's ANSI code page.
    CStringT(PCYSTR text) { *this = text; }  // NOLINT(google-explicit-constructor)
    explicit CStringT(XCHAR character, int repeat = 1) {
        m_text.assign(static_cast<size_t>(std::max(repeat, 0)), character);
    }
    CStringT(PCXSTR text, int length) {
        if (text != nullptr) m_text.assign(text, static_cast<size_t>(std::max(length, 0)));
    }

    CStringT& operator=(PCXSTR text) {
        m_text = View(text);
        return *this;
    }
    CStringT& operator=(PCYSTR text) {
        m_text.clear();
        if (text != nullptr)
            m_text = StringTraits::Convert(text, static_cast<int>(std::char_traits<YCHAR>::length(text)));
        return *this;
    }
    CStringT& operator=(XCHAR character) {
        m_text.assign(1, character);
        return *this;
    }

    int GetLength() const { return static_cast<int>(m_text.size()); }
    bool IsEmpty() const { return m_text.empty(); }
    void Empty() { m_text.clear(); }
    PCXSTR GetString() const { return m_text.c_str(); }
    operator PCXSTR() const { return m_text.c_str(); }  // NOLINT(google-explicit-constructor)

    // At the length itself the answer is the terminating zero; outside of that, CInvalidArgException.
    XCHAR GetAt(int index) const {
        if (index < 0 || index > GetLength()) AfxThrowInvalidArgException();
        return m_text.c_str()[index];
    }
    XCHAR operator[](int index) const { return GetAt(index); }
    // CInvalidArgException outside the text.
    void SetAt(int index, XCHAR character) {
        if (index < 0 || index >= GetLength()) AfxThrowInvalidArgException();
        m_text[static_cast<size_t>(index)] = character;
    }

    // At least `minLength` writable characters plus a terminator; the text so far stays at their start. Until
    // ReleaseBuffer, GetLength may answer the size of the buffer.
    PXSTR GetBuffer(int minLength = 0) {
        if (minLength < 0) AfxThrowInvalidArgException();
        if (minLength > GetLength()) m_text.resize(static_cast<size_t>(minLength));
        return m_text.data();
    }
    PXSTR GetBufferSetLength(int length) {
        if (length < 0) AfxThrowInvalidArgException();
        m_text.resize(static_cast<size_t>(length));
        return m_text.data();
    }
    // -1: the text ends at its first zero. CInvalidArgException for a length beyond the buffer.
    void ReleaseBuffer(int newLength = -1) {
        if (newLength > GetLength()) AfxThrowInvalidArgException();
        m_text.resize(newLength < 0 ? std::char_traits<XCHAR>::length(m_text.c_str()) : static_cast<size_t>(newLength));
    }

    void Append(PCXSTR text, int length) { m_text += CStringT(text, length).m_text; }
    void AppendChar(XCHAR character) { m_text += character; }
    CStringT& operator+=(const CStringT& text) {
        m_text += text.m_text;
        return *this;
    }
    CStringT& operator+=(PCXSTR text) {
        m_text += View(text);
        return *this;
    }
    CStringT& operator+=(XCHAR character) {
        m_text += character;
        return *this;
    }

    // Below 0, 0 or above 0. Compare goes by code units, and so do the six operators. CompareNoCase folds each code
    // unit by the system's upper-case table first, in no language: an underscore is above all letters, and a sharp s is
    // not two of them.
    int Compare(PCXSTR other) const { return StringTraits::Compare(m_text.c_str(), View(other).data()); }
    int CompareNoCase(PCXSTR other) const { return StringTraits::CompareNoCase(m_text.c_str(), View(other).data()); }

    // The position of the first match at or after `start`, or -1, also when `start` is outside the text.
    int Find(XCHAR character, int start = 0) const {
        if (start < 0 || start >= GetLength()) return -1;
        return Position(m_text.find(character, static_cast<size_t>(start)));
    }
    int Find(PCXSTR text, int start = 0) const {
        if (text == nullptr || start < 0 || start > GetLength()) return -1;
        return Position(m_text.find(text, static_cast<size_t>(start)));
    }
    int ReverseFind(XCHAR character) const { return Position(m_text.rfind(character)); }

    CStringT Left(int count) const { return Mid(0, count); }
    CStringT Right(int count) const { return Mid(GetLength() - std::clamp(count, 0, GetLength())); }
    CStringT Mid(int first) const { return Mid(first, GetLength()); }
    CStringT Mid(int first, int count) const {
        first = std::clamp(first, 0, GetLength());
        return CStringT(m_text.c_str() + first, std::clamp(count, 0, GetLength() - first));
    }

    // Without an argument they take off white space; with an empty set, nothing.
    CStringT& TrimLeft() {
        return TrimLeftIf([](XCHAR character) { return StringTraits::IsSpace(character); });
    }
    CStringT& TrimLeft(XCHAR target) {
        return TrimLeftIf([target](XCHAR character) { return character == target; });
    }
    CStringT& TrimLeft(PCXSTR set) { return TrimLeftIf(IsIn(set)); }
    CStringT& TrimRight() {
        return TrimRightIf([](XCHAR character) { return StringTraits::IsSpace(character); });
    }
    CStringT& TrimRight(XCHAR target) {
        return TrimRightIf([target](XCHAR character) { return character == target; });
    }
    CStringT& TrimRight(PCXSTR set) { return TrimRightIf(IsIn(set)); }
    CStringT& Trim() { return TrimRight().TrimLeft(); }
    CStringT& Trim(XCHAR target) { return TrimRight(target).TrimLeft(target); }
    CStringT& Trim(PCXSTR set) { return TrimRight(set).TrimLeft(set); }

    // printf of the Windows runtime: pass `text.GetString()` for %s. CInvalidArgException for a bad format.
    void __cdecl Format(PCXSTR format, ...) {
        va_list arguments;
        va_start(arguments, format);
        m_text = StringTraits::FormatV(format, arguments);
        va_end(arguments);
    }
    // From the current module state's resources. FALSE and the text as it was if the string is not there.
    BOOL LoadString(UINT id) { return StringTraits::LoadResourceText(id, m_text); }

    CStringT& MakeLower() {
        StringTraits::MakeLower(m_text.data(), GetLength());
        return *this;
    }
    CStringT& MakeUpper() {
        StringTraits::MakeUpper(m_text.data(), GetLength());
        return *this;
    }

    // Both answer how many places changed. Replace scans from the left and never looks again at what it put in; an
    // empty `from` changes nothing.
    int Replace(PCXSTR from, PCXSTR to);
    int Remove(XCHAR character) { return static_cast<int>(std::erase(m_text, character)); }

    friend CStringT operator+(CStringT left, const CStringT& right) { return std::move(left += right); }
    friend CStringT operator+(CStringT left, PCXSTR right) { return std::move(left += right); }
    friend CStringT operator+(PCXSTR left, const CStringT& right) { return CStringT(left) + right; }
    friend CStringT operator+(CStringT left, XCHAR right) { return std::move(left += right); }
    friend CStringT operator+(XCHAR left, const CStringT& right) { return CStringT(left) + right; }

    friend bool operator==(const CStringT& left, const CStringT& right) { return left.Compare(right) == 0; }
    friend bool operator==(const CStringT& left, PCXSTR right) { return left.Compare(right) == 0; }
    // Weak, as texts that differ behind a zero only are equal.
    friend std::weak_ordering operator<=>(const CStringT& left, const CStringT& right) {
        return left.Compare(right) <=> 0;
    }
    friend std::weak_ordering operator<=>(const CStringT& left, PCXSTR right) { return left.Compare(right) <=> 0; }

private:
    using TextView = std::basic_string_view<XCHAR>;

    static TextView View(PCXSTR text) {
        static constexpr XCHAR kEmpty[1] = {};
        return text != nullptr ? TextView(text) : TextView(kEmpty);
    }
    static int Position(size_t found) { return found == TextView::npos ? -1 : static_cast<int>(found); }
    static auto IsIn(PCXSTR set) {
        return [set = View(set)](XCHAR character) { return set.find(character) != TextView::npos; };
    }
    template <typename Predicate>
    CStringT& TrimLeftIf(Predicate isTaken) {
        m_text.erase(m_text.begin(), std::find_if_not(m_text.begin(), m_text.end(), isTaken));
        return *this;
    }
    template <typename Predicate>
    CStringT& TrimRightIf(Predicate isTaken) {
        m_text.erase(std::find_if_not(m_text.rbegin(), m_text.rend(), isTaken).base(), m_text.end());
        return *this;
    }

    std::basic_string<XCHAR> m_text;
};

template <typename BaseType, class StringTraits>
int CStringT<BaseType, StringTraits>::Replace(PCXSTR from, PCXSTR to) {
    const TextView target = View(from);
    const TextView replacement = View(to);
    if (target.empty()) return 0;
    std::basic_string<XCHAR> result;
    int count = 0;
    size_t start = 0;
    for (size_t found; (found = m_text.find(target, start)) != TextView::npos; start = found + target.size()) {
        result.append(m_text, start, found - start).append(replacement);
        ++count;
    }
    m_text = result.append(m_text, start, TextView::npos);
    return count;
}

using CStringW = CStringT<wchar_t, StrTraitMFC_DLL<wchar_t, ChTraitsCRT<wchar_t>>>;
using CStringA = CStringT<char, StrTraitMFC_DLL<char, ChTraitsCRT<char>>>;
using CString = CStringW;
