// What a string class needs to know about its character type, and where it finds string resources.
#pragma once

#include <cstdarg>
#include <string>

#include "framework/Api.h"

template <typename CharType>
class ChTraitsCRT;

template <>
class AFX_API ChTraitsCRT<wchar_t> {
public:
    using OtherChar = char;

    static bool IsSpace(wchar_t character);
    // Order by code units.
    static int Compare(const wchar_t* first, const wchar_t* second);
    // The same after each code unit was folded by the system's upper-case table, by which the registry and the file
    // system compare names as well; CompareStringOrdinal is documented to use that table when it ignores case.
    static int CompareNoCase(const wchar_t* first, const wchar_t* second);
    static void MakeLower(wchar_t* text, int length);
    static void MakeUpper(wchar_t* text, int length);
    // printf of the Windows runtime: %s is a wide text, %S a narrow one. Throws CInvalidArgException for a bad format.
    static std::wstring FormatV(const wchar_t* format, va_list arguments);
    // From the process's ANSI code page.
    static std::wstring Convert(const char* text, int length);
};

// No more than conversions need.
template <>
class AFX_API ChTraitsCRT<char> {
public:
    using OtherChar = wchar_t;

    static int Compare(const char* first, const char* second);
    // To the process's ANSI code page.
    static std::string Convert(const wchar_t* text, int length);
};

template <typename CharType, typename Traits = ChTraitsCRT<CharType>>
class StrTraitMFC_DLL : public Traits {};

template <>
class AFX_API StrTraitMFC_DLL<wchar_t, ChTraitsCRT<wchar_t>> : public ChTraitsCRT<wchar_t> {
public:
    // FALSE and an untouched `text` if the current module state's resources do not have the string.
    static BOOL LoadResourceText(UINT id, std::wstring& text);
};
