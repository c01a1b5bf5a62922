// Privileges of this process.
#pragma once

#include <windows.h>

// Enables or disables a privilege such as "SeBackupPrivilege" for the whole process. Failure shows in nothing but the
// last error, which after success is ERROR_NOT_ALL_ASSIGNED when the process does not hold the privilege.
void SetProcessPrivilege(LPCWSTR name, bool enable);

// Backup and restore, by which an administrator opens what belongs to others, as long as an object lives. They are the
// process's, so the first object takes them and the last gives them back, on whatever thread; what was enabled before
// stays enabled. Without the right to them nothing happens. The last error is left as it is.
class ScopedBackupPrivileges {
public:
    ScopedBackupPrivileges();
    ~ScopedBackupPrivileges();
    ScopedBackupPrivileges(const ScopedBackupPrivileges&) = delete;
    ScopedBackupPrivileges& operator=(const ScopedBackupPrivileges&) = delete;
};
