// Files without a buffer of their own:
//
//     CFile file;
//     CFileException problem(CFileException::none);
//     if (!file.Open(path, CFile::modeRead | CFile::shareDenyWrite, &problem)) return problem.m_cause;
//     char head[4];
//     const UINT got = file.Read(head, sizeof(head));     // fewer at the end of the file
//
// Sizes and positions are bytes. Open answers; all other members throw a CFileException for what the system refuses.
// The destructor closes what is open and stays silent.
#pragma once

#include "framework/FileException.h"

class CAtlTransactionManager;

class AFX_API CFile : public CObject {
    DECLARE_DYNAMIC(CFile)

public:
    // One access and one share mode, together with any of the others.
    enum OpenFlags : UINT {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        shareExclusive = 0x0010,
        shareDenyWrite = 0x0020,
        shareDenyRead = 0x0030,
        shareDenyNone = 0x0040,
        modeNoInherit = 0x0080,
        modeCreate = 0x1000,      // an existing file is emptied
        modeNoTruncate = 0x2000,  // with modeCreate: it is not
        typeBinary = 0x8000,      // no effect: nothing is ever converted
        osNoBuffer = 0x10000,
        osWriteThrough = 0x20000,
        osRandomAccess = 0x40000,
        osSequentialScan = 0x80000
    };
    enum SeekPosition { begin, current, end };
    enum BufferCommand { bufferRead, bufferWrite, bufferCommit };  // for files in memory

    static const HANDLE hFileNull;  // what m_hFile is while nothing is open

    CFile() = default;
    // Opens the file; CFileException if that fails.
    CFile(LPCWSTR fileName, UINT openFlags);
    ~CFile() override;

    HANDLE m_hFile = INVALID_HANDLE_VALUE;

    // FALSE if the file cannot be opened; `problem`, if given, then tells why.
    virtual BOOL Open(LPCWSTR fileName, UINT openFlags, CFileException* problem = nullptr);
    // Fewer than `count` bytes only at the end of the file.
    virtual UINT Read(void* buffer, UINT count);
    virtual void Write(const void* buffer, UINT count);
    // Returns the new position. It may lie behind the end; before the start is an error.
    virtual ULONGLONG Seek(LONGLONG offset, UINT from);
    virtual ULONGLONG GetPosition() const;
    virtual ULONGLONG GetLength() const;
    // A closed file may be closed again.
    virtual void Close();

    void SeekToBegin() { Seek(0, begin); }
    ULONGLONG SeekToEnd() { return Seek(0, end); }

    // As given to Open; empty when closed.
    virtual CString GetFilePath() const { return m_strFileName; }
    // What follows the last backslash.
    virtual CString GetFileName() const { return m_strFileName.Mid(m_strFileName.ReverseFind(L'\\') + 1); }
    virtual void SetFilePath(LPCWSTR path) { m_strFileName = path; }

protected:
    BOOL m_bCloseOnDelete = FALSE;
    CString m_strFileName;
    // Opening goes through it when it is there; not owned.
    CAtlTransactionManager* m_pTM = nullptr;

private:
    [[noreturn]] void ThrowLastError() const;
};
