// What CVlpFile needs of another machine, so that this floor does not know the link to it: WinUsbSession, on the floor
// of the transports, is one. Its header tells the operations.
#pragma once

#include <afx.h>

class FileSession {
public:
    virtual HANDLE OpenDataFile(const CString& path) = 0;
    virtual DWORD ReadData(HANDLE handle, void* buffer, DWORD size) = 0;
    virtual void WriteData(HANDLE handle, const void* buffer, DWORD size) = 0;
    virtual INT64 SeekData(HANDLE handle, INT64 distance, DWORD method) = 0;
    virtual void CloseFile(HANDLE handle) = 0;

protected:
    ~FileSession() = default;
};
