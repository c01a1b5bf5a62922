// Variables in paths, expanded so that they mean the target system also on a preinstallation boot, whose environment
// describes the boot image.
#pragma once

#include <afx.h>

// The path with %NAME% replaced from the environment, once: what a value holds is not expanded again, and a name that
// is not set stays. On a preinstallation boot ExpandSystemTokens comes first, and the environment is asked only for
// what is left. The text as it stood before that when the system cannot expand it, or not to less than 32,767
// characters.
CString ExpandPath(const CString& path);

// The path with the common spellings of %SystemRoot% and %SystemDrive% replaced by the target system's. Throws
// CRegistryException when a % is in the path and the target's version key does not open.
CString ExpandSystemTokens(const CString& path);
