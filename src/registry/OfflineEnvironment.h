// The facts that every registry and path rule asks first: is this a preinstallation boot, and what of the installed
// system does it see. They go straight to the system, without any redirection. The bitness is found once per process;
// for one thread at a time.
#pragma once

#include <afx.h>

// True when the key that only a preinstallation image has opens for reading. Asked afresh at each call.
bool IsWinPE();

bool IsOfflineSoftwareMounted();

// On a preinstallation boot: whether the installed system has 64 bits. The hives must be mounted before the first call,
// or the answer is false for the life of the process. On a running system: whether this is a 32-bit process on a 64-bit
// system, so a 64-bit process reads false.
bool IsOffline64BitOs();

// The directory of 32-bit system files. Empty on a preinstallation boot, and on a system without one.
CString GetWow64DirectoryText();

// The mask, with KEY_WOW64_64KEY added when IsOffline64BitOs.
REGSAM AddWow64KeyFlag(REGSAM access);

// The first drive from C to Z that holds an installed system's SOFTWARE hive; 0 when none does.
WCHAR FindOfflineWindowsDrive();
