#include "registry/ProcessPrivilege.h"

void SetProcessPrivilege(LPCWSTR name, bool enable) {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &token)) return;
    TOKEN_PRIVILEGES privileges{};
    privileges.PrivilegeCount = 1;
    privileges.Privileges[0].Attributes = enable ? SE_PRIVILEGE_ENABLED : 0;
    // Closing sets no last error when it succeeds, but might when it fails; callers trace the one of the failed call,
    // so only then the token stays open.
    if (!LookupPrivilegeValueW(nullptr, name, &privileges.Privileges[0].Luid)) return;
    if (!AdjustTokenPrivileges(token, FALSE, &privileges, sizeof(privileges), nullptr, nullptr)) return;
    CloseHandle(token);
}
