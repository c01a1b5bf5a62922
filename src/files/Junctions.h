// Junctions: directories that stand for another one. Each function takes the path of the link and works on the link
// itself, never on what it points to. Failures show as the result and leave the last error; none throws or logs. A path
// or a target with a zero inside is refused with ERROR_INVALID_NAME.
//
// Links of other users are opened by the backup and restore privileges, which are the process's for the length of a
// call.
#pragma once

#include <afx.h>

bool IsJunction(const CString& path);

// Makes `path` a junction to `linkTarget`, a full path without prefix. The directory is created when it is missing, in
// a directory that is there, and must be empty otherwise. What a later step refuses leaves it as a plain directory.
bool CreateJunction(const CString& path, const CString& linkTarget);
// The first step alone: an empty directory, which from Windows 6.1 on keeps everybody out when it is created here.
bool PrepareJunctionDirectory(const CString& path);

// Makes a junction a plain directory again, and removes that, too, if asked to. False for anything but a junction.
bool DeleteJunction(const CString& path, bool removeDirectory);

// Where the link leads; with the long-path prefix when `path` has it and the target needs it. `path` itself for
// anything but a junction, empty when the link cannot be read: ERROR_INVALID_REPARSE_DATA when it holds no target, as
// another kind of link does.
CString GetJunctionTarget(const CString& path);

// INVALID_FILE_ATTRIBUTES for anything but a junction; hidden and system are then both false.
DWORD GetJunctionAttributes(const CString& path);
bool IsJunctionHidden(const CString& path);
bool IsJunctionSystem(const CString& path);

bool SetJunctionAttributes(const CString& path, DWORD attributes);
// These two add one attribute to those that are there.
bool HideJunction(const CString& path);
bool MarkJunctionSystem(const CString& path);

// The link opened for reading, or for both; the caller closes it. INVALID_HANDLE_VALUE on failure, and while anybody
// else has it open.
HANDLE OpenJunction(const CString& path, bool forWriting);
