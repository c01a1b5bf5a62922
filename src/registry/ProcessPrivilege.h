// Privileges of this process.
#pragma once

#include <windows.h>

// Enables or disables a privilege such as "SeBackupPrivilege" for the whole process. Failure shows in nothing but the
// last error, which after success is ERROR_NOT_ALL_ASSIGNED when the process does not hold the privilege.
void SetProcessPrivilege(LPCWSTR name, bool enable);
