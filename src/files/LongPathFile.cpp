#include "files/LongPathFile.h"

#include <io.h>
#include <iterator>

#include "files/LongPathPrefix.h"
#include "files/PathView.h"
#include "helpers/UniqueHandle.h"
#include "registry/OfflineEnvironment.h"

namespace LongPath {

namespace {

CString WithPrefix(CString path) {
    if (PathText::NeedsLongPathPrefix(ViewOf(path))) path = TextOf(PathText::AddLongPathPrefix(ViewOf(path)));
    return path;
}

// Backup semantics let directories open too.
UniqueHandle OpenForReading(const CString& path) {
    return MakeUniqueHandle(
        CreateFile(path, GENERIC_READ, FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS));
}

constexpr DWORD kMoveFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED;
constexpr int kShellPathChars = 260;

// The shell takes no long path, so it is shown a copy under a short one. The copy always fails, because making up the
// name has made the file; callers rely on getting no answer for long paths, so the copy must not be let overwrite it.
DWORD_PTR GetInfoOfShortCopy(const CString& path, DWORD attributes, SHFILEINFOW& info, UINT size, UINT flags) {
    WCHAR copy[kShellPathChars] = {};
    GetTempPathW(kShellPathChars, copy);
    GetTempFileNameW(copy, L"TZM", 0, copy);
    if (!LongPath::CopyFile(path, copy, true)) return 0;
    const DWORD_PTR result = SHGetFileInfoW(copy, attributes, &info, size, flags);
    LongPath::DeleteFile(copy);
    return result;
}

}  // namespace

void ApplyOfflineDriveRule(CString& path) {
    if (!IsWinPE() || path.IsEmpty() || (path[0] != L'c' && path[0] != L'C')) return;
    if (const WCHAR drive = FindOfflineWindowsDrive()) path.SetAt(0, drive);
}

bool IsRefused(const CString& path) {
    if (path.Find(L'\0') < 0) return false;
    SetLastError(ERROR_INVALID_NAME);
    return true;
}

CString ForSystemCall(const CString& path) {
    CString working = path;
    ApplyOfflineDriveRule(working);
    return WithPrefix(std::move(working));
}

DWORD GetFileAttributes(const CString& path) {
    return IsRefused(path) ? INVALID_FILE_ATTRIBUTES : ::GetFileAttributesW(ForSystemCall(path));
}

BOOL GetFileAttributesEx(const CString& path, GET_FILEEX_INFO_LEVELS level, void* data) {
    return !IsRefused(path) && ::GetFileAttributesExW(ForSystemCall(path), level, data);
}

BOOL SetFileAttributes(const CString& path, DWORD attributes) {
    return !IsRefused(path) && ::SetFileAttributesW(ForSystemCall(path), attributes);
}

HANDLE CreateFile(const CString& path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security, DWORD disposition,
                  DWORD flags) {
    if (IsRefused(path)) return INVALID_HANDLE_VALUE;
    return ::CreateFileW(ForSystemCall(path), access, share, security, disposition, flags, nullptr);
}

BOOL CopyFile(const CString& source, const CString& target, bool failIfExists) {
    if (IsRefused(source) || IsRefused(target)) return FALSE;
    const CString from = ForSystemCall(source);
    return ::CopyFileW(from, ForSystemCall(target), failIfExists);
}

BOOL MoveFile(const CString& source, const CString& target) {
    if (IsRefused(source) || IsRefused(target)) return FALSE;
    const CString from = ForSystemCall(source);
    return ::MoveFileExW(from, ForSystemCall(target), kMoveFlags);
}

bool ReplaceFile(const CString& source, const CString& target) {
    if (IsRefused(source) || IsRefused(target)) return false;
    if (source.CompareNoCase(target) == 0) return true;
    // A missing target has every attribute, the read-only one too, and then fails here.
    const DWORD attributes = GetFileAttributes(target);
    if ((attributes & FILE_ATTRIBUTE_READONLY) != 0 &&
        !SetFileAttributes(target, attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY))) {
        return false;
    }
    return MoveFile(source, target) != FALSE;
}

int FileAccess(const CString& path) {
    constexpr int kExistence = 0;
    return IsRefused(path) ? -1 : _waccess(ForSystemCall(path), kExistence);
}

BOOL DeleteFile(const CString& path) {
    return !IsRefused(path) && ::DeleteFileW(WithPrefix(path));
}

BOOL CreateHardLink(const CString& newName, const CString& existing, SECURITY_ATTRIBUTES* security) {
    return !IsRefused(newName) && !IsRefused(existing) &&
           ::CreateHardLinkW(WithPrefix(newName), WithPrefix(existing), security);
}

BOOL GetFileTime(const CString& path, FILETIME* created, FILETIME* accessed, FILETIME* written) {
    const UniqueHandle file = OpenForReading(path);
    return file && ::GetFileTime(file.get(), created, accessed, written);
}

BOOL SetFileTime(const CString& path, const FILETIME* created, const FILETIME* accessed, const FILETIME* written) {
    // The open is the one of the readers, which the system's call refuses; nothing here may start to change times.
    const UniqueHandle file = OpenForReading(path);
    return file && ::SetFileTime(file.get(), created, accessed, written);
}

BOOL GetFileSize(const CString& path, LARGE_INTEGER& size) {
    const UniqueHandle file = OpenForReading(path);
    return file && ::GetFileSizeEx(file.get(), &size);
}

BY_HANDLE_FILE_INFORMATION& GetFileInformation(const CString& path, BY_HANDLE_FILE_INFORMATION& info) {
    info = {};
    // Opens always, so that a missing file comes into being.
    const UniqueHandle file =
        MakeUniqueHandle(CreateFile(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL));
    if (file) ::GetFileInformationByHandle(file.get(), &info);
    return info;
}

DWORD_PTR GetShellFileInfo(const CString& path, DWORD attributes, SHFILEINFOW& info, UINT size, UINT flags) {
    if (IsRefused(path)) return 0;
    if (path.GetLength() >= kShellPathChars) return GetInfoOfShortCopy(path, attributes, info, size, flags);
    return ::SHGetFileInfoW(path, attributes, &info, size, flags);
}

}  // namespace LongPath
