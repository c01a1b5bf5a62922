// Comparing, finding and replacing text by the rules of a language, which is what users expect of text that they typed.
// The texts hold no zero characters.
#pragma once

#include <afx.h>

// Makes macros of FindText and ReplaceText, which is harmless as long as everybody sees them.
#include <commdlg.h>

// What CompareStringW answers, ignoring case: CSTR_LESS_THAN, CSTR_EQUAL (2), CSTR_GREATER_THAN, or 0 when it fails, as
// it does for a null pointer.
int CompareInvariantNoCase(const CString& a, const CString& b);
int CompareInvariantNoCase(LPCWSTR a, LPCWSTR b);
int CompareLocaleNoCase(LCID locale, const CString& a, const CString& b);
int CompareLocaleNoCase(LCID locale, LPCWSTR a, LPCWSTR b);

// With case, code by code; without, by the user's default locale. False when the prefix is longer than the text.
bool StartsWith(const CString& text, const CString& prefix, bool ignoreCase);
bool EndsWithCrLf(const CString& text);

// Index of the first place at or behind `start` that equals the needle, or -1. An empty needle is at 0, wherever the
// search starts, as long as `start` is not behind the end. A negative start finds nothing.
int FindText(const CString& text, const CString& needle, int start, bool ignoreCase);

// Replaces each place that FindText finds from `start` on and returns how many. What was put in is not searched again;
// an empty `oldText` replaces nothing.
int ReplaceText(CString& text, const CString& oldText, const CString& newText, int start, bool ignoreCase);
