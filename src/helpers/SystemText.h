// Texts that the system makes. An empty text means failure.
#pragma once

#include <afx.h>

// A new GUID as 32 hexadecimal digits without braces and dashes.
CString NewGuidText();

// The system's text for a Win32 status, in the language that the system chooses, with its trailing line break.
CString SystemErrorText(DWORD status);
