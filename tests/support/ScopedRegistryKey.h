// A registry key that goes, with what the test put there, when the object does, also after a failure: either one of the
// test's own, or one at a path that the code under test reads or writes, such as the list of profiles.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

// All members throw std::runtime_error on failure. In "with a path" the path is below the key; keys on the way to it
// are created, volatile or not as this one is.
class ScopedRegistryKey {
public:
    // A unique key below `Software` of the root.
    explicit ScopedRegistryKey(HKEY root = HKEY_CURRENT_USER, DWORD options = REG_OPTION_VOLATILE);
    // The key at that path, created when missing; keys and values that were there before stay.
    ScopedRegistryKey(HKEY root, std::wstring path);
    ~ScopedRegistryKey();
    ScopedRegistryKey(const ScopedRegistryKey&) = delete;
    ScopedRegistryKey& operator=(const ScopedRegistryKey&) = delete;

    // Open for everything as long as the object lives; the object closes it.
    HKEY Key() const { return m_key; }
    // The path below the root, and its last element.
    const std::wstring& Path() const { return m_path; }
    std::wstring Name() const { return m_path.substr(m_path.find_last_of(L'\\') + 1); }

    void AddKey(std::wstring_view path);
    // Set a value of the key or, with a path, of a key below it.
    void SetText(std::wstring_view path, std::wstring_view name, std::wstring_view text, DWORD type = REG_SZ);
    void SetData(std::wstring_view path, std::wstring_view name, DWORD type, const void* data, size_t bytes);
    void SetNumber(std::wstring_view path, std::wstring_view name, DWORD number) {
        SetData(path, name, REG_DWORD, &number, sizeof(number));
    }

private:
    HKEY m_root;
    DWORD m_options;
    std::wstring m_path;
    std::wstring m_created;  // the topmost key that was missing; empty for none
    HKEY m_key;
    std::vector<std::wstring> m_names;  // of values that were set in the key itself
};
