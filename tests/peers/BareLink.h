// The transfers of a USB link without a session: the same messages in the same calls of winusb.dll, by one thread that
// waits for nothing else. What the session is measured against.
#pragma once

#include <windows.h>
#include <winusb.h>

#include <string>
#include <vector>

#include "transports/UsbMessage.h"

class BareLink {
public:
    // Opens a device of the stand-in, of which `file` is the path; ends the process if it cannot.
    explicit BareLink(const std::wstring& file);
    BareLink(const BareLink&) = delete;
    BareLink& operator=(const BareLink&) = delete;

    // Asking. A message is one transfer, so the caller's data are put behind the message's fields first.
    void Write(const void* data, UINT64 handle, DWORD bytes);
    void Read(void* data, UINT64 handle, DWORD bytes);
    INT64 Seek(UINT64 handle, INT64 position);

    // Serves those three on the file, whatever the handle; does not return.
    [[noreturn]] void Serve(HANDLE file);

private:
    void Send(std::span<const BYTE> bytes) const;
    void Receive(void* buffer, size_t bytes) const;
    template <class T>
    T Field() const {
        T value{};
        Receive(&value, sizeof(value));
        return value;
    }

    decltype(&WinUsb_ReadPipe) m_read;
    decltype(&WinUsb_WritePipe) m_write;
    WINUSB_INTERFACE_HANDLE m_handle = nullptr;
    std::vector<BYTE> m_message;
};
