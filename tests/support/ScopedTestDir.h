// A folder of the test's own: new, empty, and removed with everything in it, also after a failure. Links in it are
// removed, never entered.
#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>
#include <string_view>

class ScopedTestDir {
public:
    ScopedTestDir() {
        WCHAR temporary[MAX_PATH + 2], name[MAX_PATH];
        GetTempPathW(MAX_PATH + 2, temporary);
        GetTempFileNameW(temporary, L"RRT", 0, name);
        if (!DeleteFileW(name) || !CreateDirectoryW(name, nullptr)) throw std::runtime_error("no folder for the test");
        m_path = name;
    }
    ~ScopedTestDir() { Remove(L"\\\\?\\" + m_path); }
    ScopedTestDir(const ScopedTestDir&) = delete;
    ScopedTestDir& operator=(const ScopedTestDir&) = delete;

    // Absolute, with a drive letter, without a backslash at the end.
    const std::wstring& Path() const { return m_path; }
    // Path of a file or folder in it.
    std::wstring Path(std::wstring_view name) const { return m_path + L"\\" + std::wstring(name); }

private:
    // With the long-path prefix, so that nothing is too long.
    static void Remove(const std::wstring& path) {
        const DWORD attributes = GetFileAttributesW(path.c_str());
        SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return static_cast<void>(DeleteFileW(path.c_str()));
        WIN32_FIND_DATAW found{};
        const bool isEntered = (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
        const HANDLE search = isEntered ? FindFirstFileW((path + L"\\*").c_str(), &found) : INVALID_HANDLE_VALUE;
        for (BOOL more = search != INVALID_HANDLE_VALUE; more; more = FindNextFileW(search, &found)) {
            const std::wstring name = found.cFileName;
            if (name != L"." && name != L"..") Remove(std::wstring(path).append(1, L'\\').append(name));
        }
        FindClose(search);
        RemoveDirectoryW(path.c_str());
    }

    std::wstring m_path;
};
