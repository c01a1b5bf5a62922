// A key at a path that the code under test reads or writes, with the values of that key alone.
#pragma once

#include "support/ScopedRegistryKey.h"

class ScopedRegistryPlace : public ScopedRegistryKey {
public:
    ScopedRegistryPlace(HKEY root, const std::wstring& path) : ScopedRegistryKey(root, path) {}

    void SetText(const wchar_t* name, std::wstring_view text, DWORD type = REG_SZ) {
        ScopedRegistryKey::SetText(L"", name, text, type);
    }
    void SetData(const wchar_t* name, DWORD type, const void* data, size_t bytes) {
        ScopedRegistryKey::SetData(L"", name, type, data, bytes);
    }
    void SetNumber(const wchar_t* name, DWORD number) { ScopedRegistryKey::SetNumber(L"", name, number); }
    void Remove(const wchar_t* name) { RegDeleteValueW(Key(), name); }
};
