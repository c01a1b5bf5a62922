#include "transports/WinUsbSession.h"

#include <algorithm>
#include <utility>

#include "siblings/coresv/LogMethodEntryExit.h"

namespace {

// A peer that takes nothing so often has no room for it.
constexpr int kMostAnswersOfNothing = 10;

UINT64 AsNumber(HANDLE handle) {
    return reinterpret_cast<UINT64>(handle);
}

}  // namespace

CCriticalSection WinUsbSession::s_operationLock;
CCriticalSection WinUsbSession::s_commandLock;
CCriticalSection WinUsbSession::s_finishLock;

WinUsbSession::~WinUsbSession() {
    if (m_life.IsToBeClosed()) CloseSession();
}

DWORD WinUsbSession::Connect(const CString& devicePath, bool handshake) {
    const CLogMethodEntryExit log(L"WinUsbSession::Connect");
    Logger().LogTraceMessageFormat(L"Device:'%s'", devicePath.GetString());
    if (const HRESULT result = m_device.Open(devicePath); result != 0) return static_cast<DWORD>(result);
    if (!m_life.Start(SendThread, ReadThread, this)) return ERROR_NOT_ENOUGH_MEMORY;
    if (!handshake) return 0;
    const CSingleLock lock(&s_operationLock, TRUE);
    if (Request(SendConnect, UsbCmdConnectReply)) return 0;
    m_life.EndReading();
    return ERROR_PIPE_NOT_CONNECTED;
}

DWORD WinUsbSession::DoesDirectoryExist(const CString& path) {
    const CSingleLock lock(&s_operationLock, TRUE);
    m_currentPath = path;
    if (!Request(SendDirectoryExists, UsbCmdDirectoryExistsReply)) m_directoryExists = 0;
    Logger().LogTraceMessageFormat(L"[WinUsbSession::DoesDirectoryExist] Directory:'%s' Exists:'%s'", path.GetString(),
                                   m_directoryExists != 0 ? L"yes" : L"no");
    return m_directoryExists;
}

UINT64 WinUsbSession::DriveFreeSpace() {
    const CLogMethodEntryExit log(L"WinUsbSession::DriveFreeSpace");
    const CSingleLock lock(&s_operationLock, TRUE);
    if (!Request(SendDriveFreeSpace, UsbCmdDriveFreeSpaceReply)) m_freeSpace = 0;
    // The log's text is fixed, "%u" and "ll": it shows the lower half of the number.
    Logger().LogTraceMessageFormat(L"[WinUsbSession::DriveFreeSpace] Free Available Space: %ull bytes free",
                                   static_cast<DWORD>(m_freeSpace));
    return m_freeSpace;
}

HANDLE WinUsbSession::OpenDataFile(const CString& path) {
    const CLogMethodEntryExit log(L"WinUsbSession::OpenDataFile");
    const CSingleLock lock(&s_operationLock, TRUE);
    m_currentPath = path;
    if (!Request(SendOpenFile, UsbCmdOpenFileReply)) m_fileHandle = kUsbNoHandle;
    if (m_fileHandle == kUsbNoHandle) {
        const DWORD error = GetLastError();
        Logger().LogErrorMessageFormat(L"[WinUsbSession::OpenDataFile] File '%s' could not be opened error: %d(0x%08x)",
                                       path.GetString(), error, error);
    } else {
        Logger().LogTraceMessageFormat(L"[WinUsbSession::OpenDataFile] File '%s' opened handle: %p", path.GetString(),
                                       AsHandle(m_fileHandle));
    }
    return AsHandle(m_fileHandle);
}

DWORD WinUsbSession::ReadData(HANDLE handle, void* buffer, DWORD size) {
    DWORD total = 0;
    for (DWORD remaining = size; remaining != 0;) {
        const CSingleLock lock(&s_operationLock, TRUE);
        m_fileHandle = AsNumber(handle);
        // Not moved by what has been read: peers and callers know that a read is one chunk, and a buffer may be no
        // larger than that.
        m_readBuffer = static_cast<BYTE*>(buffer);
        const DWORD chunk = std::min<DWORD>(remaining, kUsbChunkBytes);
        m_transferSize = chunk;
        const bool answered = Request(SendReadFile, UsbCmdReadFileReply);
        if (!answered) m_transferSize = 0;
        if (m_transferSize != chunk) {
            Logger().LogErrorMessageFormat(L"[WinUsbSession::ReadData] Read Failed! %d of %d bytes read!",
                                           m_transferSize, chunk);
        }
        total += m_transferSize;
        remaining -= m_transferSize;
        if (!answered) break;
    }
    return total;
}

void WinUsbSession::WriteData(HANDLE handle, const void* buffer, DWORD size) {
    const CSingleLock lock(&s_operationLock, TRUE);
    int answersOfNothing = 0;
    for (DWORD done = 0; done < size;) {
        m_fileHandle = AsNumber(handle);
        m_writeBuffer = static_cast<const BYTE*>(buffer) + done;
        const DWORD chunk = std::min<DWORD>(size - done, kUsbChunkBytes);
        m_transferSize = chunk;
        if (!Request(SendWriteFile, UsbCmdWriteFileReply)) {
            const DWORD error = m_life.Error();
            AfxThrowFileException(static_cast<int>(error != 0 ? error : ERROR_PIPE_NOT_CONNECTED));
        }
        if (m_transferSize != chunk) {
            Logger().LogWarningMessageFormat(L"[WinUsbSession::WriteData] Write Incomplete! %d of %d bytes written!",
                                             m_transferSize, chunk);
        }
        answersOfNothing = m_transferSize == 0 ? answersOfNothing + 1 : 0;
        if (answersOfNothing == kMostAnswersOfNothing) AfxThrowFileException(ERROR_DISK_FULL);
        done += m_transferSize;
    }
}

INT64 WinUsbSession::SeekData(HANDLE handle, INT64 distance, DWORD method) {
    const CSingleLock lock(&s_operationLock, TRUE);
    m_fileHandle = AsNumber(handle);
    m_seekPosition = distance;
    m_seekMethod = method;
    return Request(SendSeekFile, UsbCmdSeekFileReply) ? m_seekPosition : 0;
}

void WinUsbSession::CloseFile(HANDLE handle) {
    const CSingleLock lock(&s_operationLock, TRUE);
    m_fileHandle = AsNumber(handle);
    if (!m_life.BeginRequest(UsbCmdCloseFileReply)) return;
    Logger().LogTraceMessageFormat(L"[WinUsbSession::CloseFile] Closing handle %p", handle);
    Ask(SendCloseFile);
}

void WinUsbSession::Finish(DWORD status) {
    const CLogMethodEntryExit log(L"WinUsbSession::Finish");
    const CSingleLock lock(&s_operationLock, TRUE);
    Logger().LogTraceMessageFormat(L"Finishing session status %d", status);
    m_transferSize = status;
    Request(SendFinish, UsbCmdFinishReply);
}

bool WinUsbSession::GetFinishStatus(DWORD& status) {
    const CSingleLock lock(&s_finishLock, TRUE);
    status = m_finishStatus;
    return m_finishReceived != 0;
}

void WinUsbSession::CloseSession() {
    Logger().LogTraceMessage(L"[WinUsbSession::CloseSession] Closing");
    m_life.Close();
    CloseOpenFiles();
    m_device.Close();
}

bool WinUsbSession::Ask(Command command) {
    {
        const CSingleLock lock(&s_commandLock, TRUE);
        m_pendingCommand = command;
    }
    // The sending thread looks for it at once, even on our processor, instead of after our way into the wait.
    SwitchToThread();
    return m_life.AwaitReply();
}
