#include "support/HiveBuilder.h"

#include <stdexcept>

namespace {

void Check(LONG status, const char* call) {
    if (status != ERROR_SUCCESS) throw std::runtime_error(std::string(call) + " gave " + std::to_string(status));
}

HKEY CreateKey(HKEY parent, const std::wstring& path) {
    HKEY key = nullptr;
    Check(RegCreateKeyExW(parent, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
          "RegCreateKeyExW");
    return key;
}

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

// Not volatile, unlike other keys of tests: the system leaves volatile keys out of a saved hive.
HiveBuilder::HiveBuilder()
    : m_path(L"Software\\hive-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
             std::to_wstring(reinterpret_cast<ULONG_PTR>(this))),
      m_root(CreateKey(HKEY_CURRENT_USER, m_path)) {}

HiveBuilder::~HiveBuilder() {
    RegCloseKey(m_root);
    RegDeleteTreeW(HKEY_CURRENT_USER, m_path.c_str());
}

void HiveBuilder::AddKey(std::wstring_view path) {
    RegCloseKey(CreateKey(m_root, std::wstring(path)));
}

void HiveBuilder::SetText(std::wstring_view path, std::wstring_view name, std::wstring_view text) {
    const std::wstring copy(text);
    SetData(path, name, REG_SZ, copy.c_str(), (copy.size() + 1) * sizeof(wchar_t));
}

void HiveBuilder::SetData(std::wstring_view path, std::wstring_view name, DWORD type, const void* data, size_t bytes) {
    const HKEY key = CreateKey(m_root, std::wstring(path));
    const LONG status = RegSetValueExW(key, std::wstring(name).c_str(), 0, type, static_cast<const BYTE*>(data),
                                       static_cast<DWORD>(bytes));
    RegCloseKey(key);
    Check(status, "RegSetValueExW");
}

void HiveBuilder::Save(const std::wstring& file) const {
    EnableHivePrivileges();
    Check(RegSaveKeyW(m_root, file.c_str(), nullptr), "RegSaveKeyW");
}
