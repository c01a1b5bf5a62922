// The operations of CPathHelper that create and delete directories.
#include <windows.h>
#include <shellapi.h>

#include "files/LongPathFile.h"
#include "files/PathHelper.h"
#include "siblings/coresv/LogMethodEntryExit.h"

namespace {

// False, and logged, for a path that starts with neither a drive that is there nor a share.
bool FindRoot(const CString& path, CString& root) {
    if (CPathHelper::IsDrivePath(path)) {
        root = CPathHelper::GetDriveRoot(path);
        if (CPathHelper::IsValidDrive(root)) return true;
        Logger().LogErrorMessageFormat(
            L"[CPathHelper::CreateDirectoryTree] Couldn't create the directory tree '%s' - the specified drive letter "
            L"is invalid.",
            path.GetString());
        return false;
    }
    if (CPathHelper::IsUncPath(path)) {
        root = CPathHelper::GetUncRoot(path);
        return true;
    }
    Logger().LogErrorMessageFormat(
        L"[CPathHelper::CreateDirectoryTree] Couldn't create the directory tree '%s' - can't the determine the path "
        L"type (drive or UNC).",
        path.GetString());
    return false;
}

// The path and those above it that are missing, the topmost first. A path without a root of its own, such as C:a, ends
// where nothing is left, and one with the prefix at its own drive, which without a backslash is not there as a
// directory.
void CollectMissing(const CString& path, const CString& root, CStringList& missing) {
    missing.AddHead(path);
    CString parent = CPathHelper::GetParentPath(path);
    while (!parent.IsEmpty() && parent != root && !CPathHelper::IsRootPath(parent) &&
           !CPathHelper::DirectoryExists(parent)) {
        missing.AddHead(parent);
        parent = CPathHelper::GetParentPath(parent);
    }
}

bool CreateOne(const CString& directory, const CString& path) {
    if (CreateDirectoryW(LongPath::ForSystemCall(directory), nullptr)) return true;
    const DWORD error = GetLastError();
    if (error == ERROR_ALREADY_EXISTS) return true;
    Logger().LogErrorMessageFormat(
        L"[CPathHelper::CreateDirectoryTree] Couldn't create the directory '%s' as part of creating the directory tree "
        L"'%s'- 0x%x",
        directory.GetString(), path.GetString(), error);
    return false;
}

}  // namespace

bool CPathHelper::CreateDirectoryTree(const CString& path) {
    if (LongPath::IsRefused(path)) return false;
    if (DirectoryExists(path)) return true;
    CString root;
    if (!FindRoot(path, root) || path == root) return false;
    CStringList missing;
    CollectMissing(path, root, missing);
    for (POSITION place = missing.GetHeadPosition(); place != nullptr;) {
        if (!CreateOne(missing.GetNext(place), path)) return false;
    }
    return true;
}

void CPathHelper::MoveFile(const CString& original, const CString& destination) {
    const CLogMethodEntryExit scope(L"CPathHelper::MoveFile");
    Logger().LogTraceMessageFormat(L"original = '%s', destination = '%s'", original.GetString(),
                                   destination.GetString());
    // The destination itself becomes a directory, and the copy's outcome does not count: callers rely on both.
    if (!CreateDirectoryTree(destination)) return;
    LongPath::CopyFile(original, destination, false);
    LongPath::DeleteFile(original);
}

bool CPathHelper::DeleteDirectory(const CString& path, bool recursive) {
    if (LongPath::IsRefused(path)) return false;
    if (!recursive) return RemoveDirectoryW(MakeLongPath(path)) != FALSE;
    CString from = path;
    from.AppendChar(L'\0');  // a list of paths, which ends in two zeros
    SHFILEOPSTRUCTW operation{};
    operation.wFunc = FO_DELETE;
    operation.pFrom = from;
    operation.fFlags = FOF_SILENT | FOF_NOCONFIRMATION | FOF_NOERRORUI;
    return SHFileOperationW(&operation) == 0;
}
