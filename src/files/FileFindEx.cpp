#include "files/FileFindEx.h"

#include <cstdlib>
#include <memory>
#include <vector>

#include "files/LongPathFile.h"
#include "files/LongPathPrefix.h"
#include "files/PathHelper.h"
#include "files/PathView.h"
#include "registry/OfflineEnvironment.h"

namespace {

constexpr int kShortestPattern = 4;
constexpr size_t kNameChars = 260;  // of the name in WIN32_FIND_DATAW, terminator included
constexpr size_t kPathChars = 0x7FFF;
constexpr size_t kDriveChars = 3;

// Drive and directory of the full path, with the backslash at its end; empty on failure.
CString DirectoryOf(LPCWSTR path) {
    std::vector<WCHAR> full(kPathChars), directory(kPathChars);
    WCHAR drive[kDriveChars];
    if (_wfullpath(full.data(), path, kPathChars) == nullptr ||
        _wsplitpath_s(full.data(), drive, kDriveChars, directory.data(), kPathChars, nullptr, 0, nullptr, 0) != 0 ||
        _wmakepath_s(full.data(), kPathChars, drive, directory.data(), nullptr, nullptr) != 0) {
        return {};
    }
    return full.data();
}

}  // namespace

CFileFindEx::CFileFindEx(CAtlTransactionManager* transactions)
    : CFileFind(transactions),
      m_offline(IsWinPE()),
      m_offlineDriveUpper(m_offline ? FindOfflineWindowsDrive() : L'\0'),
      m_offlineDriveLower(static_cast<WCHAR>(m_offlineDriveUpper + (L'a' - L'A'))) {
    if (m_offlineDriveUpper == L'\0') m_offline = false;  // no installed system to stand for
}

void CFileFindEx::ShowDriveC(CString& path) const {
    if (!m_offline || path.IsEmpty()) return;
    if (path[0] == m_offlineDriveUpper || path[0] == m_offlineDriveLower) path.SetAt(0, L'C');
}

CString CFileFindEx::GetFilePath() const {
    CString path = CPathHelper::RemoveLongPathPrefix(CFileFind::GetFilePath());
    ShowDriveC(path);
    return path;
}

CString CFileFindEx::GetRoot() const {
    CString root = CFileFind::GetRoot();
    ShowDriveC(root);
    return root;
}

BOOL CFileFindEx::Fail(DWORD error) {
    Close();
    SetLastError(error);
    return FALSE;
}

BOOL CFileFindEx::FindFile(const CString& path) {
    return !LongPath::IsRefused(path) && FindFile(path.GetString());
}

BOOL CFileFindEx::FindFile(LPCWSTR path, DWORD) {
    if (path == nullptr || wcslen(path) < kShortestPattern) return FALSE;
    CString pattern = CPathHelper::MakeLongPath(path);
    if (m_offline) {
        const int drive = PathText::HasLongPathPrefix(ViewOf(pattern)) ? int{PathText::kLongPathPrefix.size()} : 0;
        if (pattern[drive] == L'c' || pattern[drive] == L'C') pattern.SetAt(drive, m_offlineDriveUpper);
    }
    Close();
    if (pattern[pattern.GetLength() - 1] == L'\\') pattern += L"*.*";
    const CString name = pattern.Mid(pattern.ReverseFind(L'\\') + 1);
    if (static_cast<size_t>(name.GetLength()) >= kNameChars) return Fail(ERROR_BAD_ARGUMENTS);

    auto data = std::make_unique<WIN32_FIND_DATAW>();
    wcscpy(data->cFileName, name);
    m_hContext = m_pTM != nullptr ? m_pTM->FindFirstFile(pattern, data.get()) : FindFirstFileW(pattern, data.get());
    m_pNextInfo = data.release();
    if (m_hContext == INVALID_HANDLE_VALUE) return Fail(GetLastError());
    // Of the path as given, so that the root needs no prefix of its own.
    m_strRoot = DirectoryOf(path);
    return m_strRoot.IsEmpty() ? Fail(ERROR_INVALID_NAME) : TRUE;
}
