// Where the target system is installed.
#pragma once

#include <afx.h>

// "SystemRoot" of the running system, or of the installed one on a preinstallation boot. Read once per process. Throws
// CRegistryException when the key does not open.
CString GetSystemRootPath();

// The target system's version key, open for reading and rewritten for a preinstallation boot.
class CRegistryHelper;
void OpenVersionKey(CRegistryHelper& key);

// A file below a folder, with one backslash between them.
CString JoinPath(const CString& folder, LPCWSTR file);
