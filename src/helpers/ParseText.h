// Reading pieces and numbers out of text.
#pragma once

#include <afx.h>
#include <afxcoll.h>

// Empties the list, adds the pieces between the dots, empty ones too, and returns their count, which is at least 1.
int SplitDotted(const CString& text, CStringList& pieces);

// True when the whole text is one decimal number from `min` to `max`, both included; leading white space and a sign are
// taken. A null or empty text is false. CInvalidArgException when `min` is above `max`.
bool ParseIntInRange(LPCWSTR text, int min, int max);
