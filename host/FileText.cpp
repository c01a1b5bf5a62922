#include "FileText.h"

#include <windows.h>

#include <memory>
#include <system_error>

namespace {

constexpr LONGLONG LargestFile = 64LL << 20;

struct HandleCloser {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<HANDLE, HandleCloser>;

[[noreturn]] void Fail(DWORD status, const char* what) {
    throw std::system_error(static_cast<int>(status), std::system_category(), what);
}

Handle Open(const std::wstring& path, DWORD access, DWORD disposition) {
    const HANDLE handle =
        CreateFileW(path.c_str(), access, FILE_SHARE_READ, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    // cppcheck-suppress resourceLeak ; the returned object owns it
    return Handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

void WriteAll(HANDLE file, const std::string& text) {
    DWORD written = 0;
    // The text of a rules file comes from memory that holds it whole; it is far below 4 GiB.
    if (!WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr)) {
        Fail(GetLastError(), "cannot write");
    }
    if (written != text.size()) Fail(ERROR_DISK_FULL, "cannot write");
    if (!FlushFileBuffers(file)) Fail(GetLastError(), "cannot write");
}

// Removes the half-finished file unless it has taken its place.
class TemporaryFile {
public:
    explicit TemporaryFile(std::wstring path) : m_path(std::move(path)) {}
    ~TemporaryFile() {
        if (!m_moved) DeleteFileW(m_path.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::wstring& Path() const { return m_path; }
    void MoveTo(const std::wstring& target) {
        if (!MoveFileExW(m_path.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
            Fail(GetLastError(), "cannot replace the file");
        }
        m_moved = true;
    }

private:
    std::wstring m_path;
    bool m_moved = false;
};

}  // namespace

std::optional<std::string> ReadFileText(const std::wstring& path) {
    const Handle file = Open(path, GENERIC_READ, OPEN_EXISTING);
    if (!file) {
        const DWORD status = GetLastError();
        if (status == ERROR_FILE_NOT_FOUND) return std::nullopt;
        Fail(status, "cannot open");
    }
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(file.get(), &size)) Fail(GetLastError(), "cannot read");
    if (size.QuadPart > LargestFile) Fail(ERROR_FILE_TOO_LARGE, "cannot read");
    std::string text(static_cast<std::size_t>(size.QuadPart), '\0');
    DWORD read = 0;
    if (!ReadFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &read, nullptr)) {
        Fail(GetLastError(), "cannot read");
    }
    text.resize(read);
    return text;
}

void ReplaceFileText(const std::wstring& path, const std::string& text) {
    TemporaryFile temporary(path + L"." + std::to_wstring(GetCurrentProcessId()) + L".new");
    {
        const Handle file = Open(temporary.Path(), GENERIC_WRITE, CREATE_ALWAYS);
        if (!file) Fail(GetLastError(), "cannot create a file beside it");
        WriteAll(file.get(), text);
    }
    temporary.MoveTo(path);
}
