#include "peers/BareLink.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr UCHAR kBulkIn = 0x81;
constexpr UCHAR kBulkOut = 0x02;

void Require(bool holds) {
    if (!holds) std::abort();
}

template <class Function>
Function Find(const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"winusb.dll"), name)));
}

}  // namespace

BareLink::BareLink(const std::wstring& file)
    : m_read(Find<decltype(m_read)>("WinUsb_ReadPipe")), m_write(Find<decltype(m_write)>("WinUsb_WritePipe")) {
    const HANDLE device = CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
    Require(Find<decltype(&WinUsb_Initialize)>("WinUsb_Initialize")(device, &m_handle));
    CloseHandle(device);
}

void BareLink::Write(const void* data, UINT64 handle, DWORD bytes) {
    const auto head = EncodeUsbMessage({.command = UsbCmdWriteFile, .handle = handle, .count = bytes});
    m_message.resize(head.size() + bytes);
    std::copy(head.begin(), head.end(), m_message.begin());
    std::memcpy(m_message.data() + head.size(), data, bytes);
    Send(m_message);
    Require(Field<DWORD>() == UsbCmdWriteFileReply && Field<DWORD>() == bytes);
}

void BareLink::Read(void* data, UINT64 handle, DWORD bytes) {
    Send(EncodeUsbMessage({.command = UsbCmdReadFile, .handle = handle, .count = bytes}));
    Require(Field<DWORD>() == UsbCmdReadFileReply && Field<DWORD>() == bytes);
    Receive(data, bytes);
}

INT64 BareLink::Seek(UINT64 handle, INT64 position) {
    Send(EncodeUsbMessage({.command = UsbCmdSeekFile, .handle = handle, .position = position, .method = FILE_BEGIN}));
    Require(Field<DWORD>() == UsbCmdSeekFileReply);
    return Field<INT64>();
}

void BareLink::Serve(HANDLE file) {
    std::vector<BYTE> buffer(2 * kUsbChunkBytes);
    for (;;) {
        const auto command = Field<DWORD>();
        Field<UINT64>();
        DWORD count = 0;
        if (command == UsbCmdSeekFile) {
            LARGE_INTEGER position{};
            position.QuadPart = Field<INT64>();
            SetFilePointerEx(file, position, &position, Field<DWORD>());
            Send(EncodeUsbMessage({.command = UsbCmdSeekFileReply, .position = position.QuadPart}));
        } else if (command == UsbCmdWriteFile) {
            const auto bytes = Field<DWORD>();
            Receive(buffer.data(), bytes);
            WriteFile(file, buffer.data(), bytes, &count, nullptr);
            Send(EncodeUsbMessage({.command = UsbCmdWriteFileReply, .count = count}));
        } else {
            const auto bytes = Field<DWORD>();
            const auto headBytes = EncodeUsbMessage({.command = UsbCmdReadFileReply}).size();
            ReadFile(file, buffer.data() + headBytes, bytes, &count, nullptr);
            const auto head = EncodeUsbMessage({.command = UsbCmdReadFileReply, .count = count});
            std::copy(head.begin(), head.end(), buffer.begin());
            Send(std::span(buffer).first(headBytes + count));
        }
    }
}

void BareLink::Send(std::span<const BYTE> bytes) const {
    ULONG written = 0;
    Require(m_write(m_handle, kBulkOut, const_cast<BYTE*>(bytes.data()), static_cast<ULONG>(bytes.size()), &written,
                    nullptr));
}

void BareLink::Receive(void* buffer, size_t bytes) const {
    for (auto* next = static_cast<BYTE*>(buffer); bytes != 0;) {
        ULONG got = 0;
        // The other end is gone, and so is what there was to measure.
        if (!m_read(m_handle, kBulkIn, next, static_cast<ULONG>(bytes), &got, nullptr)) ExitProcess(0);
        next += got;
        bytes -= got;
    }
}
