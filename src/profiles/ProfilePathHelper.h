// Where user profiles lie, on the running system or, on a preinstallation boot, on the installed one. SIDs are texts
// ("S-1-5-21-...").
//
//     const CString profile = CProfilePathHelper::GetUserProfilePath(sid, L"DOMAIN\\ann");
//     const CString local = CProfilePathHelper::GetLocalProfilePath(sid);
//
// Keys that do not open and values of a wrong type throw CRegistryException, unless a member says otherwise. The cached
// paths are read once per process, an empty one again at each call. For one thread at a time.
#pragma once

#include <afx.h>

class CProfilePathHelper {
public:
    // The path that the user's profile is used from, which may be its central copy. For a user who has never been on
    // this machine it is the "Roaming" text of the configuration, else the folder that the qualified name would get.
    // Empty when nothing is known and the name is empty.
    static CString GetUserProfilePath(const CString& sid, const CString& userName);

    // The profile's copy on this machine, or the "Local" text of the configuration. Throws ERROR_FILE_NOT_FOUND for a
    // user of whom neither is known.
    static CString GetLocalProfilePath(const CString& sid);

    // Reads a text value of the list of profiles; one of REG_EXPAND_SZ is expanded. Gives a Win32 status, and an empty
    // `value` on failure: ERROR_INVALID_DATA for another type, an odd size or a missing terminator. Throws when the key
    // itself does not open, or ExpandPath does; `value` is empty then, too.
    static LONG GetRegistryValue(const CString& name, CString& value);

    // Cached. The default user's folder is never empty: "%SystemDrive%\Users\Default", expanded, stands for one that is
    // not in the registry.
    static CString GetDefaultUserProfilePath();
    static CString GetPublicProfilePath();
    static CString GetProfilesDirectory();
    // Of the user that the process runs as.
    static CString GetCurrentProfilePath();

    // Whether the folder occurs anywhere in the path, ignoring case, up to the end of an element: true for
    // "d:\backup\c:\users\x" below "c:\users". A folder that is not known occurs in every path.
    static bool IsUnderProfilesDirectory(const CString& path);
    static bool IsUnderPublicProfile(const CString& path);

    // The suffix of roaming profile folders: ".V2", ".V3", ".V4" or ".V6".
    static CString GetProfilePathExtension();
    // Gives the path this system's suffix, in place of another system's if it has one.
    static void ApplyProfilePathExtension(CString& path);
    // `base`, a backslash, `name` and the suffix.
    static CString BuildProfilePath(const CString& base, const CString& name);
    // Where a domain keeps the default profile, on the server of the roaming path: "\\server\NETLOGON\Default
    // User.V6". A path on a drive has no server; it gives a folder beside its last element.
    static CString GetNetlogonDefaultUserPath(const CString& path);
};
