#include "transports/WinUsbDevice.h"

#include <gtest/gtest.h>
#include <memory>

#include "support/LogCapture.h"
#include "support/Throws.h"
#include "transports/FakeWinUsb.h"
#include "transports/WinUsbException.h"

namespace {

class WinUsbDeviceTest : public testing::Test {
protected:
    std::unique_ptr<WinUsbDevice> OpenDevice() {
        auto device = std::make_unique<WinUsbDevice>();
        EXPECT_EQ(device->Open(usb.Device()), 0);
        return device;
    }
    static DWORD ErrorOfSending(WinUsbDevice& device) {
        CMemFile file;
        file.Write("hello", 5);
        DWORD error = 0;
        Throws<CWinUsbException>([&] { device.SendData(file); },
                                 [&](const CWinUsbException& problem) { error = problem.m_systemError; });
        return error;
    }

    FakeWinUsb usb;
};

}  // namespace

TEST_F(WinUsbDeviceTest, UsesThePipesUpToOneThatItHasNoUseFor) {
    const struct {
        std::vector<WINUSB_PIPE_INFORMATION> pipes;
        const char* resets;
        bool hasSettings;
    } cases[] = {
        {{{UsbdPipeTypeInterrupt, 0x83, 8, 0}, {UsbdPipeTypeBulk, 0x84, 512, 0}, {UsbdPipeTypeBulk, 0x05, 512, 0}},
         "reset 84;reset 05;",
         true},
        {{{UsbdPipeTypeBulk, 0x81, 512, 0}, {UsbdPipeTypeControl, 0x00, 8, 0}, {UsbdPipeTypeBulk, 0x02, 512, 0}},
         "reset 81;reset 00;",
         true},
        {{{UsbdPipeTypeBulk, 0x81, 512, 0}, {UsbdPipeTypeBulk, 0x87, 512, 0}}, "reset 87;reset 00;", true},
        {{{UsbdPipeTypeBulk, 0x81, 512, 0}}, "reset 00;reset 00;", false},
    };
    for (const auto& c : cases) {
        usb.pipes = c.pipes;
        usb.hasSettings = c.hasSettings;
        usb.calls.clear();
        const auto device = OpenDevice();
        EXPECT_EQ(usb.calls, c.resets);
        device->Close();
    }
}

TEST_F(WinUsbDeviceTest, SendsAFileAsOneTransferAndReadsUntilAllHasCome) {
    const HANDLE other = CreateFileW(usb.Device(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                     OPEN_EXISTING, 0, nullptr);
    const auto device = OpenDevice();  // though somebody else has it open
    CloseHandle(other);
    usb.calls.clear();
    CMemFile file(4);
    device->SendData(file);
    file.Write("hello", 5);
    file.Seek(3, CFile::begin);
    device->SendData(file);
    EXPECT_EQ(usb.Take(5), "68656c6c6f");
    usb.mostBytes = 2;
    usb.failedReads = 2;
    usb.Put("68656c6c6f");
    const LogCapture log;
    char buffer[6] = {};
    UINT64 count = 5;
    EXPECT_EQ(device->ReceiveData(buffer, count), 0);
    EXPECT_EQ(count, 5U);
    EXPECT_STREQ(buffer, "hello");
    const std::wstring warning = L"[WinUsbDevice::ReceiveData] Read Pipe Error:0x00000079";
    EXPECT_EQ(log.Messages(LogLevel::Warning), (std::vector<std::wstring>{warning, warning}));
    count = 0;
    EXPECT_EQ(device->ReceiveData(buffer, count), 0);
    usb.writeError = ERROR_GEN_FAILURE;
    EXPECT_EQ(ErrorOfSending(*device), DWORD{ERROR_GEN_FAILURE});
    EXPECT_TRUE(log.Contains(LogLevel::Error, L"[WinUsbDevice::SendData] WinUsb_WritePipe failed! Error:31"));
    device->FlushPipes();
    device->Close();
    device->Close();
    EXPECT_EQ(usb.calls, "flush 81;flush 02;free 00;");
}

TEST_F(WinUsbDeviceTest, TellsWhyItDoesNotOpenAndFailsInEachOperationsOwnWay) {
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
        const bool isLoaded = std::string_view(name).starts_with("WinUsb_");
        usb.missing = name;
        usb.calls.clear();
        const ImportPatch<decltype(&LoadLibraryW)> library(
            GetModuleHandleW(nullptr), "LoadLibraryW",
            isLoaded ? +[](LPCWSTR) { return GetModuleHandleW(nullptr); }
                     : +[](LPCWSTR) -> HMODULE { return SetLastError(ERROR_MOD_NOT_FOUND), nullptr; });
        const DWORD error = isLoaded ? ERROR_PROC_NOT_FOUND : ERROR_MOD_NOT_FOUND;
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
