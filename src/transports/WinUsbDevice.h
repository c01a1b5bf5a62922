// One USB device, opened through winusb.dll, with a bulk pipe in each direction.
//
//     WinUsbDevice device;
//     if (const HRESULT result = device.Open(path); result != 0) return result;
//     device.SendData(message);               // throws CWinUsbException*
//
// Sizes are bytes. The class has no locks: one thread reads, and threads that write at the same time rely on the pipe.
// Where winusb.dll or one of its functions is missing, Open says so and every other operation fails in its own way.
#pragma once

#include <afx.h>
#include <winusb.h>

class WinUsbDevice {
public:
    // Loads winusb.dll, which stays loaded. The device is not open.
    WinUsbDevice();
    WinUsbDevice(const WinUsbDevice&) = delete;
    WinUsbDevice& operator=(const WinUsbDevice&) = delete;

    // 0, or the Win32 error in HRESULT form. An interface whose pipes cannot be found opens all the same.
    HRESULT Open(const CString& devicePath);
    // Sends the whole file in one transfer; an empty one not at all. Moves the file's position. Throws
    // CWinUsbException*.
    void SendData(CMemFile& memoryFile);
    // Returns when `count` bytes have come, however long that takes, failed reads being tried again; `count` is then
    // what came, and the result 0. Without winusb.dll the result is an HRESULT, and `count` 0.
    HRESULT ReceiveData(void* buffer, UINT64& count);
    // Throws away what waits in both bulk pipes.
    void FlushPipes();
    void Close();

private:
    friend class WinUsbSession;

    // One transfer of at most `bytes`; a failed one is logged and waited after. Returns what has come.
    ULONG ReadSome(void* buffer, ULONG bytes);
    bool BindFunctions(HMODULE library);
    void FindPipes();

    WINUSB_INTERFACE_HANDLE m_interfaceHandle = INVALID_HANDLE_VALUE;
    HANDLE m_fileHandle = INVALID_HANDLE_VALUE;
    CString m_devicePath;
    UCHAR m_deviceSpeed = 0;
    USB_INTERFACE_DESCRIPTOR m_interfaceDescriptor{};
    UCHAR m_bulkInPipe = 0;
    UCHAR m_bulkOutPipe = 0;
    UCHAR m_interruptPipe = 0;
    decltype(&WinUsb_Initialize) m_initialize = nullptr;
    decltype(&WinUsb_QueryDeviceInformation) m_queryDeviceInformation = nullptr;
    decltype(&WinUsb_QueryInterfaceSettings) m_queryInterfaceSettings = nullptr;
    decltype(&WinUsb_QueryPipe) m_queryPipe = nullptr;
    decltype(&WinUsb_ResetPipe) m_resetPipe = nullptr;
    decltype(&WinUsb_WritePipe) m_writePipe = nullptr;
    decltype(&WinUsb_ReadPipe) m_readPipe = nullptr;
    decltype(&WinUsb_Free) m_free = nullptr;
    decltype(&WinUsb_FlushPipe) m_flushPipe = nullptr;
    DWORD m_loadError = 0;  // not 0: no function may be called
};
