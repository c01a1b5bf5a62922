#include "registry/WindowsVersion.h"

#include "registry/FileVersion.h"
#include "registry/OfflineEnvironment.h"
#include "registry/RegistryHelper.h"
#include "registry/SystemRoot.h"
#include "registry/VersionText.h"
#include "siblings/coresv/LogMethodEntryExit.h"

namespace {

OSVERSIONINFOEXW EmptyVersionInfo() {
    OSVERSIONINFOEXW info{};
    static_assert(sizeof(info) == 284);
    info.dwOSVersionInfoSize = sizeof(info);
    return info;
}

}  // namespace

OSVERSIONINFOEXW CWindowsVersion::s_versionInfo = EmptyVersionInfo();
bool CWindowsVersion::s_initialized = false;
CString CWindowsVersion::s_versionText;

CString CWindowsVersion::GetServicePackText() {
    Initialize();
    return s_versionInfo.szCSDVersion;
}

CString CWindowsVersion::GetVersionText() {
    Initialize();
    return s_versionText;
}

SystemVersion CWindowsVersion::GetVersion() {
    Initialize();
    return {s_versionInfo.dwMajorVersion, s_versionInfo.dwMinorVersion, s_versionInfo.dwBuildNumber,
            s_versionInfo.wProductType};
}

void CWindowsVersion::Initialize() {
    if (s_initialized) return;
    // Set first: an attempt that throws is not repeated.
    s_initialized = true;
    const CLogMethodEntryExit scope(L"CWindowsVersion::Initialize");
    if (IsWinPE() && InitializeFromInstalledSystem()) return;
    InitializeFromRunningSystem();
}

bool CWindowsVersion::InitializeFromInstalledSystem() {
    CRegistryHelper key;
    OpenVersionKey(key);
    GetFileVersionText(JoinPath(GetSystemRootPath(), L"system32\\kernel32.dll"), s_versionText);
    if (s_versionText.IsEmpty()) return false;
    const VersionParts parts = ParseVersionParts(s_versionText.GetString());
    s_versionInfo.dwMajorVersion = parts[0];
    s_versionInfo.dwMinorVersion = parts[1];
    s_versionInfo.dwBuildNumber = parts[2];
    s_versionInfo.wProductType = VER_NT_WORKSTATION;  // the file does not tell a server, so every installation is one
    Logger().LogInformationalMessageFormat(L"WinPE OS version: %s", s_versionText.GetString());
    return true;
}

void CWindowsVersion::InitializeFromRunningSystem() {
    GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&s_versionInfo));
    s_versionText.Format(L"%u.%u.%u %s", s_versionInfo.dwMajorVersion, s_versionInfo.dwMinorVersion,
                         s_versionInfo.dwBuildNumber, s_versionInfo.szCSDVersion);
    Logger().LogInformationalMessageFormat(L"OS version: %s", s_versionText.GetString());
}
