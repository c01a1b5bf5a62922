#include "support/ScopedPreinstallation.h"

#include <filesystem>
#include <stdexcept>

extern "C" LONG NTAPI RtlAdjustPrivilege(ULONG privilege, BOOLEAN enable, BOOLEAN forThread, PBOOLEAN before);

namespace {

constexpr wchar_t kMarkKey[] = L"Software\\Microsoft\\Windows NT\\CurrentVersion\\WinPE";

void Check(LONG status, const char* what) {
    if (status != ERROR_SUCCESS) throw std::runtime_error(std::string(what) + ": error " + std::to_string(status));
}

void RemoveInstallations() {
    std::error_code ignored;
    for (const wchar_t* folder : {L"D:\\Windows", L"E:\\Windows"}) std::filesystem::remove_all(folder, ignored);
}

}  // namespace

void EnableHivePrivileges() {
    BOOLEAN before = FALSE;
    for (const ULONG backupAndRestore : {17, 18})
        Check(RtlAdjustPrivilege(backupAndRestore, TRUE, FALSE, &before), "taking a privilege");
}

void HiveBuilder::Save(const std::wstring& file) const {
    EnableHivePrivileges();
    Check(RegSaveKeyW(Key(), file.c_str(), nullptr), "saving a hive");
}

ScopedPreinstallation::ScopedPreinstallation() {
    for (const wchar_t* root : {L"D:\\", L"E:\\"})
        if (!std::filesystem::exists(root)) throw std::runtime_error("run with tests/support/second-drives.sh");
    RemoveInstallations();
    HKEY key = nullptr;
    Check(RegCreateKeyW(HKEY_LOCAL_MACHINE, kMarkKey, &key), "creating the key of a preinstallation boot");
    RegCloseKey(key);
}

ScopedPreinstallation::~ScopedPreinstallation() {
    EnableHivePrivileges();
    RegUnLoadKeyW(HKEY_LOCAL_MACHINE, L"OS_SOFTWARE");
    RegUnLoadKeyW(HKEY_LOCAL_MACHINE, L"OS_SYSTEM");
    RegUnLoadKeyW(HKEY_USERS, L"OS_DEFAULT");
    RegDeleteKeyW(HKEY_LOCAL_MACHINE, kMarkKey);
    RemoveInstallations();
}

std::wstring ScopedPreinstallation::SystemFolder(wchar_t drive) {
    const std::wstring folder = std::wstring(1, drive) + L":\\Windows\\System32";
    std::filesystem::create_directories(folder);
    return folder;
}

std::wstring ScopedPreinstallation::Install(wchar_t drive, const wchar_t* name, const HiveBuilder& hive) {
    const std::wstring folder = SystemFolder(drive) + L"\\config\\";
    std::filesystem::create_directories(folder);
    hive.Save(folder + name);
    return folder + name;
}

void ScopedPreinstallation::Mount(const wchar_t* name, const std::wstring& file, HKEY root) {
    EnableHivePrivileges();
    Check(RegLoadKeyW(root, name, file.c_str()), "mounting a hive");
}
