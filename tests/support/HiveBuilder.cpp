#include "support/HiveBuilder.h"

#include <stdexcept>

namespace {

void EnablePrivilege(HANDLE token, LPCWSTR name) {
    TOKEN_PRIVILEGES privileges{};
    privileges.PrivilegeCount = 1;
    privileges.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    if (!LookupPrivilegeValueW(nullptr, name, &privileges.Privileges[0].Luid) ||
        !AdjustTokenPrivileges(token, FALSE, &privileges, 0, nullptr, nullptr)) {
        throw std::runtime_error("a privilege is not to be had");
    }
}

}  // namespace

void EnableHivePrivileges() {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &token)) {
        throw std::runtime_error("OpenProcessToken failed");
    }
    EnablePrivilege(token, L"SeBackupPrivilege");
    EnablePrivilege(token, L"SeRestorePrivilege");
    CloseHandle(token);
}

void HiveBuilder::Save(const std::wstring& file) const {
    EnableHivePrivileges();
    const LSTATUS status = RegSaveKeyW(Key(), file.c_str(), nullptr);
    if (status != ERROR_SUCCESS) throw std::runtime_error("RegSaveKeyW gave " + std::to_string(status));
}
