#include "registry/OfflineEnvironment.h"

#include <atlbase.h>
#include <io.h>
#include <iterator>

namespace {

bool s_bitnessKnown = false;
bool s_is64BitTarget = false;
CString s_wow64Directory;

void InitTargetBitness() {
    constexpr LPCWSTR kKey32 = L"OS_SOFTWARE\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion";
    CRegKey key;
    s_is64BitTarget =
        key.Open(HKEY_LOCAL_MACHINE, kKey32, KEY_READ) == ERROR_SUCCESS &&
        RegQueryValueExW(key, L"ProgramFilesDir (x86)", nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
    s_bitnessKnown = true;
}

void InitProcessBitness() {
    BOOL isWow64 = FALSE;
    if (IsWow64Process(GetCurrentProcess(), &isWow64)) {
        s_is64BitTarget = isWow64 != FALSE;
        s_bitnessKnown = true;
    }
    WCHAR directory[260];
    const UINT length = GetSystemWow64DirectoryW(directory, static_cast<UINT>(std::size(directory)));
    if (length > 0 && length < std::size(directory)) s_wow64Directory = directory;
}

void InitBitness() {
    if (s_bitnessKnown) return;
    if (IsWinPE()) {
        InitTargetBitness();
    } else {
        InitProcessBitness();
    }
}

}  // namespace

bool IsWinPE() {
    CRegKey key;
    return key.Open(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows NT\\CurrentVersion\\WinPE", KEY_READ) ==
           ERROR_SUCCESS;
}

bool IsOfflineSoftwareMounted() {
    HKEY key = nullptr;
    if (RegOpenKeyW(HKEY_LOCAL_MACHINE, L"OS_SOFTWARE", &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
}

bool IsOffline64BitOs() {
    InitBitness();
    return s_is64BitTarget;
}

CString GetWow64DirectoryText() {
    InitBitness();
    return s_wow64Directory;
}

REGSAM AddWow64KeyFlag(REGSAM access) {
    return IsOffline64BitOs() ? access | KEY_WOW64_64KEY : access;
}

WCHAR FindOfflineWindowsDrive() {
    WCHAR path[] = L"C:\\Windows\\System32\\config\\SOFTWARE";
    for (WCHAR letter = L'C'; letter <= L'Z'; ++letter) {
        path[0] = letter;
        if (_waccess(path, 0) == 0) return letter;
    }
    return 0;
}
