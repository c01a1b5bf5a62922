// Hive files with given content, saved by the system itself from a key that is removed afterwards.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

class HiveBuilder {
public:
    // All members throw std::runtime_error on failure.
    HiveBuilder();
    ~HiveBuilder();
    HiveBuilder(const HiveBuilder&) = delete;
    HiveBuilder& operator=(const HiveBuilder&) = delete;

    // Paths are relative to the root of the hive; keys on the way are created.
    void AddKey(std::wstring_view path);
    void SetText(std::wstring_view path, std::wstring_view name, std::wstring_view text);
    void SetData(std::wstring_view path, std::wstring_view name, DWORD type, const void* data, size_t bytes);
    void SetNumber(std::wstring_view path, std::wstring_view name, DWORD number) {
        SetData(path, name, REG_DWORD, &number, sizeof(number));
    }

    // Writes the hive to a file, which must not exist.
    void Save(const std::wstring& file) const;

private:
    std::wstring m_path;  // under HKEY_CURRENT_USER
    HKEY m_root = nullptr;
};

// Enables SeBackupPrivilege and SeRestorePrivilege, which saving and mounting hives need, for the process.
void EnableHivePrivileges();
