// The hives of the installed system, mounted beside the boot image's own on a preinstallation boot:
//
//     HKEY_LOCAL_MACHINE\OS_SOFTWARE    Windows\System32\config\SOFTWARE of the first drive that has one
//     HKEY_LOCAL_MACHINE\OS_SYSTEM      Windows\System32\config\SYSTEM of that drive
//     HKEY_USERS\OS_DEFAULT             NTUSER.DAT of the default user's profile
//
// What is mounted is a copy in the folder for temporary files, so the installed system keeps its files as they are, and
// changes are lost with the mount. Mounts belong to the machine and stay until they are taken down. For one thread at a
// time.
//
// The redirection of registry paths mounts them on first need, through the hook of registry/OfflineHivesHook.h.
#pragma once

#include <afx.h>

class WinPeHelper {
public:
    // Mounts the three hives, and takes the privileges for it. Gives a Win32 status; a failure is logged and ends the
    // work, but takes nothing down. OS_SOFTWARE stands for all three: once it is there, nothing is tried again and the
    // status is ERROR_SUCCESS.
    static DWORD LoadLocalMachineProfile();

    // Takes the three down and gives the privileges back. Does nothing off a preinstallation boot and without
    // OS_SOFTWARE. A hive of which a key is still open stays, and is not tried again.
    static void UnloadLocalMachineProfile();

    // Mounts a copy of a hive file under a name below HKEY_LOCAL_MACHINE or HKEY_USERS; the process needs the backup
    // and restore privileges. `tempFile` receives the path of the copy, also when the mount itself fails, and is for
    // UnloadRegistryNode. Gives a Win32 status: ERROR_ACCESS_DENIED for a file that is read-only.
    static DWORD LoadRegistryNode(HKEY root, const CString& name, const CString& file, CString& tempFile);

    // Takes a mount down, deletes its copy and empties `tempFile`. A copy that cannot be deleted is a warning in the
    // log; those of the hive's .log1 and .log2 files stay behind. Gives a Win32 status, with nothing changed on
    // failure.
    static DWORD UnloadRegistryNode(HKEY root, const CString& name, CString& tempFile);
};

// ERROR_FILE_NOT_FOUND for a file that is missing, ERROR_ACCESS_DENIED for one that is read-only, with a line on the
// standard output; else ERROR_SUCCESS.
DWORD CheckFileReadWrite(const CString& path);

// The installed system's list of profiles, opened as RegOpenKeyW does; the caller closes it. Mounts the hives when that
// is needed and gives a Win32 status.
DWORD OpenOfflineProfileList(HKEY& key);
