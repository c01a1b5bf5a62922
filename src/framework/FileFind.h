// Walking through a directory:
//
//     CFileFind search;
//     for (BOOL more = search.FindFile(L"C:\\Windows\\*.ini"); more;) {
//         more = search.FindNextFile();             // only now does the object describe a file, the first one at first
//         if (!search.IsDots()) Use(search.GetFilePath());
//     }
#pragma once

#include "framework/CString.h"
#include "framework/Object.h"
#include "framework/TransactionManager.h"

class AFX_API CFileFind : public CObject {
    DECLARE_DYNAMIC(CFileFind)

public:
    CFileFind() = default;
    // Searches begin through the transaction manager, if one is given; its owner keeps it alive.
    explicit CFileFind(CAtlTransactionManager* transactions) : m_pTM(transactions) {}
    ~CFileFind() override;

    // These describe the present file and need a FindNextFile before them.
    virtual CString GetFileName() const;
    virtual CString GetFilePath() const;
    virtual BOOL MatchesMask(DWORD mask) const;
    // Whether it is "." or "..".
    virtual BOOL IsDots() const;
    BOOL IsDirectory() const { return MatchesMask(FILE_ATTRIBUTE_DIRECTORY); }

    // The directory that is searched, with or without a backslash at its end.
    virtual CString GetRoot() const { return m_strRoot; }

    // Starts a search and ends an earlier one. A null name stands for "*.*". FALSE, with the last error, when nothing
    // is found.
    virtual BOOL FindFile(LPCWSTR name = nullptr, DWORD unused = 0);
    // Moves on to the next file. FALSE when it is the last one, which can still be asked about, and without a search.
    virtual BOOL FindNextFile();
    void Close();

protected:
    // Blocks of WIN32_FIND_DATAW: that of the present file, and that of the next, which is read ahead.
    void* m_pFoundInfo = nullptr;
    void* m_pNextInfo = nullptr;
    HANDLE m_hContext = nullptr;
    CString m_strRoot;
    CAtlTransactionManager* m_pTM = nullptr;
};
