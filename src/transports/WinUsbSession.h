// Files of another machine, over a USB link between two machines that both run this class. Each end can ask and serve:
//
//     WinUsbSession session;
//     session.SetBaseDirectory(L"D:\\Incoming");             // for what the peer asks
//     if (session.Connect(devicePath, true) != 0) return;
//     const HANDLE file = session.OpenDataFile(L"Documents\\list.txt");   // made on the peer
//     if (file != INVALID_HANDLE_VALUE) session.WriteData(file, data, size);
//     session.CloseFile(file);
//     session.Finish(0);
//     session.CloseSession();
//
// Sizes and positions are bytes. Requests may come from any thread; one is in flight at a time, and each waits for the
// peer's answer without a limit. Where no answer can come, because the session is not connected, its link has failed or
// it is finished, a request fails at once. Process-wide objects serve all sessions: one can work at a time, and after
// CloseSession no other can in this process.
#pragma once

#include <afxcoll.h>
#include <afxmt.h>
#include <afxwin.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <span>

#include "files/FileSession.h"
#include "transports/UsbDecoder.h"
#include "transports/UsbLife.h"
#include "transports/WinUsbDevice.h"

// To the owner window, sent. wParam 1: a progress text in lParam, which the receiver ends with free(), or the peer is
// there (lParam 0). wParam 0, lParam 0: the peer has gone.
constexpr UINT kUsbProgressMessage = 0x2622;
// To the owner window, posted: wParam is the status that the peer finished with, or kUsbLinkFailed.
constexpr UINT kUsbStatusMessage = 0x2623;
constexpr DWORD kUsbLinkFailed = 322;

class WinUsbSession final : public FileSession {
public:
    WinUsbSession() = default;
    // Closes a session that was not closed.
    ~WinUsbSession();
    WinUsbSession(const WinUsbSession&) = delete;
    WinUsbSession& operator=(const WinUsbSession&) = delete;

    // Set these before Connect. The window's thread must handle messages while requests run, so it must not be the one
    // that makes them.
    void SetOwnerWindow(HWND window) { m_ownerWindow = window; }
    // Where the peer's relative names lie here.
    void SetBaseDirectory(const CString& directory) { m_baseDirectory = directory; }
    // When not empty, files that the peer opens lie here instead, without the first element of their name, and it is
    // the drive whose free space the peer learns.
    void SetAlternateDirectory(const CString& directory) { m_alternateDirectory = directory; }
    // A name that leads out of its directory, by ".." or by a drive or root at its start, is refused: its file is not
    // opened, and there is no directory of that name. True lets the peer out, so that it reaches whatever this process
    // may write: names with a drive or root then stand for themselves. For peers that are trusted as much as the user.
    void SetMayLeaveDirectories(bool mayLeave) { m_mayLeaveDirectories = mayLeave; }

    // Once in a session: opens the device and starts to serve. With `handshake` also greets the peer and waits until it
    // answers. 0; what WinUsbDevice::Open returned; or ERROR_PIPE_NOT_CONNECTED if the greeting could not be sent.
    DWORD Connect(const CString& devicePath, bool handshake);
    // 1 if the peer has that directory; 0 for a file, for nothing and on failure.
    DWORD DoesDirectoryExist(const CString& path);
    // On the drive that the peer chooses; 0 on failure.
    UINT64 DriveFreeSpace();
    // Makes the file on the peer, empty if it was there, with the directories above it. INVALID_HANDLE_VALUE on
    // failure. The handle is the peer's and good for this session only.
    HANDLE OpenDataFile(const CString& path) override;
    // Reads from the file's position and returns the count. Ask for kUsbChunkBytes at most and never past the end of
    // the file: of more than one chunk each lands at the start of `buffer`, and at the end the call does not return.
    DWORD ReadData(HANDLE handle, void* buffer, DWORD size) override;
    // Throws a CFileException* when the link fails, with the Win32 error as its cause, and with ERROR_DISK_FULL when
    // the peer takes nothing ten times in a row.
    void WriteData(HANDLE handle, const void* buffer, DWORD size) override;
    // `method` as for SetFilePointerEx. Returns the new position; 0 on failure.
    INT64 SeekData(HANDLE handle, INT64 distance, DWORD method) override;
    void CloseFile(HANDLE handle) override;
    // Tells the peer that this side is done, with a status for its owner. No request can follow.
    void Finish(DWORD status);
    // Whether the peer has finished; `status` is 0 before.
    bool GetFinishStatus(DWORD& status);
    // Ends the threads, a request that still waits in another one, the files that the peer has open here, the event and
    // the device. Messages sent to windows of the caller's thread are handled meanwhile. Not to be called from within
    // one of the session's own.
    void CloseSession();

private:
    // What the send thread is to do.
    enum Command : INT32 {
        NothingPending = 1,
        SendConnect,
        SendDirectoryExists,
        SendDriveFreeSpace,
        SendOpenFile,
        SendWriteFile,
        SendReadFile,
        SendSeekFile,
        SendCloseFile,
        SendFinish
    };
    class ReusableFile : public CMemFile {
    public:
        // Empty again. The memory stays, unless it is more than a peer that is this class asks for.
        void Reset() {
            if (m_nBufferSize > kUsbChunkBytes + 2 * m_nGrowBytes) std::free(Detach());
            SetLength(0);
        }
    };
    using MessageFile = std::shared_ptr<ReusableFile>;
    using Bytes = std::span<const BYTE>;

    // Requests (WinUsbSession.cpp). False when no answer can come or none came.
    bool Request(Command command, DWORD reply) { return m_life.BeginRequest(reply) && Ask(command); }
    bool Ask(Command command);

    // Sending (UsbSending.cpp)
    static UINT __cdecl SendThread(LPVOID session);
    Command TakeCommand();
    void SendCommand(Command command);
    MessageFile NewMessageFile();
    // At the file's position. False without memory for it, which ends the session as a message that is not sent does.
    bool WriteMessage(CMemFile& file, const UsbMessage& message, Bytes tail = {});
    void BuildAndSend(const UsbMessage& message, Bytes tail = {});
    void SendAsLast(const MessageFile& message);
    void SendDataToWinUsb(CMemFile& message);
    // For a thread that is about to end for it.
    void TellOfFailure();

    // Receiving (UsbReceiving.cpp)
    static UINT __cdecl ReadThread(LPVOID session);
    enum class After { GoOn, End };
    void ReadMissing(UsbDecoder& decoder);
    void SkipTail(UsbDecoder& decoder);
    After HandleMessage(UsbDecoder& decoder);
    After ReceiveReply(UsbDecoder& decoder);
    void StoreReply(UsbDecoder& decoder);
    void RecoverFromUnexpected(DWORD command);

    // Serving (UsbServing.cpp)
    void ServeRequest(UsbDecoder& decoder);
    void ReceiveOpenFileSend(UsbDecoder& decoder);
    void ServeRead(const UsbMessage& message);
    void ServeWrite(UsbDecoder& decoder);
    void ServeSeek(const UsbMessage& message);
    void ServeClose(const UsbMessage& message);
    void ServeDirectoryExists(UsbDecoder& decoder);
    void ServeFreeSpace();
    void ServeFinish(const UsbMessage& message);
    std::unique_ptr<WCHAR[]> ReceiveName(UsbDecoder& decoder);
    void CloseOpenFiles();
    // Where a name of the peer's lies below the directory. Empty, and logged, if it lies elsewhere.
    CString TargetOf(const CString& directory, LPCWSTR name) const;
    const WCHAR* NameOfOpenFile(UINT64 handle) const;
    static bool CanTransfer(const UsbMessage& message);
    // A handle as it crosses the link.
    static HANDLE AsHandle(UINT64 value) { return reinterpret_cast<HANDLE>(value); }
    void ReportProgress(LPCWSTR format, LPCWSTR name) const;

    static CCriticalSection s_operationLock;  // one request at a time; taken before the command lock, never after it
    static CCriticalSection s_commandLock;
    static CCriticalSection s_finishLock;

    UsbLife m_life;
    INT32 m_pendingCommand = NothingPending;
    WinUsbDevice m_device;
    HWND m_ownerWindow = nullptr;
    CMapPtrToPtr m_openFileNames{10};  // the peer's names on the heap
    CString m_baseDirectory;
    CString m_alternateDirectory;
    bool m_mayLeaveDirectories = false;
    UINT64 m_fileHandle = kUsbNoHandle;
    BYTE* m_readBuffer = nullptr;
    const BYTE* m_writeBuffer = nullptr;
    DWORD m_transferSize = 0;
    DWORD m_directoryExists = 0;
    UINT64 m_freeSpace = 0;
    DWORD m_seekMethod = 0;
    INT64 m_seekPosition = 0;
    // Written by both threads without a lock, so that a reply can take a request's place. Shared, so that whoever is
    // still sending the one before keeps it.
    std::atomic<MessageFile> m_lastMessage;
    ReusableFile m_received;  // what the peer writes; empty but while that is done
    BYTE m_finishReceived = 0;
    DWORD m_finishStatus = 0;
    CString m_reservedPath;
    CString m_currentPath;
};
