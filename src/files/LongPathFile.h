// The system's file calls for paths of any length, on a running system and on a preinstallation boot. Each function
// stands for the call of its name, with that call's result and last error; none throws or logs.
//
//     if (!LongPath::CopyFile(source, target, true)) return GetLastError();
//
// A path with a zero inside, at which the system would cut it, is refused: the call fails with ERROR_INVALID_NAME.
//
// A path of more than 247 characters goes to the system with the long-path prefix. Before that, unless a function says
// otherwise, drive C of a preinstallation boot stands for the drive of the installed system.
//
// The names are those of the system's macros and become LongPath::CopyFileW and so on wherever windows.h is, which this
// header includes for that reason. Undefining the macros instead would take them away from hosts. The namespace keeps a
// plain ::CopyFileW the system's own.
#pragma once

#include <afx.h>
#include <shellapi.h>

namespace LongPath {

// On a preinstallation boot puts the installed system's drive in place of a first character C or c. Without an
// installed system the path stays as it is.
void ApplyOfflineDriveRule(CString& path);
// For callers with calls of their own: whether the path is refused, with the last error then set, and else the path as
// it goes to the system after both rules.
bool IsRefused(const CString& path);
CString ForSystemCall(const CString& path);

DWORD GetFileAttributes(const CString& path);
BOOL GetFileAttributesEx(const CString& path, GET_FILEEX_INFO_LEVELS level, void* data);
BOOL SetFileAttributes(const CString& path, DWORD attributes);
// The caller closes the handle; INVALID_HANDLE_VALUE on failure.
HANDLE CreateFile(const CString& path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security, DWORD disposition,
                  DWORD flags);
BOOL CopyFile(const CString& source, const CString& target, bool failIfExists);
// Replaces an existing target, and copies to another volume where it must.
BOOL MoveFile(const CString& source, const CString& target);
// MoveFile that takes the read-only attribute off the target first. The target must be there: without one the result is
// false and nothing moves. True at once when both paths are the same but for case.
bool ReplaceFile(const CString& source, const CString& target);
// 0 when the path is there, else -1, as _waccess.
int FileAccess(const CString& path);

// These two keep drive C on a preinstallation boot.
BOOL DeleteFile(const CString& path);
BOOL CreateHardLink(const CString& newName, const CString& existing, SECURITY_ATTRIBUTES* security);

// Times and sizes are read through a handle of their own, of directories too, and only while nobody else has the file
// open for reading alone. SetFileTime opens the file for reading only, so it fails with ERROR_ACCESS_DENIED.
BOOL GetFileTime(const CString& path, FILETIME* created, FILETIME* accessed, FILETIME* written);
BOOL SetFileTime(const CString& path, const FILETIME* created, const FILETIME* accessed, const FILETIME* written);
BOOL GetFileSize(const CString& path, LARGE_INTEGER& size);

// Fills and returns `info`, all zero when it cannot be had. A missing file is created, empty. Files only.
BY_HANDLE_FILE_INFORMATION& GetFileInformation(const CString& path, BY_HANDLE_FILE_INFORMATION& info);

// `size` is that of the structure in bytes. Drive C stays. For a path of 260 characters or more the answer is 0 with
// ERROR_FILE_EXISTS, and an empty file stays behind in the folder for temporary files.
DWORD_PTR GetShellFileInfo(const CString& path, DWORD attributes, SHFILEINFOW& info, UINT size, UINT flags);

}  // namespace LongPath
