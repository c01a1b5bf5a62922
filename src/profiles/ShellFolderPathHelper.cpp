// Reading a user's folders. Writing them, and the system's folders, have files of their own.
#include "profiles/ShellFolderPathHelper.h"

#include "helpers/TextView.h"
#include "profiles/ProfilePathHelper.h"
#include "profiles/ShellFolderKeys.h"
#include "registry/OfflineEnvironment.h"
#include "registry/RegistryHelper.h"
#include "siblings/coresv/LogMethodEntryExit.h"

CShellFolderPathHelper::CShellFolderPathHelper(const CString& sid, const CString& userName, bool verbose)
    : _userSid(sid),
      _profilePath(CProfilePathHelper::GetUserProfilePath(sid, userName)),
      _localProfilePath(CProfilePathHelper::GetLocalProfilePath(sid)),
      m_verbose(verbose) {
    if (_localProfilePath.IsEmpty()) _localProfilePath = _profilePath;
    _isProfileRoaming = _profilePath.CompareNoCase(_localProfilePath) != 0;
    const CLogMethodEntryExit scope(L"CShellFolderPathHelper::CShellFolderPathHelper");
    Logger().LogTraceMessageFormat(L"_userSid:           %s", _userSid.GetString());
    Logger().LogTraceMessageFormat(L"_profilePath:       %s", _profilePath.GetString());
    Logger().LogTraceMessageFormat(L"_localProfilePath:  %s", _localProfilePath.GetString());
    Logger().LogTraceMessageFormat(L"_isProfileRoaming:  %s", _isProfileRoaming ? L"true" : L"false");
    for (int path = static_cast<int>(UserPath::Desktop); path < int{kUserPathCount}; ++path) {
        Path(UserPath{path}) = GetShellFolderPath(NameOf(UserPath{path}));
    }
}

CString& CShellFolderPathHelper::Path(UserPath path) {
    static constexpr CString CShellFolderPathHelper::* kMembers[kUserPathCount] = {
        &CShellFolderPathHelper::_profilePath,   &CShellFolderPathHelper::_localProfilePath,
        &CShellFolderPathHelper::m_desktop,      &CShellFolderPathHelper::m_personal,
        &CShellFolderPathHelper::m_myPictures,   &CShellFolderPathHelper::m_myVideo,
        &CShellFolderPathHelper::m_myMusic,      &CShellFolderPathHelper::m_cache,
        &CShellFolderPathHelper::m_programs,     &CShellFolderPathHelper::m_favorites,
        &CShellFolderPathHelper::m_history,      &CShellFolderPathHelper::m_templates,
        &CShellFolderPathHelper::m_cookies,      &CShellFolderPathHelper::m_appData,
        &CShellFolderPathHelper::m_localAppData, &CShellFolderPathHelper::m_startMenu,
        &CShellFolderPathHelper::m_recent,       &CShellFolderPathHelper::m_startup,
        &CShellFolderPathHelper::m_contacts,     &CShellFolderPathHelper::m_links,
        &CShellFolderPathHelper::m_searches,
    };
    return this->*kMembers[static_cast<size_t>(path)];
}

CString CShellFolderPathHelper::Fetch(UserPath path) {
    CString& text = Path(path);
    if (text.IsEmpty()) text = GetShellFolderPath(NameOf(path));
    return text;
}

CString CShellFolderPathHelper::GetShellFolderPath(const CString& name) {
    CString raw = GetShellFolderPathFromRegistry(kUserShellFolders, name);
    if (raw.IsEmpty()) raw = GetShellFolderPathFromRegistry(kShellFolders, name);
    if (raw.IsEmpty()) return raw;
    const bool isLocalAppData = name.CompareNoCase(NameOf(UserPath::LocalAppData)) == 0;
    if (!_isProfileRoaming || isLocalAppData) {
        CString local = TextOf(LocalFolder(ViewOf(raw), ViewOf(_localProfilePath)));
        if (_isProfileRoaming) m_localAppData = local;
        return local;
    }
    const CString localAppData = GetLocalAppData();
    return TextOf(RoamingFolder(ViewOf(raw), ViewOf(_profilePath), ViewOf(_localProfilePath), ViewOf(localAppData)));
}

CString CShellFolderPathHelper::GetShellFolderPathFromRegistry(const CString& keyName, const CString& value) const {
    CString text;
    if (!ReadFolder(_userSid, keyName, value, text)) {
        ReadFolder(IsWinPE() ? L"OS_DEFAULT" : L".DEFAULT", keyName, value, text);
    }
    return text;
}

// False when there is no such key; a key without the value is an answer, an empty one.
bool CShellFolderPathHelper::ReadFolder(const CString& root, const CString& keyName, const CString& value,
                                        CString& text) const {
    const CString path = ShellFolderKey(root, keyName);
    if (!CRegistryHelper::KeyExists(HKEY_USERS, path)) return false;
    const CRegistryHelper key(HKEY_USERS, path, KEY_READ);
    if (!key.ValueExists(value)) return true;
    text = key.GetStringValue(value);
    if (m_verbose) {
        Logger().LogVerboseMessageFormat(
            L"[CShellFolderPathHelper::GetShellFolderPathFromRegistry] Read the shell folder path '%s' from the value "
            L"'%s' under the key '%s'",
            text.GetString(), value.GetString(), path.GetString());
    }
    return true;
}

void CShellFolderPathHelper::UpdatePathIfEmpty(const CString& name, const CString& path) {
    std::bitset<kUserPathCount> empty;
    for (size_t i = 0; i < kUserPathCount; ++i) empty[i] = Path(static_cast<UserPath>(i)).IsEmpty();
    const auto found = PathToUpdate(ViewOf(name), empty);
    if (!found) return;
    Path(*found) = path;
    Logger().LogTraceMessageFormat(L"[CShellFolderPathHelper::UpdatePathIfEmpty] Updating '%s' with '%s'",
                                   name.GetString(), path.GetString());
}

void CShellFolderPathHelper::GetFolderList(CStringList& list) {
    if (!list.IsEmpty()) return;
    for (const UserPath path : ListedFolders()) list.AddTail(Fetch(path));
}
