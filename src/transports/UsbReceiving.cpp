#include "siblings/coresv/LoggingService.h"
#include "transports/WinUsbSession.h"

UINT WinUsbSession::ReadThread(LPVOID session) {
    auto* const self = static_cast<WinUsbSession*>(session);
    for (;;) {
        UsbDecoder decoder;
        self->ReadMissing(decoder);
        const After after = self->HandleMessage(decoder);
        if (const DWORD error = self->m_life.Error(); error != 0) {
            // A caller that waits for a reply waits on: the peer's answer was not what failed.
            self->TellOfFailure();
            return error;
        }
        if (after == After::End) return 0;
    }
}

void WinUsbSession::ReadMissing(UsbDecoder& decoder) {
    while (!decoder.Missing().empty()) {
        const auto missing = decoder.Missing();
        decoder.Took(m_device.ReadSome(missing.data(), static_cast<ULONG>(missing.size())));
    }
}

void WinUsbSession::SkipTail(UsbDecoder& decoder) {
    decoder.SkipTail();
    ReadMissing(decoder);
}

WinUsbSession::After WinUsbSession::HandleMessage(UsbDecoder& decoder) {
    const DWORD command = decoder.Message().command;
    if (!decoder.IsKnown()) {
        RecoverFromUnexpected(command);
    } else if (command == UsbCmdDisconnected) {
        m_life.EndRequests();  // before anybody hears of it
        SendMessageW(m_ownerWindow, kUsbProgressMessage, 0, 0);
        return After::End;
    } else if (command == UsbCmdResendLast) {
        Logger().LogTraceMessage(L"[WinUsbSession::ReadThread] Resending last command");
        if (const MessageFile message = m_lastMessage) SendDataToWinUsb(*message);
    } else if (!IsUsbReply(command)) {
        ServeRequest(decoder);
    } else {
        return ReceiveReply(decoder);
    }
    return After::GoOn;
}

WinUsbSession::After WinUsbSession::ReceiveReply(UsbDecoder& decoder) {
    const DWORD command = decoder.Message().command;
    if (!m_life.BeginReply(command)) {
        Logger().LogErrorMessageFormat(L"[WinUsbSession::ReadThread] Nobody asked for reply:0x%08x", command);
        SkipTail(decoder);
        return After::GoOn;
    }
    if (UsbMessageFits(decoder.Message(), m_transferSize)) {
        StoreReply(decoder);
    } else {
        Logger().LogErrorMessageFormat(L"[WinUsbSession::ReadThread] Reply:0x%08x tells of %u bytes, %u were asked for",
                                       command, decoder.Message().count, m_transferSize);
        SkipTail(decoder);
        m_transferSize = 0;
    }
    const bool isLast = command == UsbCmdFinishReply;
    if (isLast) m_life.EndRequests();  // before the caller can go on and ask for more
    m_life.EndReply();
    return isLast ? After::End : After::GoOn;
}

void WinUsbSession::StoreReply(UsbDecoder& decoder) {
    const UsbMessage& message = decoder.Message();
    switch (message.command) {
        case UsbCmdConnectReply:
            SendMessageW(m_ownerWindow, kUsbProgressMessage, 1, 0);
            break;
        case UsbCmdOpenFileReply:
            m_fileHandle = message.handle;
            break;
        case UsbCmdReadFileReply:
            decoder.KeepTail({m_readBuffer, message.count});
            ReadMissing(decoder);
            m_transferSize = message.count;
            break;
        case UsbCmdWriteFileReply:
            m_transferSize = message.count;
            break;
        case UsbCmdSeekFileReply:
            m_seekPosition = message.position;
            break;
        case UsbCmdDirectoryExistsReply:
            m_directoryExists = message.count;
            break;
        case UsbCmdDriveFreeSpaceReply:
            m_freeSpace = message.freeBytes;
            break;
        default:  // the others say it all by being there
            break;
    }
}

void WinUsbSession::RecoverFromUnexpected(DWORD command) {
    Logger().LogWarningMessageFormat(L"[WinUsbSession::ReadThread] Not expecting command:%08x", command);
    m_device.FlushPipes();
    // This takes the last message's place like any other. So if the peer cannot read it and asks for it again, it is
    // this question that it gets, not the message before; the protocol knows no way out of that.
    BuildAndSend({.command = UsbCmdResendLast});
}
