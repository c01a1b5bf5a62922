#include "carry/HiveMount.h"

#include "carry/CarryReport.h"
#include "carry/KeyAccess.h"
#include "files/LongPathFile.h"
#include "offline/WinPeHelper.h"
#include "registry/ProcessPrivilege.h"

HiveMount::HiveMount(HKEY root, std::wstring name, std::wstring file)
    : m_root(root), m_name(std::move(name)), m_file(std::move(file)) {
    SetProcessPrivilege(SE_RESTORE_NAME, true);
    SetProcessPrivilege(SE_BACKUP_NAME, true);
    const DWORD status = WinPeHelper::LoadRegistryNode(m_root, m_name.c_str(), m_file.c_str(), m_copy);
    if (status == ERROR_SUCCESS) return;
    if (!m_copy.IsEmpty()) {
        // Wine leaves an empty key behind when the file is no hive.
        RegUnLoadKeyW(m_root, m_name.c_str());
        RemoveCopy();
    }
    throw CarryException(CarryFailure::Failed,
                         status == ERROR_SHARING_VIOLATION ? "the hive is in use" : "the hive cannot be mounted",
                         m_file, status);
}

HiveMount::~HiveMount() {
    // The copy goes with the hive, but not the copies of its logs.
    const CString copy = m_copy;
    WinPeHelper::UnloadRegistryNode(m_root, m_name.c_str(), m_copy);
    m_copy = copy;
    RemoveCopy();
}

void HiveMount::RemoveCopy() {
    for (const LPCWSTR extension : {L"", L".log1", L".log2"}) LongPath::DeleteFile(m_copy + extension);
}

void HiveMount::WriteBack() const {
    const CString file = LongPath::ForSystemCall(m_file.c_str());
    CString beside;
    beside.Format(L"%s.%u.new", file.GetString(), GetCurrentProcessId());
    const auto fail = [&](DWORD status) {
        DeleteFileW(beside);
        throw CarryException(CarryFailure::Failed, "the hive cannot be written back", m_file, status);
    };
    UniqueKey key;
    LONG status = OpenKey(m_root, m_name, KEY_READ, LinkMode::Follow, key);
    // Windows refuses to write over a file.
    DeleteFileW(beside);
    if (status == ERROR_SUCCESS) status = RegSaveKeyW(key.get(), beside, nullptr);
    if (status != ERROR_SUCCESS) fail(static_cast<DWORD>(status));
    // In this way the file keeps its attributes and its access list.
    if (!::ReplaceFileW(file, beside, nullptr, REPLACEFILE_WRITE_THROUGH, nullptr, nullptr)) fail(GetLastError());
}
