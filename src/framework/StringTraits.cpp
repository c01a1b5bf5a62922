#include "framework/StringTraits.h"

#include <cstdio>
#include <cstring>
#include <cwchar>
#include <cwctype>

#include "framework/Exception.h"
#include "framework/ModuleState.h"

namespace {

int Sign(int order) {
    return (order > 0) - (order < 0);
}

}  // namespace

bool ChTraitsCRT<wchar_t>::IsSpace(wchar_t character) {
    return std::iswspace(character) != 0;
}

int ChTraitsCRT<wchar_t>::Compare(const wchar_t* first, const wchar_t* second) {
    return Sign(std::wcscmp(first, second));
}

int ChTraitsCRT<wchar_t>::CompareNoCase(const wchar_t* first, const wchar_t* second) {
    return CompareStringOrdinal(first, -1, second, -1, TRUE) - CSTR_EQUAL;
}

void ChTraitsCRT<wchar_t>::MakeLower(wchar_t* text, int length) {
    CharLowerBuffW(text, static_cast<DWORD>(length));
}

void ChTraitsCRT<wchar_t>::MakeUpper(wchar_t* text, int length) {
    CharUpperBuffW(text, static_cast<DWORD>(length));
}

std::wstring ChTraitsCRT<wchar_t>::FormatV(const wchar_t* format, va_list arguments) {
    va_list counting;
    va_copy(counting, arguments);
    const int length = format != nullptr ? _vscwprintf(format, counting) : -1;
    va_end(counting);
    if (length < 0) AfxThrowInvalidArgException();
    std::wstring text(static_cast<size_t>(length), L'\0');
    _vsnwprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

std::wstring ChTraitsCRT<wchar_t>::Convert(const char* text, int length) {
    std::wstring wide(static_cast<size_t>(MultiByteToWideChar(CP_ACP, 0, text, length, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text, length, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

int ChTraitsCRT<char>::Compare(const char* first, const char* second) {
    return Sign(std::strcmp(first, second));
}

std::string ChTraitsCRT<char>::Convert(const wchar_t* text, int length) {
    std::string narrow(static_cast<size_t>(WideCharToMultiByte(CP_ACP, 0, text, length, nullptr, 0, nullptr, nullptr)),
                       '\0');
    WideCharToMultiByte(CP_ACP, 0, text, length, narrow.data(), static_cast<int>(narrow.size()), nullptr, nullptr);
    return narrow;
}

BOOL StrTraitMFC_DLL<wchar_t, ChTraitsCRT<wchar_t>>::LoadResourceText(UINT id, std::wstring& text) {
    // With a size of 0 the call answers a pointer into the resource itself, so the text may have any length.
    const wchar_t* resource = nullptr;
    const int length = LoadStringW(AfxGetResourceHandle(), id, reinterpret_cast<wchar_t*>(&resource), 0);
    if (length <= 0) return FALSE;
    text.assign(resource, static_cast<size_t>(length));
    return TRUE;
}
