// A folder whose path is far beyond the classic limit, made by the system's own calls.
#pragma once

#include <windows.h>

#include <string>

// Folders of 40 characters below each other; the path has no prefix.
inline std::wstring MakeDeepFolder(std::wstring path) {
    while (path.size() < 700) {
        path += L"\\" + std::wstring(40, L'd');
        CreateDirectoryW((L"\\\\?\\" + path).c_str(), nullptr);
    }
    return path;
}
