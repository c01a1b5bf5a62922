// The hook of the redirection, and the one call that leads upward: mounting an installed system's hives takes the file
// calls and the profile paths of the floors above, which themselves read the registry.
#pragma once

#include <windows.h>

// Mounts the hives unless they are mounted; gives a Win32 status and throws nothing. offline/WinPeHelper.cpp defines
// it: the linker brings the two floors together, so no host has to, and none can forget it.
DWORD MountOfflineHives();
