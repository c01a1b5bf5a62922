// Where the target system is installed.
#pragma once

#include <afx.h>

class CRegistryHelper;

// "SystemRoot" of the running system, or of the installed one on a preinstallation boot. Read once per process. Throws
// CRegistryException when the key does not open.
CString GetSystemRootPath();

// Opens the target system's version key for reading, the installed one's on a preinstallation boot. Throws as above.
void OpenVersionKey(CRegistryHelper& key);

// A file below a folder, with one backslash between them.
CString JoinPath(const CString& folder, LPCWSTR file);
