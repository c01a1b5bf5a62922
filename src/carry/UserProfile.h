// Who somebody means by a SID, an account's name or a profile folder.
#pragma once

#include <windows.h>

#include <string>

struct UserProfile {
    std::wstring loadedAs;  // the user's key below HKEY_USERS; empty when the hive is not loaded
    std::wstring folder;    // with NTUSER.DAT in it, when it is not loaded
};

// On the running system. Throws CarryException when there is no such user.
UserProfile FindUserProfile(const std::wstring& user);

// Of an installation on another drive, whose SOFTWARE is mounted under that name below HKEY_LOCAL_MACHINE. An account's
// name is that of its profile folder there, since nobody can be asked for its SID. Throws CarryException.
UserProfile FindOfflineUserProfile(const std::wstring& user, WCHAR drive, const std::wstring& software);
