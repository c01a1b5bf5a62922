#include "support/ScopedPreinstallation.h"

#include <filesystem>
#include <stdexcept>

namespace {

constexpr wchar_t kMarkKey[] = L"Software\\Microsoft\\Windows NT\\CurrentVersion\\WinPE";
constexpr wchar_t kDrives[] = {L'D', L'E'};

void RemoveInstallations() {
    for (const wchar_t drive : kDrives) {
        std::error_code ignored;
        std::filesystem::remove_all(std::wstring(1, drive) + L":\\Windows", ignored);
    }
}

}  // namespace

ScopedPreinstallation::ScopedPreinstallation() {
    for (const wchar_t drive : kDrives) {
        const wchar_t root[] = {drive, L':', L'\\', L'\0'};
        if (GetFileAttributesW(root) == INVALID_FILE_ATTRIBUTES) {
            throw std::runtime_error(
                "a second drive is missing: run with WINE_RUN_PREPARE=tests/support/second-drives.sh");
        }
    }
    RemoveInstallations();
    HKEY key = nullptr;
    if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, kMarkKey, 0, nullptr, 0, KEY_READ, nullptr, &key, nullptr) !=
        ERROR_SUCCESS) {
        throw std::runtime_error("the key of a preinstallation boot cannot be created");
    }
    RegCloseKey(key);
}

ScopedPreinstallation::~ScopedPreinstallation() {
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
    const std::wstring folder = SystemFolder(drive) + L"\\config";
    std::filesystem::create_directories(folder);
    std::wstring file = folder + L"\\" + name;
    hive.Save(file);
    return file;
}

void ScopedPreinstallation::Mount(const wchar_t* name, const std::wstring& file, HKEY root) {
    EnableHivePrivileges();
    const LONG status = RegLoadKeyW(root, name, file.c_str());
    if (status != ERROR_SUCCESS) throw std::runtime_error("RegLoadKeyW gave " + std::to_string(status));
}
