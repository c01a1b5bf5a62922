// Versions of files, as dotted text.
#pragma once

#include <afx.h>

// The file version (not the product version) of a program or DLL as "%u.%u.%u.%u". On a preinstallation boot a path on
// drive C means the drive of the installed system. Returns a Win32 status; on failure `text` stays as it was.
DWORD GetFileVersionText(CString path, CString& text);

// Copies the version of the target system's kernel into the buffer of `size` characters, cut to fit and terminated, and
// returns 1. An unknown version gives an empty text. Throws CRegistryException when the system's version key does not
// open.
int GetOfflineOsVersion(LPWSTR buffer, size_t size);

// Version of the module that holds the toolkit, or else of the current module state's; empty when neither has one. Kept
// once it is found.
CString GetModuleVersionText();
