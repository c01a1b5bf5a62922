// A file that closes itself and may belong to an owner, whose list collects what is registered through it.
#pragma once

#include <afxcoll.h>

#include "files/VlpFile.h"

// Outlives its files.
struct CSocketFileOwner {
    CString name;
    CStringList strings;
};

class CCoreSocketFileException : public CException {
    DECLARE_DYNAMIC(CCoreSocketFileException)

public:
    CCoreSocketFileException(DWORD code, const CString& message, BOOL autoDelete)
        : CException(autoDelete), m_code(code), m_message(message) {}

    const DWORD m_code;
    const CString m_message;
};

class CCoreSocketFile : public CVlpFile {
    DECLARE_DYNAMIC(CCoreSocketFile)

public:
    CCoreSocketFile() = default;
    // Opens the local file; CFileException if that fails.
    CCoreSocketFile(const CString& name, UINT flags, CSocketFileOwner* owner = nullptr);
    // Closes an open file, and with it writes a memory buffer; what goes wrong then is lost.
    ~CCoreSocketFile() override;

    // Does nothing when no file is open.
    void Close() override;

    // Empty without an owner.
    CString GetOwnerName() const;
    // Adds the text to the owner's list unless it is there, with that case. Nothing without an owner.
    void RegisterWithOwner(const CString& text);

private:
    CSocketFileOwner* m_owner = nullptr;
};
