#include "transports/WinUsbSession.h"

#include <algorithm>
#include <utility>

#include "siblings/coresv/LogMethodEntryExit.h"

namespace {

constexpr DWORD kThreadsEndMilliseconds = 100;
constexpr DWORD kOwnEndMilliseconds = 5000;

HANDLE AsHandle(UINT64 value) {
    return reinterpret_cast<HANDLE>(value);
}

UINT64 AsNumber(HANDLE handle) {
    return reinterpret_cast<UINT64>(handle);
}

}  // namespace

CCriticalSection WinUsbSession::s_operationLock;
CCriticalSection WinUsbSession::s_commandLock;
CCriticalSection WinUsbSession::s_finishLock;
HANDLE WinUsbSession::s_fileEvent = CreateEventW(nullptr, TRUE, FALSE, L"file_event");

WinUsbSession::~WinUsbSession() {
    if (m_sendThread != nullptr) CloseSession();
    delete m_readThread;
    for (POSITION place = m_openFileNames.GetStartPosition(); place != nullptr;) {
        void* handle = nullptr;
        void* name = nullptr;
        m_openFileNames.GetNextAssoc(place, handle, name);
        delete[] static_cast<WCHAR*>(name);
    }
    m_lastMessage = MessageFile();
    delete m_spareFile;
}

DWORD WinUsbSession::Connect(const CString& devicePath, bool handshake) {
    const CLogMethodEntryExit log(L"WinUsbSession::Connect");
    Logger().LogTraceMessageFormat(L"Device:'%s'", devicePath.GetString());
    if (const HRESULT result = m_device.Open(devicePath); result != 0) return static_cast<DWORD>(result);
    m_sendThread = AfxBeginThread(SendThread, this);
    // Not without the send thread, by which the destructor knows of a session to be closed.
    if (m_sendThread != nullptr) m_readThread = AfxBeginThread(ReadThread, this);
    if (m_readThread == nullptr) return ERROR_NOT_ENOUGH_MEMORY;
    if (!handshake) return 0;
    const CSingleLock lock(&s_operationLock, TRUE);
    if (Request(SendConnect, UsbCmdConnectReply)) return 0;
    EndThread(*m_readThread, m_readIsOver);
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
    for (DWORD done = 0; done < size;) {
        m_fileHandle = AsNumber(handle);
        m_writeBuffer = static_cast<const BYTE*>(buffer) + done;
        const DWORD chunk = std::min<DWORD>(size - done, kUsbChunkBytes);
        m_transferSize = chunk;
        if (!Request(SendWriteFile, UsbCmdWriteFileReply)) {
            const DWORD error = m_sendError;
            AfxThrowFileException(static_cast<int>(error != 0 ? error : ERROR_PIPE_NOT_CONNECTED));
        }
        if (m_transferSize != chunk) {
            Logger().LogWarningMessageFormat(L"[WinUsbSession::WriteData] Write Incomplete! %d of %d bytes written!",
                                             m_transferSize, chunk);
        }
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
    if (!BeginRequest()) return;
    Logger().LogTraceMessageFormat(L"[WinUsbSession::CloseFile] Closing handle %p", handle);
    AwaitReply(SendCloseFile, UsbCmdCloseFileReply);
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
    const std::unique_ptr<CWinThread> sendThread(m_sendThread);
    if (m_sendThread != nullptr) {
        EndThread(*m_sendThread, m_sendIsOver);
        m_sendThread = nullptr;
    }
    if (m_readThread != nullptr) {
        EndThread(*m_readThread, m_readIsOver);
        // The send thread's member again: what shows that a session is over is that member, and the read thread's stays
        // set, so that its object lives as long as the session.
        m_sendThread = nullptr;
    }
    Sleep(kThreadsEndMilliseconds);
    CloseHandle(std::exchange(s_fileEvent, nullptr));
    m_device.Close();
}

void WinUsbSession::EndThread(const CWinThread& thread, bool endsByItself) {
    // One that is on its way out may hold the loader's lock, and ended there would keep it: the process could not exit.
    if (endsByItself) WaitForSingleObject(thread.m_hThread, kOwnEndMilliseconds);
    TerminateThread(thread.m_hThread, 0);
}

bool WinUsbSession::BeginRequest() {
    if (m_sendThread == nullptr || m_sendIsOver || m_readIsOver) return false;
    ResetEvent(s_fileEvent);
    return true;
}

bool WinUsbSession::AwaitReply(Command command, DWORD reply) {
    m_awaitedReply = reply;
    {
        const CSingleLock lock(&s_commandLock, TRUE);
        m_pendingCommand = command;
    }
    WaitForSingleObject(s_fileEvent, INFINITE);
    // The event is also the send thread's on failure. A reply that is arriving all the same fills our caller's buffer,
    // so it is waited for.
    DWORD expected = reply;
    while (!m_awaitedReply.compare_exchange_strong(expected, 0)) {
        if (expected == 0) return true;
        expected = reply;
        Sleep(1);
    }
    return false;
}
