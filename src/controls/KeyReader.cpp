#include "controls/KeyReader.h"

#include <new>

KeyHandle OpenKeyForReading(HKEY rootKey, const wchar_t* path) {
    HKEY key = nullptr;
    return KeyHandle(RegOpenKeyExW(rootKey, path, 0, KEY_READ, &key) == ERROR_SUCCESS ? key : nullptr);
}

bool HasChildren(HKEY key, bool countValues) {
    DWORD subkeys = 0;
    DWORD values = 0;
    return RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, &values, nullptr, nullptr,
                            nullptr, nullptr) == ERROR_SUCCESS &&
           (subkeys != 0 || (countValues && values != 0));
}

void EnumerateSubkeys(HKEY key, const std::function<void(const wchar_t* name)>& visit) {
    constexpr DWORD kNameChars = 1024;
    wchar_t name[kNameChars];
    for (DWORD index = 0;; ++index) {
        DWORD length = kNameChars;
        if (RegEnumKeyExW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
            return;
        }
        visit(name);
    }
}

void EnumerateValues(HKEY key, std::unique_ptr<wchar_t[]>& buffer,
                     const std::function<void(const wchar_t* name, DWORD type)>& visit) {
    DWORD longest = 0;
    if (RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &longest, nullptr, nullptr,
                         nullptr) != ERROR_SUCCESS) {
        return;
    }
    buffer.reset(new (std::nothrow) wchar_t[std::size_t{longest} + 2]);
    if (!buffer) {
        return;
    }
    for (DWORD index = 0;; ++index) {
        DWORD length = longest + 1;
        DWORD type = REG_NONE;
        if (RegEnumValueW(key, index, buffer.get(), &length, nullptr, &type, nullptr, nullptr) != ERROR_SUCCESS) {
            return;
        }
        visit(buffer.get(), type);
    }
}
