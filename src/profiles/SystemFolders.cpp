// The part of CShellFolderPathHelper that knows the system's folders.
#include "files/PathHelper.h"
#include "profiles/ShellFolderPathHelper.h"
#include "registry/OfflineEnvironment.h"
#include "registry/RegistryHelper.h"
#include "registry/SystemRoot.h"

namespace {

constexpr wchar_t kCurrentVersion[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion";
constexpr wchar_t kCommonFolders[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

// One of two values, by the bitness of the target; a null name stands for none. Both readers open the key first: that
// mounts the hives, without which IsOffline64BitOs would be false for the life of the process.
CString ReadValue(LPCWSTR path, LPCWSTR nameOn32, LPCWSTR nameOn64) {
    const CRegistryHelper key(HKEY_LOCAL_MACHINE, path, KEY_READ);
    const LPCWSTR name = IsOffline64BitOs() ? nameOn64 : nameOn32;
    return name == nullptr ? CString() : key.GetStringValue(name);
}

CString BelowSystemRoot(LPCWSTR nameOn32, LPCWSTR nameOn64) {
    const CString root = GetSystemRootPath();
    const LPCWSTR name = IsOffline64BitOs() ? nameOn64 : nameOn32;
    return name == nullptr ? CString() : CPathHelper::CombinePath(root, name);
}

CString CommonFolder(LPCWSTR name) {
    return ReadValue(kCommonFolders, name, name);
}

}  // namespace

// A read that throws leaves its static to be made at the next call.

CString CShellFolderPathHelper::GetSystemDirectoryPath() {
    static const CString s_path = BelowSystemRoot(L"System32", L"SysWOW64");
    return s_path;
}

CString CShellFolderPathHelper::GetSysnativePath() {
    static const CString s_path = BelowSystemRoot(nullptr, L"Sysnative");
    return s_path;
}

CString CShellFolderPathHelper::GetSystemDrive() {
    return GetSystemDirectoryPath().Left(3);
}

CString CShellFolderPathHelper::GetCommonDesktop() {
    static const CString s_path = CommonFolder(L"Common Desktop");
    return s_path;
}

CString CShellFolderPathHelper::GetCommonTemplates() {
    static const CString s_path = CommonFolder(L"Common Templates");
    return s_path;
}

CString CShellFolderPathHelper::GetCommonAppData() {
    static const CString s_path = CommonFolder(L"Common AppData");
    return s_path;
}

CString CShellFolderPathHelper::GetAllUsersPath() {
    return CPathHelper::GetParentPath(GetCommonDesktop());
}

CString CShellFolderPathHelper::GetProgramFilesPath() {
    static const CString s_path = ReadValue(kCurrentVersion, L"ProgramFilesDir", L"ProgramFilesDir (x86)");
    return s_path;
}

CString CShellFolderPathHelper::GetProgramFiles64Path() {
    static const CString s_path = ReadValue(kCurrentVersion, nullptr, L"ProgramW6432Dir");
    return s_path;
}
