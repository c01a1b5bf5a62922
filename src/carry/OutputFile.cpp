#include "carry/OutputFile.h"

#include "carry/CarryReport.h"
#include "files/LongPathFile.h"

namespace {

[[noreturn]] void Fail(const std::wstring& path, DWORD status) {
    throw CarryException(CarryFailure::Failed, "the file cannot be written", path, status);
}

[[noreturn]] void RefuseExisting(const std::wstring& path) {
    throw CarryException(CarryFailure::Refused, "the file exists", path, ERROR_FILE_EXISTS);
}

}  // namespace

OutputFile::OutputFile(const std::wstring& path, bool replace)
    : m_path(path), m_replace(replace), m_place(LongPath::ForSystemCall(path.c_str())) {
    if (!replace && GetFileAttributesW(m_place) != INVALID_FILE_ATTRIBUTES) RefuseExisting(path);
    m_beside.Format(L"%s.%u.new", m_place.GetString(), GetCurrentProcessId());
    m_file = MakeUniqueHandle(
        CreateFileW(m_beside, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!m_file) Fail(path, GetLastError());
}

OutputFile::~OutputFile() {
    if (!m_file) return;
    m_file.reset();
    DeleteFileW(m_beside);
}

void OutputFile::Write(const void* data, std::size_t bytes) {
    DWORD written = 0;
    if (!WriteFile(m_file.get(), data, static_cast<DWORD>(bytes), &written, nullptr)) Fail(m_path, GetLastError());
    if (written != bytes) Fail(m_path, ERROR_DISK_FULL);
}

void OutputFile::Finish() {
    if (!FlushFileBuffers(m_file.get())) Fail(m_path, GetLastError());
    m_file.reset();
    if (MoveFileExW(m_beside, m_place, MOVEFILE_WRITE_THROUGH | (m_replace ? MOVEFILE_REPLACE_EXISTING : 0))) return;
    const DWORD status = GetLastError();
    DeleteFileW(m_beside);
    if (status == ERROR_ALREADY_EXISTS || status == ERROR_FILE_EXISTS) RefuseExisting(m_path);
    Fail(m_path, status);
}
