// A registry key of the test's own: unique, volatile unless told otherwise, and removed with everything below it, also
// after a failure.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

class ScopedRegistryKey {
public:
    // Creates the key below `Software` of the root. Throws std::runtime_error on failure.
    explicit ScopedRegistryKey(HKEY root = HKEY_CURRENT_USER, DWORD options = REG_OPTION_VOLATILE);
    ~ScopedRegistryKey();
    ScopedRegistryKey(const ScopedRegistryKey&) = delete;
    ScopedRegistryKey& operator=(const ScopedRegistryKey&) = delete;

    // Open for everything as long as the object lives; the object closes it.
    HKEY Key() const { return m_key; }
    // The key's own name, without any path.
    const std::wstring& Name() const { return m_name; }
    // The path below the root: "Software\NAME".
    std::wstring Path() const { return L"Software\\" + m_name; }

    // Creates a key below (volatile or not, as this one is), with those on the way to it.
    void AddKey(std::wstring_view path);
    // Sets a value of the key or, with a path, of a key below it, which is created when missing.
    void SetText(std::wstring_view path, std::wstring_view name, std::wstring_view text, DWORD type = REG_SZ);
    void SetData(std::wstring_view path, std::wstring_view name, DWORD type, const void* data, size_t bytes);
    void SetNumber(std::wstring_view path, std::wstring_view name, DWORD number) {
        SetData(path, name, REG_DWORD, &number, sizeof(number));
    }

private:
    HKEY m_root;
    DWORD m_options;
    std::wstring m_name;
    HKEY m_key = nullptr;
};
