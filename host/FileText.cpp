#include "FileText.h"

#include <windows.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
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

DWORD WriteAll(HANDLE file, const std::string& text) {
    DWORD written = 0;
    // The text of a rules file comes from memory that holds it whole; it is far below 4 GiB.
    if (!WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr)) return GetLastError();
    if (written != text.size()) return ERROR_DISK_FULL;
    return FlushFileBuffers(file) ? ERROR_SUCCESS : GetLastError();
}

// A file that could be written only in part is removed.
void WriteNewFile(const std::wstring& path, DWORD disposition, const std::string& text) {
    DWORD status = ERROR_SUCCESS;
    {
        const Handle file = Open(path, GENERIC_WRITE, disposition);
        if (!file) Fail(GetLastError(), "cannot create a file beside it");
        status = WriteAll(file.get(), text);
    }
    if (status == ERROR_SUCCESS) return;
    DeleteFileW(path.c_str());
    Fail(status, "cannot write");
}

// Leaves as little time as it can between its last look at the file and the replacement.
void MoveOver(const std::wstring& path, const std::optional<std::string>& before, const std::wstring& newFile) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    // Windows refuses to replace such a file, Wine does not where its user may write everywhere.
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
        Fail(ERROR_FILE_READ_ONLY, "cannot replace the file");
    }
    if (ReadFileText(path) != before) throw std::runtime_error("another program has changed the file meanwhile");
    if (!MoveFileExW(newFile.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        Fail(GetLastError(), "cannot replace the file");
    }
}

std::wstring WriteNumberedFile(const std::wstring& stem, const std::string& text) {
    for (int number = 1;; ++number) {
        std::wstring path = stem + L".unsaved-" + std::to_wstring(number) + L".json";
        try {
            WriteNewFile(path, CREATE_NEW, text);
            return path;
        } catch (const std::system_error& error) {
            if (error.code().value() != ERROR_FILE_EXISTS) throw;
        }
    }
}

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

void ReplaceFileText(const std::wstring& path, const std::optional<std::string>& before, const std::string& text) {
    const std::wstring newFile = path + L"." + std::to_wstring(GetCurrentProcessId()) + L".new";
    WriteNewFile(newFile, CREATE_ALWAYS, text);
    try {
        MoveOver(path, before, newFile);
    } catch (...) {
        DeleteFileW(newFile.c_str());
        throw;
    }
}

std::wstring WriteUnsavedText(const std::wstring& path, const std::string& text) {
    const std::filesystem::path file(path);
    std::error_code noFolder;
    for (const auto& folder : {file.parent_path(), std::filesystem::temp_directory_path(noFolder)}) {
        try {
            return WriteNumberedFile((folder / file.stem()).wstring(), text);
        } catch (const std::system_error&) {
            continue;
        }
    }
    return {};
}
