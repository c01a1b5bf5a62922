// The upward call of the registry road: the first redirection on a preinstallation boot has the installed system's
// hives mounted.
#pragma once

#include <windows.h>

class WinPeHelper {
public:
    // A Win32 status, ERROR_SUCCESS when the hives are mounted, also from before. This build mounts nothing itself:
    // ERROR_CALL_NOT_IMPLEMENTED unless somebody has.
    static DWORD LoadLocalMachineProfile();
};
