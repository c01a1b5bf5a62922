#include "siblings/coresv/LoggingService.h"
#include "transports/WinUsbException.h"
#include "transports/WinUsbSession.h"

namespace {

// As the wire has it: UTF-16, little-endian, no terminator.
std::span<const BYTE> BytesOf(const CString& text) {
    return {reinterpret_cast<const BYTE*>(text.GetString()), static_cast<size_t>(text.GetLength()) * sizeof(WCHAR)};
}

}  // namespace

UINT WinUsbSession::SendThread(LPVOID session) {
    auto* const self = static_cast<WinUsbSession*>(session);
    // CloseSession ends the thread by its object, which must be there then, whether the thread has ended or not.
    AfxGetThread()->m_bAutoDelete = FALSE;
    for (;;) {
        self->SendCommand(self->TakeCommand());
        if (self->m_sendError == 0) continue;
        PostMessageW(self->m_ownerWindow, kUsbStatusMessage, kUsbLinkFailed, 0);
        self->m_sendIsOver = true;
        SetEvent(s_fileEvent);
        return 0;
    }
}

WinUsbSession::Command WinUsbSession::TakeCommand() {
    // Work is waited for by looking for it all the time: a caller that sets a command owes nobody a signal, so that the
    // event is the replies' alone. The lower priority leaves the processor to whoever has work; where the system knows
    // no priorities, as Wine does not, giving up the rest of the turn does. Neither is a wait.
    SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_BELOW_NORMAL);
    INT32 command = NothingPending;
    while (command == NothingPending) {
        SwitchToThread();
        const CSingleLock lock(&s_commandLock, TRUE);
        command = std::exchange(m_pendingCommand, NothingPending);
    }
    SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_NORMAL);
    return static_cast<Command>(command);
}

void WinUsbSession::SendCommand(Command command) {
    const auto pathBytes = static_cast<DWORD>(m_currentPath.GetLength()) * DWORD{sizeof(WCHAR)};
    switch (command) {
        case SendConnect:
            return BuildAndSend({.command = UsbCmdConnect});
        case SendDirectoryExists:
            return BuildAndSend({.command = UsbCmdDirectoryExists, .count = pathBytes}, BytesOf(m_currentPath));
        case SendDriveFreeSpace:
            return BuildAndSend({.command = UsbCmdDriveFreeSpace});
        case SendOpenFile:
            return BuildAndSend({.command = UsbCmdOpenFile, .count = pathBytes}, BytesOf(m_currentPath));
        case SendWriteFile:
            return BuildAndSend({.command = UsbCmdWriteFile, .handle = m_fileHandle, .count = m_transferSize},
                                {m_writeBuffer, m_transferSize});
        case SendReadFile:
            return BuildAndSend({.command = UsbCmdReadFile, .handle = m_fileHandle, .count = m_transferSize});
        case SendSeekFile:
            return BuildAndSend({.command = UsbCmdSeekFile,
                                 .handle = m_fileHandle,
                                 .position = m_seekPosition,
                                 .method = m_seekMethod});
        case SendCloseFile:
            return BuildAndSend({.command = UsbCmdCloseFile, .handle = m_fileHandle});
        case SendFinish:
            return BuildAndSend({.command = UsbCmdFinish, .count = m_transferSize});
        default:
            Logger().LogWarningMessageFormat(L"[WinUsbSession::SendThread] Not expecting command:0x%08x", command);
    }
}

WinUsbSession::MessageFile WinUsbSession::NewMessageFile() {
    ReusableFile* const spare = m_spareFile.exchange(nullptr);
    return {spare != nullptr ? spare : new ReusableFile, [this](ReusableFile* file) {
                file->SetLength(0);
                delete (file->IsLarge() ? file : m_spareFile.exchange(file));
            }};
}

bool WinUsbSession::WriteMessage(CMemFile& file, const UsbMessage& message, Bytes tail) {
    try {
        const auto head = EncodeUsbMessage(message);
        file.Write(head.data(), static_cast<UINT>(head.size()));
        file.Write(tail.data(), static_cast<UINT>(tail.size()));
        return true;
    } catch (CMemoryException* problem) {
        problem->Delete();
        m_sendError = ERROR_NOT_ENOUGH_MEMORY;
        return false;
    }
}

void WinUsbSession::BuildAndSend(const UsbMessage& message, Bytes tail) {
    const MessageFile file = NewMessageFile();
    if (WriteMessage(*file, message, tail)) SendAsLast(file);
}

void WinUsbSession::SendAsLast(const MessageFile& message) {
    m_lastMessage = message;
    SendDataToWinUsb(message);
}

bool WinUsbSession::SendDataToWinUsb(const MessageFile& message) {
    m_sendError = 0;
    try {
        m_device.SendData(*message);
        return true;
    } catch (CWinUsbException* problem) {
        m_sendError = problem->m_systemError;
        problem->Delete();
        Logger().LogErrorMessageFormat(L"[WinUsbSession::SendDataToWinUsb] Send Error:%d", m_sendError.load());
        return false;
    }
}
