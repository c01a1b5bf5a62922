// The operations of CPathHelper that concern drives and what they are mapped to.
#include <atlbase.h>
#include <memory>
#include <new>

#include "files/PathHelper.h"

namespace {

bool IsStorage(LPCWSTR root) {
    const UINT type = GetDriveTypeW(root);
    return type == DRIVE_FIXED || type == DRIVE_REMOVABLE || type == DRIVE_REMOTE;
}

// The roots one behind the other, each with its terminator, the last with two. Null on failure.
std::unique_ptr<WCHAR[]> DriveStrings() {
    for (DWORD chars = 260;;) {
        std::unique_ptr<WCHAR[]> roots(new (std::nothrow) WCHAR[chars]);
        if (!roots) return nullptr;
        const DWORD needed = GetLogicalDriveStringsW(chars, roots.get());
        if (needed == 0) return nullptr;
        if (needed < chars) return roots;
        chars = needed + 1;
    }
}

CString ReadText(CRegKey& key, LPCWSTR name) {
    ULONG chars = 0;
    CString text;
    if (key.QueryStringValue(name, nullptr, &chars) != ERROR_SUCCESS || chars == 0) return text;
    if (key.QueryStringValue(name, text.GetBuffer(static_cast<int>(chars)), &chars) != ERROR_SUCCESS) return {};
    text.ReleaseBuffer();
    return text;
}

}  // namespace

bool CPathHelper::EnumerateDrives(CStringList& drives) {
    const auto roots = DriveStrings();
    if (!roots) return false;
    for (LPCWSTR root = roots.get(); *root != L'\0'; root += wcslen(root) + 1) {
        if (IsStorage(root)) drives.AddTail(root);
    }
    return true;
}

bool CPathHelper::IsValidDrive(const CString& root) {
    CStringList drives;
    if (root.IsEmpty() || IsUncPath(root) || !EnumerateDrives(drives)) return false;
    for (POSITION place = drives.GetHeadPosition(); place != nullptr;) {
        if (drives.GetNext(place).Left(1).CompareNoCase(root.Left(1)) == 0) return true;
    }
    return false;
}

CString CPathHelper::MapNetworkPath(const CString& path, const CString& sid) {
    if (!IsDrivePath(path)) return {};
    CString name = L"Network\\" + path.Left(1);
    if (!sid.IsEmpty()) name = sid + L"\\" + name;
    CRegKey key;
    if (key.Open(sid.IsEmpty() ? HKEY_CURRENT_USER : HKEY_USERS, name, KEY_QUERY_VALUE) != ERROR_SUCCESS) return {};
    const CString remote = ReadText(key, L"RemotePath");
    if (remote.IsEmpty()) return {};
    constexpr int kDriveAndColon = 2, kDriveRoot = 3;
    return remote + path.Mid(remote[remote.GetLength() - 1] == L'\\' ? kDriveRoot : kDriveAndColon);
}
