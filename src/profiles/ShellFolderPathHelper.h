// Where the shell folders of one user lie, read from the user's hive under HKEY_USERS and written back to it.
//
//     CShellFolderPathHelper folders(sid, L"DOMAIN\\ann", false);
//     const CString desktop = folders.GetDesktop();
//
// A user whose profile roams has the folders under the roaming profile, except those inside Local AppData. A user
// without a hive has the default user's folders. Keys that do not open and values of a wrong type throw
// CRegistryException. For one thread at a time.
#pragma once

#include <afx.h>
#include <afxcoll.h>

#include "profiles/ShellFolders.h"

class CRegistryHelper;

class CShellFolderPathHelper {
public:
    // Reads everything. `userName`, DOMAIN\name, serves for a user who has never been on this machine; `verbose` logs
    // each value that is read.
    CShellFolderPathHelper(const CString& sid, const CString& userName, bool verbose);

    // Each is empty when the registry does not tell; it then asks again at the next call.
    CString GetDesktop() { return Fetch(UserPath::Desktop); }
    CString GetPersonal() { return Fetch(UserPath::Personal); }
    CString GetMyPictures() { return Fetch(UserPath::MyPictures); }
    CString GetMyVideo() { return Fetch(UserPath::MyVideo); }
    CString GetMyMusic() { return Fetch(UserPath::MyMusic); }
    CString GetCache() { return Fetch(UserPath::Cache); }
    CString GetPrograms() { return Fetch(UserPath::Programs); }
    CString GetFavorites() { return Fetch(UserPath::Favorites); }
    CString GetHistory() { return Fetch(UserPath::History); }
    CString GetTemplates() { return Fetch(UserPath::Templates); }
    CString GetCookies() { return Fetch(UserPath::Cookies); }
    CString GetAppData() { return Fetch(UserPath::AppData); }
    CString GetLocalAppData() { return Fetch(UserPath::LocalAppData); }
    CString GetStartMenu() { return Fetch(UserPath::StartMenu); }
    CString GetRecent() { return Fetch(UserPath::Recent); }
    CString GetStartup() { return Fetch(UserPath::Startup); }
    CString GetContacts() { return Fetch(UserPath::Contacts); }
    CString GetLinks() { return Fetch(UserPath::Links); }
    CString GetSearches() { return Fetch(UserPath::Searches); }

    // The folder of that value name as this user has it, afresh from the registry.
    CString GetShellFolderPath(const CString& name);
    // The value's text as it stands, from "User Shell Folders" or "Shell Folders"; empty when it is missing.
    CString GetShellFolderPathFromRegistry(const CString& keyName, const CString& value) const;

    // Writes the classic set of folders below `base` to both keys of the hive under HKEY_USERS that `root` names.
    static void WriteVistaAndLaterShellFoldersAt(const CString& root, const CString& base);
    // The same to one key, a whole path under HKEY_USERS, which is created when missing. A value that cannot be written
    // is passed over.
    static void WriteVistaAndLaterShellFolders(const CString& key, const CString& base);

    // Writes this object's folders to both keys of the user's hive. Left out are those that are empty, and those that
    // never roam: Local AppData, Cache, History, Templates, Cookies and Recent.
    void WriteRedirectedFolderValues() const;
    // The same to one key, as above.
    void WriteShellFolderValuesToRegistry(const CString& key) const;
    // Writes one text, unless it is empty.
    static void SetNonEmptyShellFolder(CRegistryHelper& key, const CString& name, const CString& text);

    // Gives a path that is empty a value. The names are those of the registry values, in any case, and "profile" and
    // "localprofile"; an unknown one does nothing.
    void UpdatePathIfEmpty(const CString& name, const CString& path);

    // Appends eleven folders, from AppData to My Video, to an empty list; leaves one with entries alone.
    void GetFolderList(CStringList& list);

    // Folders of the system, or on a preinstallation boot of the installed one. Each is read once per process.
    // With 32-bit system files, theirs.
    static CString GetSystemDirectoryPath();
    // Empty unless the installed system has 64 bits.
    static CString GetSysnativePath();
    // "C:\".
    static CString GetSystemDrive();
    static CString GetCommonDesktop();
    static CString GetCommonTemplates();
    static CString GetCommonAppData();
    // The folder above the common desktop; empty when that is a root or no path.
    static CString GetAllUsersPath();
    // With 32-bit programs, theirs.
    static CString GetProgramFilesPath();
    // Empty unless the installed system has 64 bits.
    static CString GetProgramFiles64Path();

private:
    CString& Path(UserPath path);
    const CString& Path(UserPath path) const { return const_cast<CShellFolderPathHelper*>(this)->Path(path); }
    CString Fetch(UserPath path);
    bool ReadFolder(const CString& root, const CString& keyName, const CString& value, CString& text) const;

    CString _userSid;
    CString _profilePath;
    CString _localProfilePath;
    CString m_desktop;
    CString m_personal;
    CString m_myPictures;
    CString m_myVideo;
    CString m_myMusic;
    CString m_cache;
    CString m_programs;
    CString m_favorites;
    CString m_history;
    CString m_templates;
    CString m_cookies;
    CString m_appData;
    CString m_localAppData;
    CString m_startMenu;
    CString m_recent;
    CString m_startup;
    CString m_contacts;
    CString m_links;
    CString m_searches;
    bool m_verbose;
    bool _isProfileRoaming;
};
