#include "registry/ProcessPrivilege.h"

#include <mutex>

namespace {

struct Taken {
    LPCWSTR name;
    bool mustGiveBack;
};

std::mutex s_guard;
int s_holders = 0;
Taken s_backup[] = {{SE_RESTORE_NAME, false}, {SE_BACKUP_NAME, false}};

// Whether the privilege was there and disabled before.
bool Adjust(LPCWSTR name, bool enable) {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &token)) return false;
    TOKEN_PRIVILEGES privileges{}, before{};
    DWORD beforeBytes = 0;
    privileges.PrivilegeCount = 1;
    privileges.Privileges[0].Attributes = enable ? SE_PRIVILEGE_ENABLED : 0;
    // Closing sets no last error when it succeeds, but might when it fails; callers trace the one of the failed call,
    // so only then the token stays open.
    if (!LookupPrivilegeValueW(nullptr, name, &privileges.Privileges[0].Luid)) return false;
    if (!AdjustTokenPrivileges(token, FALSE, &privileges, sizeof(before), &before, &beforeBytes)) return false;
    CloseHandle(token);
    return before.PrivilegeCount != 0 && (before.Privileges[0].Attributes & SE_PRIVILEGE_ENABLED) == 0;
}

}  // namespace

void SetProcessPrivilege(LPCWSTR name, bool enable) {
    Adjust(name, enable);
}

ScopedBackupPrivileges::ScopedBackupPrivileges() {
    const DWORD error = GetLastError();
    const std::lock_guard lock(s_guard);
    if (s_holders++ == 0) {
        for (Taken& privilege : s_backup) privilege.mustGiveBack = Adjust(privilege.name, true);
    }
    SetLastError(error);
}

ScopedBackupPrivileges::~ScopedBackupPrivileges() {
    const DWORD error = GetLastError();
    const std::lock_guard lock(s_guard);
    if (--s_holders == 0) {
        for (const Taken& privilege : s_backup) {
            if (privilege.mustGiveBack) Adjust(privilege.name, false);
        }
    }
    SetLastError(error);
}
