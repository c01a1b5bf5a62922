// Paths that hardly anybody means, for whatever takes a path apart.
#pragma once

#include <string>
#include <vector>

inline const std::vector<std::wstring>& HostilePaths() {
    static const std::vector<std::wstring> s_paths = [] {
        constexpr const wchar_t* kShort[] = {
            // clang-format off
            L"", L"a", L"\\", L"/", L".", L":", L"C", L"C:", L"c:\\", L"C:/", L"1:\\", L"\x00c4:\\", L"\\\\", L"\\\\\\",
            L"\\\\\\\\", L"//s/t", L"\\/s\\t", L"\\\\s", L"\\\\s\\", L"\\\\s\\t", L"\\\\s\\t\\", L"\\\\s/t\\u", L"CON",
            L"NUL.txt", L"\\\\.\\COM1", L"\\\\?", L"\\\\?\\", L"\\\\?\\C", L"\\\\?\\C:", L"\\\\?\\C:\\", L"\\\\?\\UNC",
            L"\\\\?\\UNC\\", L"\\\\?\\UNC\\s\\t\\u", L"\\\\?\\unc\\s", L"\\\\?\\\\\\?\\C:", L"\xd800",
            L"C:\\\xdc00\\\xd83d.\xde00", L"a b.c d", L"..\\..\\.", L"C:a:b", L"\\/\\/", L"//s/t\\u", L"NUL.",
            L"\\\\?\\\\\\?\\", L"\xdc00\\\xd800.\xd800",
            // clang-format on
        };
        std::vector<std::wstring> paths(std::begin(kShort), std::end(kShort));
        paths.emplace_back(3, L'\0');
        for (const wchar_t c : {L'\\', L'.', L'x'}) paths.emplace_back(40000, c);
        paths.push_back(L"\\\\?\\UNC\\" + std::wstring(40000, L':'));
        paths.push_back(L"C:\\" + std::wstring(40000, L'\\'));
        paths.push_back(L"\\\\" + std::wstring(40000, L's') + L"\\t");
        paths.push_back(L"\\\\?\\" + std::wstring(40000, L'.'));
        return paths;
    }();
    return s_paths;
}
