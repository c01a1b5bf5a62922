// The rewriting of paths under HKEY_LOCAL_MACHINE to the hives of an installed system, on a preinstallation boot.
#pragma once

#include <afx.h>

// Rewrites a path that begins with SOFTWARE or SYSTEM to the mounted offline hives, mounting them on first need; does
// nothing elsewhere. `access` is the mask of the coming open, whose view bits count; `nativeViewOnly` not 0 never
// chooses the 32-bit view. It never fails: what cannot be found out leaves the path as far as it had come.
void RedirectToOfflineHive(CString& path, REGSAM access, DWORD nativeViewOnly);
