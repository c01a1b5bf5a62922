#include "files/LongPathFile.h"
#include "files/PathHelper.h"
#include "siblings/coresv/LoggingService.h"
#include "transports/UsbName.h"
#include "transports/WinUsbSession.h"

namespace {

constexpr size_t kNameChars = kUsbNameBytes / sizeof(WCHAR);

// At the file's end; null without memory for them.
BYTE* RoomFor(DWORD bytes, CMemFile& file) {
    void* start = nullptr;
    void* stop = nullptr;
    try {
        file.GetBufferPtr(CFile::bufferWrite, bytes, &start, &stop);
    } catch (CMemoryException* problem) {
        problem->Delete();
    }
    return static_cast<BYTE*>(start);
}

}  // namespace

void WinUsbSession::ServeRequest(UsbDecoder& decoder) {
    const UsbMessage& message = decoder.Message();
    switch (message.command) {
        case UsbCmdConnect:
            SendMessageW(m_ownerWindow, kUsbProgressMessage, 1, 0);
            return BuildAndSend({.command = UsbCmdConnectReply});
        case UsbCmdOpenFile:
            return ReceiveOpenFileSend(decoder);
        case UsbCmdReadFile:
            return ServeRead(message);
        case UsbCmdWriteFile:
            return ServeWrite(decoder);
        case UsbCmdSeekFile:
            return ServeSeek(message);
        case UsbCmdCloseFile:
            return ServeClose(message);
        case UsbCmdDirectoryExists:
            return ServeDirectoryExists(decoder);
        case UsbCmdDriveFreeSpace:
            return ServeFreeSpace();
        case UsbCmdFinish:
            return ServeFinish(message);
        default:
            break;
    }
}

std::unique_ptr<WCHAR[]> WinUsbSession::ReceiveName(UsbDecoder& decoder) {
    const UsbMessage& message = decoder.Message();
    if (!UsbMessageFits(message, 0)) {
        Logger().LogErrorMessageFormat(L"[WinUsbSession::ReadThread] Command:0x%08x has a name of %u bytes",
                                       message.command, message.count);
        SkipTail(decoder);
        return nullptr;
    }
    // One more than a name may have, so that the longest is terminated, too.
    auto name = std::make_unique<WCHAR[]>(kNameChars + 1);
    decoder.KeepTail({reinterpret_cast<BYTE*>(name.get()), message.count});
    ReadMissing(decoder);
    return name;
}

CString WinUsbSession::TargetOf(const CString& directory, LPCWSTR name) const {
    if (!m_mayLeaveDirectories && UsbNameLeavesDirectory(name)) {
        Logger().LogErrorMessageFormat(L"[WinUsbSession::ReadThread] The name '%s' leaves the directory '%s'", name,
                                       directory.GetString());
        return CString();
    }
    if (directory.IsEmpty() || UsbNameHasDrive(name)) return name;
    return CPathHelper::CombinePath(directory, name);
}

void WinUsbSession::ReceiveOpenFileSend(UsbDecoder& decoder) {
    auto name = ReceiveName(decoder);
    CString target;
    if (name != nullptr && m_alternateDirectory.IsEmpty()) {
        target = TargetOf(m_baseDirectory, name.get());
    } else if (name != nullptr) {
        target = TargetOf(m_alternateDirectory, UsbNameBelowTop(name.get()).data());
    }
    if (target.IsEmpty()) return BuildAndSend({.command = UsbCmdOpenFileReply, .handle = kUsbNoHandle});
    const CString parent = CPathHelper::GetParentPath(target);
    const DWORD attributes = LongPath::GetFileAttributes(parent);
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        CPathHelper::CreateDirectoryTree(parent);
    }
    ReportProgress(L"Opening '%s'...", name.get());
    const HANDLE file = LongPath::CreateFile(target, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                             CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL);
    if (file == INVALID_HANDLE_VALUE) {
        Logger().LogErrorMessageFormat(L"[WinUsbSession::ReceiveOpenFileSend] Failed to open file '%s' error: %d",
                                       target.GetString(), GetLastError());
    } else {
        Logger().LogTraceMessageFormat(L"[WinUsbSession::ReceiveOpenFileSend] Opened file '%s' handle %p", name.get(),
                                       file);
    }
    // A failed opening is kept under the invalid handle, so that what the peer does with it is still told by name.
    void* previous = nullptr;
    if (m_openFileNames.Lookup(file, previous)) delete[] static_cast<WCHAR*>(previous);
    m_openFileNames.SetAt(file, name.release());
    BuildAndSend({.command = UsbCmdOpenFileReply, .handle = reinterpret_cast<UINT64>(file)});
}

void WinUsbSession::ServeRead(const UsbMessage& message) {
    const WCHAR* const name = NameOfOpenFile(message.handle);
    if (name == nullptr || !CanTransfer(message)) return BuildAndSend({.command = UsbCmdReadFileReply});
    ReportProgress(L"Reading from '%s'...", name);
    // The data are read to where they are sent from, and the count in front of them is known only then.
    const MessageFile file = NewMessageFile();
    if (!WriteMessage(*file, {.command = UsbCmdReadFileReply})) return;
    DWORD count = 0;
    BYTE* const data = RoomFor(message.count, *file);
    if (data != nullptr && ReadFile(AsHandle(message.handle), data, message.count, &count, nullptr)) {
        file->GetBufferPtr(CFile::bufferCommit, count, nullptr, nullptr);
        file->SeekToBegin();
        WriteMessage(*file, {.command = UsbCmdReadFileReply, .count = count});
    }
    SendAsLast(file);
}

void WinUsbSession::ServeWrite(UsbDecoder& decoder) {
    const UsbMessage& message = decoder.Message();
    const WCHAR* const name = NameOfOpenFile(message.handle);
    DWORD count = 0;
    if (name != nullptr) ReportProgress(L"Writing to '%s'...", name);
    const bool isTaken = name != nullptr && message.count != 0 && CanTransfer(message);
    if (BYTE* const data = isTaken ? RoomFor(message.count, m_received) : nullptr) {
        decoder.KeepTail({data, message.count});
        ReadMissing(decoder);
        if (!WriteFile(AsHandle(message.handle), data, message.count, &count, nullptr)) count = 0;
    } else {
        SkipTail(decoder);
    }
    m_received.Reset();
    BuildAndSend({.command = UsbCmdWriteFileReply, .count = count});
}

void WinUsbSession::ServeSeek(const UsbMessage& message) {
    LARGE_INTEGER position{};
    LARGE_INTEGER distance;
    distance.QuadPart = message.position;
    if (NameOfOpenFile(message.handle) == nullptr ||
        !SetFilePointerEx(AsHandle(message.handle), distance, &position, message.method)) {
        position.QuadPart = 0;
    }
    BuildAndSend({.command = UsbCmdSeekFileReply, .position = position.QuadPart});
}

void WinUsbSession::ServeClose(const UsbMessage& message) {
    if (const WCHAR* const name = NameOfOpenFile(message.handle)) {
        CloseHandle(AsHandle(message.handle));
        ReportProgress(L"Closing '%s'...", name);
        m_openFileNames.RemoveKey(AsHandle(message.handle));
        delete[] name;
    }
    BuildAndSend({.command = UsbCmdCloseFileReply});
}

void WinUsbSession::ServeDirectoryExists(UsbDecoder& decoder) {
    DWORD exists = 0;
    if (const auto path = ReceiveName(decoder)) {
        const CString target = TargetOf(m_baseDirectory, path.get());
        const DWORD attributes = target.IsEmpty() ? INVALID_FILE_ATTRIBUTES : LongPath::GetFileAttributes(target);
        exists = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    }
    BuildAndSend({.command = UsbCmdDirectoryExistsReply, .count = exists});
}

void WinUsbSession::ServeFreeSpace() {
    ULARGE_INTEGER available{};
    const CString& directory = m_alternateDirectory.IsEmpty() ? m_baseDirectory : m_alternateDirectory;
    if (!GetDiskFreeSpaceExW(directory, &available, nullptr, nullptr)) available.QuadPart = 0;
    BuildAndSend({.command = UsbCmdDriveFreeSpaceReply, .freeBytes = available.QuadPart});
}

void WinUsbSession::ServeFinish(const UsbMessage& message) {
    PostMessageW(m_ownerWindow, kUsbStatusMessage, message.count, 0);
    {
        const CSingleLock lock(&s_finishLock, TRUE);
        m_finishReceived = 1;
        m_finishStatus = message.count;
    }
    BuildAndSend({.command = UsbCmdFinishReply});
}

void WinUsbSession::CloseOpenFiles() {
    while (POSITION place = m_openFileNames.GetStartPosition()) {
        void* handle = nullptr;
        void* name = nullptr;
        m_openFileNames.GetNextAssoc(place, handle, name);
        if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
        m_openFileNames.RemoveKey(handle);
        delete[] static_cast<WCHAR*>(name);
    }
}

const WCHAR* WinUsbSession::NameOfOpenFile(UINT64 handle) const {
    void* name = nullptr;
    if (!m_openFileNames.Lookup(AsHandle(handle), name)) {
        // The number may well be a handle of this process that is no business of the peer's.
        Logger().LogErrorMessageFormat(L"[WinUsbSession::ReadThread] The peer has no open file with handle %p",
                                       AsHandle(handle));
    }
    return static_cast<const WCHAR*>(name);
}

bool WinUsbSession::CanTransfer(const UsbMessage& message) {
    if (UsbMessageFits(message, 0)) return true;
    Logger().LogErrorMessageFormat(L"[WinUsbSession::ReadThread] Command:0x%08x is for %u bytes", message.command,
                                   message.count);
    return false;
}

void WinUsbSession::ReportProgress(LPCWSTR format, LPCWSTR name) const {
    if (m_ownerWindow == nullptr) return;
    CString text;
    text.Format(format, name);
    SendMessageW(m_ownerWindow, kUsbProgressMessage, 1, reinterpret_cast<LPARAM>(_wcsdup(text)));
}  // NOLINT(clang-analyzer-unix.Malloc): the window frees the text
