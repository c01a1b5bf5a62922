// A key at a path that the code under test reads or writes, such as the list of profiles. It is created when missing;
// the keys that it created and the values that it set go with the object.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

class ScopedRegistryPlace {
public:
    // All members throw std::runtime_error on failure.
    ScopedRegistryPlace(HKEY root, const std::wstring& path);
    ~ScopedRegistryPlace();
    ScopedRegistryPlace(const ScopedRegistryPlace&) = delete;
    ScopedRegistryPlace& operator=(const ScopedRegistryPlace&) = delete;

    void SetText(const wchar_t* name, std::wstring_view text, DWORD type = REG_SZ);
    void SetData(const wchar_t* name, DWORD type, const void* data, size_t bytes);
    void SetNumber(const wchar_t* name, DWORD number) { SetData(name, REG_DWORD, &number, sizeof(number)); }
    void Remove(const wchar_t* name) { RegDeleteValueW(m_key, name); }

private:
    HKEY m_root;
    std::wstring m_created;  // the topmost key that was missing; empty for none
    HKEY m_key = nullptr;
    std::vector<std::wstring> m_names;
};
