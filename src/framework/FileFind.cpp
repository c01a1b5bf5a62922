#include "framework/FileFind.h"

#include <memory>
#include <utility>

IMPLEMENT_DYNAMIC(CFileFind, CObject)

namespace {

const WIN32_FIND_DATAW& DataOf(const void* block) {
    return *static_cast<const WIN32_FIND_DATAW*>(block);
}

// With the backslash at its end; empty on failure.
CString DirectoryOf(LPCWSTR name) {
    const DWORD chars = GetFullPathNameW(name, 0, nullptr, nullptr);
    if (chars == 0) return {};
    const auto path = std::make_unique<WCHAR[]>(chars);
    LPWSTR file = nullptr;
    const DWORD length = GetFullPathNameW(name, chars, path.get(), &file);
    if (length == 0 || length >= chars) return {};
    return CString(path.get(), static_cast<int>(file != nullptr ? file - path.get() : length));
}

}  // namespace

CFileFind::~CFileFind() {
    Close();
}

void CFileFind::Close() {
    if (m_hContext != nullptr && m_hContext != INVALID_HANDLE_VALUE) FindClose(m_hContext);
    m_hContext = nullptr;
    delete static_cast<WIN32_FIND_DATAW*>(std::exchange(m_pFoundInfo, nullptr));
    delete static_cast<WIN32_FIND_DATAW*>(std::exchange(m_pNextInfo, nullptr));
}

CString CFileFind::GetFileName() const {
    return m_pFoundInfo != nullptr ? CString(DataOf(m_pFoundInfo).cFileName) : CString();
}

CString CFileFind::GetFilePath() const {
    CString path = GetRoot();
    const WCHAR last = path.IsEmpty() ? L'\0' : path[path.GetLength() - 1];
    if (last != L'\\' && last != L'/') path += L'\\';
    return path + GetFileName();
}

BOOL CFileFind::MatchesMask(DWORD mask) const {
    return m_pFoundInfo != nullptr && (DataOf(m_pFoundInfo).dwFileAttributes & mask) != 0;
}

BOOL CFileFind::IsDots() const {
    if (!IsDirectory()) return FALSE;
    const CString name = GetFileName();
    return name == L"." || name == L"..";
}

BOOL CFileFind::FindFile(LPCWSTR name, DWORD) {
    Close();
    if (name == nullptr) name = L"*.*";
    auto data = std::make_unique<WIN32_FIND_DATAW>();
    const HANDLE search = m_pTM != nullptr ? m_pTM->FindFirstFile(name, data.get()) : FindFirstFileW(name, data.get());
    if (search == INVALID_HANDLE_VALUE) return FALSE;
    m_hContext = search;
    m_pNextInfo = data.release();
    m_strRoot = DirectoryOf(name);
    if (!m_strRoot.IsEmpty()) return TRUE;
    Close();
    SetLastError(ERROR_INVALID_NAME);
    return FALSE;
}

BOOL CFileFind::FindNextFile() {
    if (m_hContext == nullptr) return FALSE;
    if (m_pFoundInfo == nullptr) m_pFoundInfo = new WIN32_FIND_DATAW{};
    std::swap(m_pFoundInfo, m_pNextInfo);
    return ::FindNextFileW(m_hContext, static_cast<WIN32_FIND_DATAW*>(m_pNextInfo));
}
