#include "transports/WinUsbDevice.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "siblings/coresv/LoggingService.h"
#include "transports/UsbThread.h"
#include "transports/WinUsbException.h"

namespace {

constexpr DWORD kRetryMilliseconds = 50;
constexpr UCHAR kInPipeBit = 0x80;

template <class Function>
bool Bind(HMODULE library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
    return function != nullptr;
}

}  // namespace

WinUsbDevice::WinUsbDevice() {
    const HMODULE library = LoadLibraryW(L"winusb.dll");
    if (library == nullptr || !BindFunctions(library)) m_loadError = GetLastError();
}

bool WinUsbDevice::BindFunctions(HMODULE library) {
    return Bind(library, "WinUsb_Initialize", m_initialize) &&
           Bind(library, "WinUsb_QueryDeviceInformation", m_queryDeviceInformation) &&
           Bind(library, "WinUsb_QueryInterfaceSettings", m_queryInterfaceSettings) &&
           Bind(library, "WinUsb_QueryPipe", m_queryPipe) && Bind(library, "WinUsb_ResetPipe", m_resetPipe) &&
           Bind(library, "WinUsb_WritePipe", m_writePipe) && Bind(library, "WinUsb_ReadPipe", m_readPipe) &&
           Bind(library, "WinUsb_Free", m_free) && Bind(library, "WinUsb_FlushPipe", m_flushPipe);
}

HRESULT WinUsbDevice::Open(const CString& devicePath) {
    m_devicePath = devicePath;
    if (m_loadError != 0) return HRESULT_FROM_WIN32(m_loadError);
    m_fileHandle = CreateFileW(m_devicePath, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                               OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OVERLAPPED, nullptr);
    if (m_fileHandle == INVALID_HANDLE_VALUE) return HRESULT_FROM_WIN32(GetLastError());
    if (!m_initialize(m_fileHandle, &m_interfaceHandle)) {
        const DWORD error = GetLastError();
        // The number must not stay in the member: by the time of a Close it may be that of another file.
        CloseHandle(std::exchange(m_fileHandle, INVALID_HANDLE_VALUE));
        return HRESULT_FROM_WIN32(error);
    }
    ULONG speedBytes = sizeof(m_deviceSpeed);
    m_queryDeviceInformation(m_interfaceHandle, DEVICE_SPEED, &speedBytes, &m_deviceSpeed);
    if (m_queryInterfaceSettings(m_interfaceHandle, 0, &m_interfaceDescriptor)) FindPipes();
    m_resetPipe(m_interfaceHandle, m_bulkInPipe);
    m_resetPipe(m_interfaceHandle, m_bulkOutPipe);
    return 0;
}

void WinUsbDevice::FindPipes() {
    for (UCHAR index = 0; index < m_interfaceDescriptor.bNumEndpoints; ++index) {
        WINUSB_PIPE_INFORMATION pipe{};
        m_queryPipe(m_interfaceHandle, 0, index, &pipe);
        switch (pipe.PipeType) {
            case UsbdPipeTypeBulk:
                ((pipe.PipeId & kInPipeBit) != 0 ? m_bulkInPipe : m_bulkOutPipe) = pipe.PipeId;
                break;
            case UsbdPipeTypeInterrupt:
                m_interruptPipe = pipe.PipeId;
                break;
            default:
                // An interface of ours has no other pipes, so this is somebody else's, and the rest is not ours to use.
                return;
        }
    }
}

void WinUsbDevice::SendData(CMemFile& memoryFile) {
    const auto length = static_cast<UINT>(memoryFile.GetLength());
    if (length == 0) return;
    if (m_loadError != 0) throw new CWinUsbException(m_loadError);
    memoryFile.SeekToBegin();
    void* start = nullptr;
    void* stop = nullptr;
    const UINT bytes = memoryFile.GetBufferPtr(CFile::bufferRead, length, &start, &stop);
    DWORD error = ERROR_SUCCESS;
    {
        const UsbThread::Rest rest;
        ULONG written = 0;
        if (!m_writePipe(m_interfaceHandle, m_bulkOutPipe, static_cast<UCHAR*>(start), bytes, &written, nullptr)) {
            error = GetLastError();
        }
    }
    if (error != ERROR_SUCCESS) {
        Logger().LogErrorMessageFormat(L"[WinUsbDevice::SendData] WinUsb_WritePipe failed! Error:%d", error);
        throw new CWinUsbException(error);
    }
}

ULONG WinUsbDevice::ReadSome(void* buffer, ULONG bytes) {
    ULONG got = 0;
    BOOL isRead = FALSE;
    {
        const UsbThread::Rest rest;
        isRead = m_readPipe(m_interfaceHandle, m_bulkInPipe, static_cast<UCHAR*>(buffer), bytes, &got, nullptr);
    }
    if (!isRead) {
        Logger().LogWarningMessageFormat(L"[WinUsbDevice::ReceiveData] Read Pipe Error:0x%08x", GetLastError());
        Sleep(kRetryMilliseconds);
    }
    // Whatever the driver says, there was no room for more.
    return std::min(got, bytes);
}

HRESULT WinUsbDevice::ReceiveData(void* buffer, UINT64& count) {
    const UINT64 wanted = count;
    count = 0;
    if (m_loadError != 0) return HRESULT_FROM_WIN32(m_loadError);
    while (count < wanted) {
        const UINT64 missing = wanted - count;
        const auto bytes = static_cast<ULONG>(std::min<UINT64>(missing, std::numeric_limits<ULONG>::max()));
        count += ReadSome(static_cast<BYTE*>(buffer) + count, bytes);
    }
    return 0;
}

void WinUsbDevice::FlushPipes() {
    if (m_loadError != 0) return;
    m_flushPipe(m_interfaceHandle, m_bulkInPipe);
    m_flushPipe(m_interfaceHandle, m_bulkOutPipe);
}

void WinUsbDevice::Close() {
    const auto interfaceHandle = std::exchange(m_interfaceHandle, INVALID_HANDLE_VALUE);
    if (interfaceHandle != INVALID_HANDLE_VALUE && m_loadError == 0) m_free(interfaceHandle);
    const HANDLE fileHandle = std::exchange(m_fileHandle, INVALID_HANDLE_VALUE);
    if (fileHandle != INVALID_HANDLE_VALUE) CloseHandle(fileHandle);
}
