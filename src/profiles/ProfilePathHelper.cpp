#include "profiles/ProfilePathHelper.h"

#include <shlobj.h>

#include <memory>
#include <new>

#include "files/PathHelper.h"
#include "files/PathParts.h"
#include "files/PathVariables.h"
#include "helpers/TextView.h"
#include "profiles/ConfigurationNames.h"
#include "profiles/ProfileText.h"
#include "registry/OfflineEnvironment.h"
#include "registry/OfflineHivesHook.h"
#include "registry/RegistryHelper.h"
#include "registry/WindowsVersion.h"
#include "siblings/coresv/LogMethodEntryExit.h"

namespace {

constexpr wchar_t kProfileList[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList";
constexpr wchar_t kPolicies[] = L"SOFTWARE\\Policies\\Microsoft\\Windows\\System";
constexpr wchar_t kProfileService[] = L"System\\CurrentControlset\\Services\\ProfSvc\\Parameters";
constexpr DWORD kNativeView = 1;

CString s_defaultUserProfile;
CString s_publicProfile;
CString s_profilesDirectory;
CString s_currentProfile;

CString KeyOf(LPCWSTR list, const CString& sid) {
    CString path;
    path.Format(L"%s\\%s", list, sid.GetString());
    return path;
}

// 0, like a policy that is switched off, when there is no such key or value.
DWORD NumberOrZero(LPCWSTR path, LPCWSTR name, REGSAM access, DWORD nativeViewOnly) {
    if (!CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, path, nativeViewOnly)) return 0;
    const CRegistryHelper key(HKEY_LOCAL_MACHINE, path, access, nativeViewOnly);
    return key.ValueExists(name) ? key.GetDwordValue(name) : 0;
}

const CString& CachedListValue(CString& cache, LPCWSTR name) {
    if (cache.IsEmpty()) CProfilePathHelper::GetRegistryValue(name, cache);
    return cache;
}

bool HoldsFolder(CString path, CString folder) {
    return PathText::HoldsPath(ViewOf(path.MakeLower()), ViewOf(folder.MakeLower()));
}

LONG ReadText(CRegistryHelper& key, LPCWSTR name, DWORD bytes, CString& text) {
    // Room for twice the size, in bytes, so that a value that grows between the two reads is still read whole.
    ULONG chars = bytes;
    const std::unique_ptr<wchar_t[]> buffer(new (std::nothrow) wchar_t[size_t{chars} + 1]{});
    if (!buffer) return ERROR_NOT_ENOUGH_MEMORY;
    const LONG status = key.QueryStringValue(name, buffer.get(), &chars);
    if (status == ERROR_SUCCESS) text = buffer.get();
    return status;
}

}  // namespace

CString CProfilePathHelper::GetUserProfilePath(const CString& sid, const CString& userName) {
    const CLogMethodEntryExit scope(L"CProfilePathHelper::GetUserProfilePath");
    const CString listed = KeyOf(kProfileList, sid);
    if (CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, listed, kNativeView)) {
        Logger().LogTraceMessageFormat(L"profile key HKLM\\'%s' exists", listed.GetString());
        const CRegistryHelper key(HKEY_LOCAL_MACHINE, listed, KEY_READ, kNativeView);
        const CString image = key.GetStringValue(L"ProfileImagePath");
        const CString central = key.GetStringValue(L"CentralProfile");
        const DWORD policy = NumberOrZero(kPolicies, L"LocalProfile", KEY_READ, kNativeView);
        return ExpandPath(UsesCentralProfile(ViewOf(central), policy) ? central : image);
    }
    const CString configured = KeyOf(ConfigurationKeys::kRoamingProfilePaths, sid);
    if (CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, configured)) {
        Logger().LogTraceMessageFormat(L"roaming profile key HKLM\\'%s' exists", configured.GetString());
        const CRegistryHelper key(HKEY_LOCAL_MACHINE, configured, KEY_READ);
        return key.GetStringValue(ConfigurationValues::kRoaming);
    }
    if (userName.IsEmpty()) return {};
    const CString directory = GetProfilesDirectory();
    Logger().LogTraceMessageFormat(L"getting username %s from FQ username", userName.GetString());
    CString path = CPathHelper::CombinePath(directory, TextOf(ShortUserName(ViewOf(userName))));
    Logger().LogTraceMessageFormat(L"combining profile key HKLM\\'%s'", path.GetString());
    return path;
}

CString CProfilePathHelper::GetLocalProfilePath(const CString& sid) {
    const CString listed = KeyOf(kProfileList, sid);
    if (CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, listed, kNativeView)) {
        const CRegistryHelper key(HKEY_LOCAL_MACHINE, listed, KEY_READ, kNativeView);
        return ExpandPath(key.GetStringValue(L"ProfileImagePath"));
    }
    // In the native view, unlike the "Roaming" text beside it.
    const CRegistryHelper key(HKEY_LOCAL_MACHINE, KeyOf(ConfigurationKeys::kRoamingProfilePaths, sid), KEY_READ,
                              kNativeView);
    return key.GetStringValue(ConfigurationValues::kLocal);
}

LONG CProfilePathHelper::GetRegistryValue(const CString& name, CString& value) {
    const CLogMethodEntryExit scope(L"CProfilePathHelper::GetRegistryValue");
    value.Empty();
    REGSAM access = KEY_READ;
    if (IsWinPE()) {
        MountOfflineHives();  // without them IsOffline64BitOs would be false for ever
        if (IsOffline64BitOs()) {
            access |= KEY_WOW64_64KEY;
            Logger().LogVerboseMessage(L"KEY_WOW64_64KEY added to Key in PE");
        }
    }
    CRegistryHelper key;
    key.OpenOrCreate(HKEY_LOCAL_MACHINE, kProfileList, access, 0);
    DWORD type = REG_NONE;
    DWORD bytes = 0;
    LONG status = RegQueryValueExW(key, name, nullptr, &type, nullptr, &bytes);
    if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) {
        Logger().LogInformationalMessageFormat(L"QueryValue returned %d for %s\\%s", status, kProfileList,
                                               name.GetString());
        return status;
    }
    CString text;
    status = ReadText(key, name, bytes, text);
    if (status != ERROR_SUCCESS) {
        Logger().LogInformationalMessageFormat(L"QueryStringValue returned %d for %s\\%s", status, kProfileList,
                                               name.GetString());
        return status;
    }
    value = type == REG_EXPAND_SZ ? ExpandPath(text) : text;
    Logger().LogTraceMessageFormat(L"Registry value for %08x\\%s\\%s is %s",
                                   static_cast<DWORD>(reinterpret_cast<ULONG_PTR>(HKEY_LOCAL_MACHINE)), kProfileList,
                                   name.GetString(), value.GetString());
    return ERROR_SUCCESS;
}

CString CProfilePathHelper::GetDefaultUserProfilePath() {
    if (CachedListValue(s_defaultUserProfile, L"Default").IsEmpty()) {
        Logger().LogInformationalMessage(L"Failed to read default user profile path, using default default");
        s_defaultUserProfile = ExpandPath(L"%SystemDrive%\\Users\\Default");
    }
    return s_defaultUserProfile;
}

CString CProfilePathHelper::GetPublicProfilePath() {
    return CachedListValue(s_publicProfile, L"Public");
}

CString CProfilePathHelper::GetProfilesDirectory() {
    return CachedListValue(s_profilesDirectory, L"ProfilesDirectory");
}

CString CProfilePathHelper::GetCurrentProfilePath() {
    if (s_currentProfile.IsEmpty()) s_currentProfile = CPathHelper::GetSpecialFolderPath(CSIDL_PROFILE);
    return s_currentProfile;
}

bool CProfilePathHelper::IsUnderProfilesDirectory(const CString& path) {
    return HoldsFolder(path, GetProfilesDirectory());
}

bool CProfilePathHelper::IsUnderPublicProfile(const CString& path) {
    return HoldsFolder(path, GetPublicProfilePath());
}

CString CProfilePathHelper::GetProfilePathExtension() {
    const DWORD setting = NumberOrZero(kProfileService, L"UseProfilePathExtensionVersion", KEY_QUERY_VALUE, 0);
    return TextOf(ProfilePathExtension(CWindowsVersion::GetVersion(), setting));
}

void CProfilePathHelper::ApplyProfilePathExtension(CString& path) {
    path = TextOf(WithoutProfilePathExtension(ViewOf(path))) + GetProfilePathExtension();
}

CString CProfilePathHelper::BuildProfilePath(const CString& base, const CString& name) {
    CString path;
    path.Format(L"%s\\%s%s", base.GetString(), name.GetString(), GetProfilePathExtension().GetString());
    return path;
}

CString CProfilePathHelper::GetNetlogonDefaultUserPath(const CString& path) {
    CString result;
    result.Format(L"%s\\NETLOGON\\Default User%s", TextOf(ServerOf(ViewOf(path))).GetString(),
                  GetProfilePathExtension().GetString());
    return result;
}
