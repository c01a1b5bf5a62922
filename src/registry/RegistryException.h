// The one way in which the registry layer fails: on the heap, thrown by pointer, ended by whoever catches it.
//
//     try {
//         CRegistryHelper key(HKEY_CURRENT_USER, path, KEY_READ);
//     } catch (CRegistryException* problem) {
//         ShowError(FormatRegistryError(*problem));
//         problem->Delete();
//     }
#pragma once

#include <afx.h>

class CRegistryException : public CException {
    DECLARE_DYNAMIC(CRegistryException)

public:
    explicit CRegistryException(DWORD status) : m_status(status) {}
    // Copying is a fault: it throws another CRegistryException with ERROR_INVALID_OPERATION.
    CRegistryException(const CRegistryException& other);
    CRegistryException& operator=(const CRegistryException& other);
    ~CRegistryException() override = default;

    // The Win32 status of the failed call.
    DWORD GetStatus() const { return m_status; }

    // The system's text for the status, with its trailing line break. FALSE when it has none, or one with placeholders,
    // for which nobody has the texts, or when `maxChars`, which counts the terminator, is too small for it; what the
    // buffer holds then is terminated. `helpContext` is ignored.
    BOOL GetErrorMessage(LPWSTR buffer, UINT maxChars, PUINT helpContext = nullptr) const override;

private:
    DWORD m_status;
};

[[noreturn]] void ThrowRegistryException(DWORD status);

// Throws unless the status is ERROR_SUCCESS.
void CheckRegistryStatus(LONG status);

// "[0x2] text", with the status and the system's text; empty when GetErrorMessage gives none, or one of more than 259
// characters.
CString FormatRegistryError(const CRegistryException& problem);
