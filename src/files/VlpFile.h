// A file of one of three kinds behind the framework's operations: a local one with a path of any length, a file on the
// other machine of a USB session, or a buffer in memory that is written to one of these when it is closed.
//
//     CVlpFile file;
//     file.SetSession(&session);                  // leave out for a local file
//     if (!file.Open(L"Documents\\list.txt", CFile::modeCreate | CFile::modeWrite)) return;
//     file.Write(text, bytes);
//     file.Close();
//
// What a local file does is what CFile does; below stands what differs. Local files of the process share the limit of
// WriteRate.h. An object belongs to one thread at a time.
#pragma once

#include <afx.h>

class FileSession;

class CVlpFile : public CFile {
    DECLARE_DYNAMIC(CVlpFile)

public:
    CVlpFile() = default;
    // Opens a local file for reading, which others may read too; a failure is logged, and thrown as a CFileException.
    explicit CVlpFile(const CString& name);
    // What a memory buffer holds is lost. A file of a session stays open on its machine.
    ~CVlpFile() override = default;

    // Both hold from the next Open on; a file that is open must not change its kind. The session is not owned.
    void SetSession(FileSession* session) { m_session = session; }
    void SetUseMemoryBuffer(bool use) { m_useMemoryBuffer = use; }

    // Does not close an earlier file. In a session flags and `problem` do not count: the file is made anew on the other
    // machine. With flags of both access bits the file is opened for reading.
    BOOL Open(LPCWSTR name, UINT flags, CFileException* problem = nullptr) override;
    // A name with a zero inside is refused: ERROR_INVALID_NAME.
    BOOL Open(const CString& name, UINT flags, CFileException* problem = nullptr);
    // While a memory buffer is used these three are about the buffer. The position in a session counts the bytes asked
    // for, also when fewer came.
    UINT Read(void* buffer, UINT count) override;
    ULONGLONG Seek(LONGLONG offset, UINT from) override;
    ULONGLONG GetPosition() const override;
    // In a session a CFileException with the cause `none`: the length of a remote file cannot be had.
    ULONGLONG GetLength() const override;
    // Under a limit of the write rate a session is not looked at, so writing to one fails.
    void Write(const void* buffer, UINT count) override;
    // Writes a memory buffer from the file's start on, so it throws when no file is open.
    void Close() override;
    // CInvalidArgException for null.
    void SetFilePath(LPCWSTR path) override;

protected:
    bool IsOpen() const { return m_hFile != hFileNull; }
    bool UsesMemoryBuffer() const { return m_useMemoryBuffer; }
    // Neither the file nor a memory buffer holds anything. Throws as GetLength does.
    bool IsEmpty() const;

private:
    HANDLE OpenLocal(UINT flags) const;
    ULONGLONG SeekFile(LONGLONG offset, UINT from);
    void WriteUnlimited(const void* buffer, UINT count);
    void WriteLimited(const void* buffer, UINT count);
    void WriteMemoryBuffer();

    FileSession* m_session = nullptr;
    bool m_useMemoryBuffer = false;
    CMemFile m_memoryBuffer{1048576};
    ULONGLONG m_position = 0;  // in a session
};
