// The two keys that hold a user's shell folders.
#pragma once

#include <afx.h>

inline constexpr wchar_t kUserShellFolders[] = L"User Shell Folders";
inline constexpr wchar_t kShellFolders[] = L"Shell Folders";

// The key in the hive under HKEY_USERS that `root` names.
inline CString ShellFolderKey(const CString& root, const CString& keyName) {
    CString path;
    path.Format(L"%s\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\%s", root.GetString(),
                keyName.GetString());
    return path;
}
