#include "siblings/coresv/LoggingService.h"
#include "transports/WinUsbException.h"
#include "transports/WinUsbSession.h"

namespace {

constexpr ULONGLONG kBriefMilliseconds = 20;

// As the wire has it: UTF-16, little-endian, no terminator.
std::span<const BYTE> BytesOf(const CString& text) {
    return {reinterpret_cast<const BYTE*>(text.GetString()), static_cast<size_t>(text.GetLength()) * sizeof(WCHAR)};
}

}  // namespace

UINT WinUsbSession::SendThread(LPVOID session) {
    auto* const self = static_cast<WinUsbSession*>(session);
    while (self->m_life.Error() == 0) {
        const Command command = self->TakeCommand();
        if (UsbThread::IsThisToEnd()) return 0;
        self->SendCommand(command);
    }
    self->TellOfFailure();
    self->m_life.EndSending();
    return 0;
}

WinUsbSession::Command WinUsbSession::TakeCommand() {
    // Work is waited for by looking for it all the time: a caller that sets a command owes nobody a signal, so that the
    // event is the replies' alone. The lower priority leaves the processor to whoever has work; where the system knows
    // no priorities, as Wine does not, giving up the rest of the turn does. Neither is a wait. Between the requests of
    // a transfer the priority stays, since to change it twice for each costs as much as a small request.
    const ULONGLONG start = GetTickCount64();
    bool isLow = false;
    INT32 command = NothingPending;
    while (command == NothingPending && !UsbThread::IsThisToEnd()) {
        if (!isLow && GetTickCount64() - start > kBriefMilliseconds) {
            isLow = true;
            SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_BELOW_NORMAL);
        }
        SwitchToThread();
        const CSingleLock lock(&s_commandLock, TRUE);
        command = std::exchange(m_pendingCommand, NothingPending);
    }
    if (isLow) SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_NORMAL);
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
    // Memory that is new to the process or long out of use costs more than what it is filled with, so the message
    // before gives its own, unless somebody is sending it.
    MessageFile file = m_lastMessage.exchange(nullptr);
    if (file == nullptr || file.use_count() != 1) return std::make_shared<ReusableFile>();
    std::atomic_thread_fence(std::memory_order_acquire);  // behind what the last user did with it
    file->Reset();
    return file;
}

bool WinUsbSession::WriteMessage(CMemFile& file, const UsbMessage& message, Bytes tail) {
    try {
        const auto head = EncodeUsbMessage(message);
        file.Write(head.data(), static_cast<UINT>(head.size()));
        file.Write(tail.data(), static_cast<UINT>(tail.size()));
        return true;
    } catch (CMemoryException* problem) {
        problem->Delete();
        m_life.Fail(ERROR_NOT_ENOUGH_MEMORY);
        return false;
    }
}

void WinUsbSession::BuildAndSend(const UsbMessage& message, Bytes tail) {
    const MessageFile file = NewMessageFile();
    if (WriteMessage(*file, message, tail)) SendAsLast(file);
}

void WinUsbSession::SendAsLast(const MessageFile& message) {
    m_lastMessage = message;
    SendDataToWinUsb(*message);
}

void WinUsbSession::SendDataToWinUsb(CMemFile& message) {
    try {
        m_device.SendData(message);
    } catch (CWinUsbException* problem) {
        Logger().LogErrorMessageFormat(L"[WinUsbSession::SendDataToWinUsb] Send Error:%d", problem->m_systemError);
        m_life.Fail(problem->m_systemError);
        problem->Delete();
    }
}

void WinUsbSession::TellOfFailure() {
    if (m_life.IsFirstToTell()) PostMessageW(m_ownerWindow, kUsbStatusMessage, kUsbLinkFailed, 0);
}
