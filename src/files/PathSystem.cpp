// The operations of CPathHelper that ask the system about one path.
#include <windows.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <iterator>

#include "files/LongPathFile.h"
#include "files/PathHelper.h"
#include "files/PathVariables.h"
#include "registry/OfflineEnvironment.h"

namespace {

constexpr int kClassicLimit = 260;

// For calls that answer with the size they need, terminator included, when the buffer is too small.
template <class Call>
CString PathFrom(Call call, const CString& usablePath, const CString& path) {
    CString text;
    const DWORD size = LongPath::IsRefused(path) ? 0 : call(usablePath, nullptr, 0);
    if (size != 0) {
        const DWORD length = call(usablePath, text.GetBuffer(static_cast<int>(size)), size);
        text.ReleaseBuffer(length < size ? static_cast<int>(length) : 0);
        if (length != 0) return text;
    }
    AfxThrowFileException(CFileException::genericException, static_cast<LONG>(GetLastError()), path);
}

// The expansion would cut the path at a zero inside.
DWORD AttributesOf(const CString& path) {
    return LongPath::IsRefused(path) ? INVALID_FILE_ATTRIBUTES : LongPath::GetFileAttributes(ExpandPath(path));
}

}  // namespace

bool CPathHelper::IsSameRoot(const CString& first, const CString& second) {
    return !LongPath::IsRefused(first) && !LongPath::IsRefused(second) &&
           PathIsSameRootW(first.Left(kClassicLimit), second.Left(kClassicLimit)) != FALSE;
}

bool CPathHelper::FileExists(const CString& path) {
    const DWORD attributes = AttributesOf(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool CPathHelper::DirectoryExists(const CString& path) {
    const DWORD attributes = AttributesOf(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

CString CPathHelper::GetShortPath(const CString& path) {
    CString usable = path;
    LongPath::ApplyOfflineDriveRule(usable);
    CString text = PathFrom(GetShortPathNameW, MakeLongPath(usable), path);
    // On a preinstallation boot also a path that was given with the target's real letter comes back as C.
    if (IsWinPE() && !text.IsEmpty() && text[0] == FindOfflineWindowsDrive()) text.SetAt(0, L'C');
    return text;
}

CString CPathHelper::GetLongPath(const CString& path) {
    CString usable = path;
    LongPath::ApplyOfflineDriveRule(usable);
    // The system's call takes long paths only with the prefix, and short ones with it as well.
    CString text = RemoveLongPathPrefix(PathFrom(GetLongPathNameW, AddLongPathPrefix(usable), path));
    if (usable != path && !text.IsEmpty()) text.SetAt(0, L'C');
    return text;
}

CString CPathHelper::GetSpecialFolderPath(int csidl) {
    WCHAR folder[kClassicLimit] = {};
    return SUCCEEDED(SHGetFolderPathW(nullptr, csidl, nullptr, 0, folder)) ? CString(folder) : CString();
}

CString CPathHelper::GetSpecialFolderFile(int csidl, LPCWSTR relative) {
    const CString folder = GetSpecialFolderPath(csidl);
    return folder.IsEmpty() ? folder : CombinePath(folder, relative);
}

CString CPathHelper::GetTempDirectory() {
    WCHAR folder[kClassicLimit] = {};
    const DWORD length = GetTempPathW(kClassicLimit, folder);
    return length < kClassicLimit ? CString(folder) : CString();
}

CString CPathHelper::GetTempFile() {
    WCHAR file[kClassicLimit] = {};
    return GetTempFileNameW(GetTempDirectory(), L"ZMT", 0, file) != 0 ? CString(file) : CString();
}
