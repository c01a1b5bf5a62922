// A folder of the test's own: new, empty, and removed with everything in it, also after a failure. Junctions and other
// links in it are removed, never entered.
#pragma once

#include <string>
#include <string_view>

class ScopedTestDir {
public:
    // Throws std::runtime_error when the folder cannot be created.
    ScopedTestDir();
    ~ScopedTestDir();
    ScopedTestDir(const ScopedTestDir&) = delete;
    ScopedTestDir& operator=(const ScopedTestDir&) = delete;

    // Absolute, with a drive letter, without a backslash at the end.
    const std::wstring& Path() const { return m_path; }
    // Path of a file or folder in it.
    std::wstring Path(std::wstring_view name) const { return m_path + L"\\" + std::wstring(name); }

private:
    std::wstring m_path;
};
