// Walking through a directory whose path may have any length. What is reported has neither the long-path prefix nor, on
// a preinstallation boot, the real drive of the installed system: see CFileFind for the walk itself.
#pragma once

#include <afx.h>

class CFileFindEx : public CFileFind {
public:
    // The drive of a preinstallation boot is found here, once.
    explicit CFileFindEx(CAtlTransactionManager* transactions = nullptr);

    CString GetFilePath() const override;
    CString GetRoot() const override;

    // `path` is a full pattern: directory and name, which may hold wildcards; without a name all files are meant. FALSE
    // with nothing done for null and for fewer than 4 characters. FALSE with the last error when nothing is found:
    // ERROR_BAD_ARGUMENTS for a name of 260 characters or more.
    BOOL FindFile(LPCWSTR path = nullptr, DWORD unused = 0) override;
    // A pattern with a zero inside is refused: ERROR_INVALID_NAME.
    BOOL FindFile(const CString& path);

private:
    BOOL Fail(DWORD error);
    void ShowDriveC(CString& path) const;

    bool m_offline;
    WCHAR m_offlineDriveUpper;
    WCHAR m_offlineDriveLower;
};
