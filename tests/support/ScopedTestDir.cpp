#include "support/ScopedTestDir.h"

#include <windows.h>

#include <atomic>
#include <stdexcept>

namespace {

std::wstring UniquePath() {
    static std::atomic<int> s_count{0};
    std::wstring temporary(MAX_PATH + 2, L'\0');
    temporary.resize(GetTempPathW(static_cast<DWORD>(temporary.size()), temporary.data()));
    return temporary + L"RegistryRulesTest-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
           std::to_wstring(++s_count);
}

// The path comes with the long-path prefix, so that nothing in it is too long to be removed.
void RemoveFolder(const std::wstring& path) {
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW((path + L"\\*").c_str(), &found);
    if (search != INVALID_HANDLE_VALUE) {
        do {
            const std::wstring_view name = found.cFileName;
            if (name == L"." || name == L"..") continue;
            const std::wstring entry = path + L"\\" + std::wstring(name);
            SetFileAttributesW(entry.c_str(), FILE_ATTRIBUTE_NORMAL);
            if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
                DeleteFileW(entry.c_str());
            } else if ((found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
                RemoveDirectoryW(entry.c_str());
            } else {
                RemoveFolder(entry);
            }
        } while (FindNextFileW(search, &found));
        FindClose(search);
    }
    RemoveDirectoryW(path.c_str());
}

}  // namespace

ScopedTestDir::ScopedTestDir() : m_path(UniquePath()) {
    if (!CreateDirectoryW(m_path.c_str(), nullptr)) {
        throw std::runtime_error("creating a test folder: error " + std::to_string(GetLastError()));
    }
}

ScopedTestDir::~ScopedTestDir() {
    RemoveFolder(L"\\\\?\\" + m_path);
}
