#include "offline/WinPeHelper.h"

#include <cstdio>
#include <io.h>

#include "files/LongPathFile.h"
#include "profiles/ProfilePathHelper.h"
#include "registry/OfflineEnvironment.h"
#include "registry/OfflineHivesHook.h"
#include "registry/ProcessPrivilege.h"
#include "registry/RegistryException.h"
#include "siblings/coresv/LogMethodEntryExit.h"

namespace {

constexpr LPCWSTR kSoftwareMount = L"OS_SOFTWARE";
constexpr LPCWSTR kSystemMount = L"OS_SYSTEM";
constexpr LPCWSTR kDefaultMount = L"OS_DEFAULT";
constexpr int kTempPathChars = 260;

CString s_softwareTempFile;
CString s_systemTempFile;
CString s_defaultTempFile;

void TakePrivileges() {
    SetProcessPrivilege(SE_RESTORE_NAME, true);
    Logger().LogTraceMessageFormat(L"GetLastError() for SE_RESTORE_NAME privilege returns 0x%x\n", GetLastError());
    SetProcessPrivilege(SE_BACKUP_NAME, true);
    Logger().LogTraceMessageFormat(L"GetLastError() for SE_BACKUP_NAME privilege returns 0x%x\n", GetLastError());
}

DWORD LoadMachineHive(WCHAR drive, LPCWSTR hive, LPCWSTR mount, CString& tempFile) {
    CString file;
    file.Format(L"%c:\\Windows\\System32\\config\\%s", drive, hive);
    const DWORD status = WinPeHelper::LoadRegistryNode(HKEY_LOCAL_MACHINE, mount, file, tempFile);
    if (status != ERROR_SUCCESS) {
        Logger().LogErrorMessageFormat(L"Failed to load HKLM\\%s file with Error:%08x", hive, status);
    }
    return status;
}

// Empty when the installed system does not tell. The redirection, which brought us here, lets nothing through that is
// thrown.
CString DefaultUserProfilePath() {
    try {
        return CProfilePathHelper::GetDefaultUserProfilePath();
    } catch (CRegistryException* problem) {
        problem->Delete();
        return CString();
    }
}

DWORD LoadDefaultUserHive(WCHAR drive) {
    CString file = DefaultUserProfilePath();
    if (file.IsEmpty()) {
        Logger().LogErrorMessage(L"Failed to load Default User Profile Path!");
        return ERROR_ACCESS_DENIED;
    }
    file.SetAt(0, drive);
    file += L"\\NTUSER.DAT";
    const DWORD status = WinPeHelper::LoadRegistryNode(HKEY_USERS, kDefaultMount, file, s_defaultTempFile);
    if (status != ERROR_SUCCESS) {
        Logger().LogErrorMessageFormat(L"Failed to load HKU\\.DEFAULT file with Error:%08x", status);
    }
    return status;
}

// Makes an empty file and gives its path; a Win32 status.
DWORD MakeTempFile(CString& path) {
    WCHAR folder[kTempPathChars];
    WCHAR file[kTempPathChars];
    const DWORD length = GetTempPathW(kTempPathChars, folder);
    if (length >= kTempPathChars) return ERROR_BUFFER_OVERFLOW;
    if (length == 0 || GetTempFileNameW(folder, L"Z7", 0, file) == 0) return GetLastError();
    path = file;
    return ERROR_SUCCESS;
}

void LogTempFileError(DWORD status) {
    Logger().LogErrorMessageFormat(L"Unable to get temp file name for registry node. Error:%08x", status);
}

// A Win32 status, logged.
DWORD CopyHive(const CString& file, const CString& tempFile) {
    constexpr LPCWSTR kFailure = L"Unable to copy reg file('%s') to temp directory. Error:%08x";
    if (!LongPath::CopyFile(file, tempFile, false)) {
        const DWORD status = GetLastError();
        Logger().LogErrorMessageFormat(kFailure, file.GetString(), status);
        return status;
    }
    // A hive that was closed cleanly can do without its logs.
    for (const LPCWSTR extension : {L".log1", L".log2"}) {
        if (LongPath::CopyFile(file + extension, tempFile + extension, false)) continue;
        const DWORD status = GetLastError();
        Logger().LogInformationalMessageFormat(kFailure, (file + extension).GetString(), status);
    }
    return ERROR_SUCCESS;
}

}  // namespace

DWORD MountOfflineHives() {
    return WinPeHelper::LoadLocalMachineProfile();
}

DWORD WinPeHelper::LoadLocalMachineProfile() {
    // Before anything is logged: this is asked at each redirection of a path.
    if (IsOfflineSoftwareMounted()) return ERROR_SUCCESS;
    const CLogMethodEntryExit log(L"WinPeHelper::LoadLocalMachineProfile");
    const WCHAR drive = FindOfflineWindowsDrive();
    if (drive == 0) {
        Logger().LogErrorMessage(L"PE Win Profile Drive could not be found!");
        return ERROR_FILE_NOT_FOUND;
    }
    TakePrivileges();
    // What is mounted stays after a failure: SOFTWARE alone serves most readers, and the next call finds it there.
    DWORD status = LoadMachineHive(drive, L"SOFTWARE", kSoftwareMount, s_softwareTempFile);
    if (status == ERROR_SUCCESS) status = LoadMachineHive(drive, L"SYSTEM", kSystemMount, s_systemTempFile);
    if (status == ERROR_SUCCESS) status = LoadDefaultUserHive(drive);
    return status;
}

void WinPeHelper::UnloadLocalMachineProfile() {
    const CLogMethodEntryExit log(L"WinPeHelper::UnloadLocalMachineProfile");
    if (!IsWinPE() || !IsOfflineSoftwareMounted()) return;
    TakePrivileges();
    UnloadRegistryNode(HKEY_LOCAL_MACHINE, kSoftwareMount, s_softwareTempFile);
    UnloadRegistryNode(HKEY_LOCAL_MACHINE, kSystemMount, s_systemTempFile);
    UnloadRegistryNode(HKEY_USERS, kDefaultMount, s_defaultTempFile);
    SetProcessPrivilege(SE_RESTORE_NAME, false);
    SetProcessPrivilege(SE_BACKUP_NAME, false);
}

DWORD WinPeHelper::LoadRegistryNode(HKEY root, const CString& name, const CString& file, CString& tempFile) {
    const CLogMethodEntryExit log(L"WinPeHelper::LoadRegistryNode");
    CString copy;
    DWORD status = MakeTempFile(copy);
    if (status != ERROR_SUCCESS) {
        LogTempFileError(status);
        return status;
    }
    status = CopyHive(file, copy);
    if (status != ERROR_SUCCESS) return status;
    status = CheckFileReadWrite(copy);
    if (status != ERROR_SUCCESS) {
        LogTempFileError(status);
        return status;
    }
    tempFile = copy;
    return static_cast<DWORD>(RegLoadKeyW(root, name, copy));
}

DWORD WinPeHelper::UnloadRegistryNode(HKEY root, const CString& name, CString& tempFile) {
    const CLogMethodEntryExit log(L"WinPeHelper::UnloadRegistryNode");
    const LONG status = RegUnLoadKeyW(root, name);
    if (status != ERROR_SUCCESS) return static_cast<DWORD>(status);
    if (!LongPath::DeleteFile(tempFile)) {
        const DWORD error = GetLastError();
        Logger().LogWarningMessageFormat(L"Unable to delete temp %s reg file:'%s'. Error:%08x", name.GetString(),
                                         tempFile.GetString(), error);
    }
    tempFile.Empty();
    return ERROR_SUCCESS;
}

DWORD CheckFileReadWrite(const CString& path) {
    constexpr int kReadAndWrite = 6;
    if (LongPath::FileAccess(path) != 0) {
        std::wprintf(L"'%ls' does not exist\n", path.GetString());
        return ERROR_FILE_NOT_FOUND;
    }
    if (_waccess(path, kReadAndWrite) != 0) {
        std::wprintf(L"Read/Write Permissions Failed - errno:%d\n", errno);
        return ERROR_ACCESS_DENIED;
    }
    return ERROR_SUCCESS;
}

DWORD OpenOfflineProfileList(HKEY& key) {
    const DWORD status = WinPeHelper::LoadLocalMachineProfile();
    if (status != ERROR_SUCCESS) {
        std::wprintf(L"RegLoadKey failed - Error:%08x\n", status);
        return status;
    }
    return static_cast<DWORD>(
        RegOpenKeyW(HKEY_LOCAL_MACHINE, L"OS_SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList", &key));
}
