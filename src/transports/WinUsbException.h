// A call on the USB device that failed.
#pragma once

#include <afx.h>

class CWinUsbException : public CException {
public:
    explicit CWinUsbException(DWORD systemError) : m_systemError(systemError) {}

    const DWORD m_systemError;  // a Win32 error
};
