#include "transports/WinUsbDevice.h"

#include <gtest/gtest.h>

#include "peers/FakeWinUsb.h"
#include "support/LogCapture.h"
#include "support/Throws.h"
#include "transports/WinUsbException.h"

namespace {

DWORD ErrorOfSending(WinUsbDevice& device) {
    CMemFile file;
    file.Write("hello", 5);
    DWORD error = 0;
    Throws<CWinUsbException>([&] { device.SendData(file); },
                             [&](const CWinUsbException& problem) { error = problem.m_systemError; });
    return error;
}

}  // namespace

TEST(WinUsbDevice, UsesThePipesUpToOneThatItHasNoUseFor) {
    FakeWinUsb usb;
    const WINUSB_PIPE_INFORMATION in{UsbdPipeTypeBulk, 0x81, 512, 0}, out{UsbdPipeTypeBulk, 0x05, 512, 0};
    const WINUSB_PIPE_INFORMATION interrupt{UsbdPipeTypeInterrupt, 0x83, 8, 0}, control{UsbdPipeTypeControl, 0, 8, 0};
    const struct {
        std::vector<WINUSB_PIPE_INFORMATION> pipes;
        const char* resets;
        bool hasSettings = true;
    } cases[] = {
        {{interrupt, in, out}, "reset 81;reset 05;"},
        {{in, control, out}, "reset 81;reset 00;"},
        {{{UsbdPipeTypeBulk, 0x87, 512, 0}, in}, "reset 81;reset 00;"},
        {{in}, "reset 00;reset 00;", false},
    };
    for (const auto& c : cases) {
        usb.pipes = c.pipes;
        usb.hasSettings = c.hasSettings;
        usb.calls.clear();
        WinUsbDevice device;
        EXPECT_EQ(device.Open(usb.Device()), 0);
        EXPECT_EQ(usb.calls, c.resets);
        device.Close();
    }
}

TEST(WinUsbDevice, SendsAFileAsOneTransferAndReadsUntilAllHasCome) {
    FakeWinUsb usb;
    WinUsbDevice device;
    {
        const CFile other(usb.Device(), CFile::modeWrite | CFile::shareDenyNone);
        EXPECT_EQ(device.Open(usb.Device()), 0) << "though somebody else has it open";
    }
    usb.calls.clear();
    int transfers = 0;
    usb.onCable[0] = [&](std::string&) { ++transfers; };
    CMemFile file(4);
    device.SendData(file);
    file.Write("hello", 5);
    file.Seek(3, CFile::begin);
    device.SendData(file);
    EXPECT_EQ(usb.Take(5), "68656c6c6f");
    EXPECT_EQ(transfers, 1);
    usb.mostBytes = 2;
    usb.failedReads = 2;
    usb.Put("68656c6c6f");
    const LogCapture log;
    char buffer[6] = {};
    UINT64 count = 5;
    EXPECT_EQ(device.ReceiveData(buffer, count), 0);
    EXPECT_EQ(count, 5U);
    EXPECT_STREQ(buffer, "hello");
    const std::wstring warning = L"[WinUsbDevice::ReceiveData] Read Pipe Error:0x00000079";
    EXPECT_EQ(log.Messages(LogLevel::Warning), (std::vector<std::wstring>{warning, warning}));
    usb.writeError = ERROR_GEN_FAILURE;
    EXPECT_EQ(ErrorOfSending(device), DWORD{ERROR_GEN_FAILURE});
    EXPECT_TRUE(log.Contains(LogLevel::Error, L"[WinUsbDevice::SendData] WinUsb_WritePipe failed! Error:31"));
    device.FlushPipes();
    device.Close();
    device.Close();
    EXPECT_EQ(usb.calls, "flush 81;flush 02;free 00;");
    EXPECT_TRUE(DeleteFileW(usb.Device())) << "closed";
}

TEST(WinUsbDevice, TellsWhyItDoesNotOpenAndFailsInEachOperationsOwnWay) {
    FakeWinUsb usb;
    EXPECT_EQ(WinUsbDevice().Open(usb.Device() + L"-none"), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    usb.openError = ERROR_BAD_COMMAND;
    WinUsbDevice refused;
    EXPECT_EQ(refused.Open(usb.Device()), HRESULT_FROM_WIN32(ERROR_BAD_COMMAND));
    EXPECT_TRUE(DeleteFileW(usb.Device())) << "closed";
    // The next handle has the number that the file's had.
    const HANDLE next = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    refused.Close();
    EXPECT_TRUE(CloseHandle(next)) << "closed for a second time";
    for (const char* name : {"WinUsb_Initialize", "WinUsb_ReadPipe", "WinUsb_FlushPipe", "winusb.dll"}) {
        const DWORD error = name == std::string_view("winusb.dll") ? ERROR_MOD_NOT_FOUND : ERROR_PROC_NOT_FOUND;
        usb.missing = name;
        usb.calls.clear();
        WinUsbDevice device;
        EXPECT_EQ(device.Open(usb.Device()), HRESULT_FROM_WIN32(error));
        EXPECT_EQ(ErrorOfSending(device), error);
        char buffer[4];
        UINT64 count = 4;
        EXPECT_EQ(device.ReceiveData(buffer, count), HRESULT_FROM_WIN32(error));
        EXPECT_EQ(count, 0U);
        device.FlushPipes();
        device.Close();
        EXPECT_EQ(usb.calls, "");
    }
}
