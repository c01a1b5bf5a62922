// A winusb.dll whose devices are files and whose cable is a TCP connection. The text of the file says where the other
// end is: "port N" connects to it; "listen" waits for it, and the file's text becomes the "port N" that the other end
// needs; of "refuse" no transfer goes out, and none comes in. A transfer reaches the other end whole, as on a bulk
// pipe, unless something between them cuts it up.
#include <winusb.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>

#include "peers/LinkSocket.h"

#define EXPORTED extern "C" __declspec(dllexport) BOOL WINAPI

namespace {

constexpr USBD_PIPE_TYPE kTypes[] = {UsbdPipeTypeBulk, UsbdPipeTypeBulk, UsbdPipeTypeInterrupt};
constexpr UCHAR kPipes[] = {0x81, 0x02, 0x83};
constexpr UCHAR kBulkIn = kPipes[0];
constexpr UCHAR kBulkOut = kPipes[1];

class Cable {
public:
    Cable(LinkSocket connection, LinkSocket listener, bool refuses = false)
        : m_refuses(refuses), m_connection(std::move(connection)), m_listener(std::move(listener)) {}

    bool IsThere() {
        const std::lock_guard lock(m_connecting);
        if (!m_connection.IsOpen() && m_listener.IsOpen()) m_connection = m_listener.Accept();
        return m_connection.IsOpen() && !m_isBroken;
    }
    ULONG Read(void* buffer, ULONG bytes) {
        const auto got = IsThere() ? static_cast<ULONG>(m_connection.Receive(buffer, bytes)) : 0;
        if (got == 0) m_isBroken = true;
        return got;
    }
    bool Write(const void* data, ULONG bytes) {
        // Both threads of an end may write; neither tears the other's transfer apart.
        const std::lock_guard lock(m_writing);
        return !m_refuses && IsThere() && m_connection.SendAll(data, bytes);
    }
    void Flush() {
        if (IsThere()) m_connection.Drain();
    }

private:
    const bool m_refuses;
    LinkSocket m_connection;
    LinkSocket m_listener;
    std::mutex m_connecting;
    std::mutex m_writing;
    std::atomic<bool> m_isBroken = false;
};

// The file is open for overlapped calls.
template <class Call, class Buffer>
DWORD Transfer(Call call, HANDLE file, Buffer* buffer, DWORD bytes) {
    OVERLAPPED overlapped{};
    DWORD done = 0;
    overlapped.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (call(file, buffer, bytes, nullptr, &overlapped) || GetLastError() == ERROR_IO_PENDING) {
        GetOverlappedResult(file, &overlapped, &done, TRUE);
    }
    CloseHandle(overlapped.hEvent);
    return done;
}

std::unique_ptr<Cable> CableOf(HANDLE file) {
    char text[32] = {};
    if (Transfer(ReadFile, file, text, sizeof(text) - 1) == 0) return nullptr;
    if (unsigned port = 0; std::sscanf(text, "port %u", &port) == 1) {
        LinkSocket connection = LinkSocket::Connect(static_cast<std::uint16_t>(port));
        return connection.IsOpen() ? std::make_unique<Cable>(std::move(connection), LinkSocket()) : nullptr;
    }
    LinkSocket listener = LinkSocket::Listen();
    if (std::strcmp(text, "refuse") == 0) return std::make_unique<Cable>(LinkSocket(), std::move(listener), true);
    const int length = std::snprintf(text, sizeof(text), "port %u", listener.Port());
    Transfer(WriteFile, file, text, static_cast<DWORD>(length));
    return std::make_unique<Cable>(LinkSocket(), std::move(listener));
}

Cable& Of(WINUSB_INTERFACE_HANDLE handle) {
    return *static_cast<Cable*>(handle);
}

BOOL Answer(bool succeeded) {
    if (!succeeded) SetLastError(ERROR_GEN_FAILURE);
    return succeeded;
}

}  // namespace

EXPORTED WinUsb_Initialize(HANDLE file, PWINUSB_INTERFACE_HANDLE handle) {
    auto cable = CableOf(file);
    if (cable == nullptr) return Answer(false);
    *handle = cable.release();
    return TRUE;
}

EXPORTED WinUsb_Free(WINUSB_INTERFACE_HANDLE handle) {
    delete &Of(handle);
    return TRUE;
}

EXPORTED WinUsb_QueryDeviceInformation(WINUSB_INTERFACE_HANDLE, ULONG, PULONG, PVOID speed) {
    *static_cast<UCHAR*>(speed) = 3;  // high speed
    return TRUE;
}

EXPORTED WinUsb_QueryInterfaceSettings(WINUSB_INTERFACE_HANDLE, UCHAR, PUSB_INTERFACE_DESCRIPTOR descriptor) {
    *descriptor = {};
    descriptor->bLength = sizeof(*descriptor);
    descriptor->bNumEndpoints = std::size(kPipes);
    return TRUE;
}

EXPORTED WinUsb_QueryPipe(WINUSB_INTERFACE_HANDLE, UCHAR, UCHAR index, PWINUSB_PIPE_INFORMATION pipe) {
    if (index >= std::size(kPipes)) return Answer(false);
    *pipe = {kTypes[index], kPipes[index], 512, 0};
    return TRUE;
}

EXPORTED WinUsb_ResetPipe(WINUSB_INTERFACE_HANDLE, UCHAR) {
    return TRUE;
}

EXPORTED WinUsb_WritePipe(WINUSB_INTERFACE_HANDLE handle, UCHAR pipe, PUCHAR data, ULONG bytes, PULONG written,
                          LPOVERLAPPED) {
    const bool sent = pipe == kBulkOut && Of(handle).Write(data, bytes);
    *written = sent ? bytes : 0;
    return Answer(sent);
}

EXPORTED WinUsb_ReadPipe(WINUSB_INTERFACE_HANDLE handle, UCHAR pipe, PUCHAR buffer, ULONG bytes, PULONG got,
                         LPOVERLAPPED) {
    *got = pipe == kBulkIn ? Of(handle).Read(buffer, bytes) : 0;
    return Answer(*got != 0 || bytes == 0);
}

EXPORTED WinUsb_FlushPipe(WINUSB_INTERFACE_HANDLE handle, UCHAR pipe) {
    if (pipe == kBulkIn) Of(handle).Flush();
    return TRUE;
}
