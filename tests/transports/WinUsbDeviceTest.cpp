#include "transports/WinUsbDevice.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "support/FileBytes.h"
#include "support/FreshProcess.h"
#include "support/ImportPatch.h"
#include "support/LogCapture.h"
#include "support/ScopedTestDir.h"
#include "transports/HexBytes.h"
#include "transports/WinUsbException.h"
#include "transports/WinUsbSession.h"

namespace {

// What the library of this test does, and what was asked of it.
struct FakeLibrary {
    std::vector<WINUSB_PIPE_INFORMATION> pipes = {{UsbdPipeTypeBulk, 0x02, 512, 0}, {UsbdPipeTypeBulk, 0x81, 512, 0}};
    std::string missing;
    DWORD error = 0;       // of WinUsb_Initialize
    DWORD writeError = 0;  // of WinUsb_WritePipe
    bool readsBlock = false;
    int failedReads = 0;  // so many come first
    bool hasSettings = true;
    std::string incoming;
    std::string sent;
    std::string calls;
};
FakeLibrary s_library;

BOOL Answer(DWORD error) {
    SetLastError(error);
    return error == 0;
}

void Note(const char* call, UCHAR pipe) {
    char text[64];
    std::snprintf(text, sizeof(text), "%s %02x;", call, pipe);
    s_library.calls += text;
}

BOOL WINAPI Initialize(HANDLE, PWINUSB_INTERFACE_HANDLE handle) {
    *handle = &s_library;
    return Answer(s_library.error);
}
BOOL WINAPI QueryDevice(WINUSB_INTERFACE_HANDLE, ULONG, PULONG, PVOID) {
    return FALSE;
}
BOOL WINAPI QuerySettings(WINUSB_INTERFACE_HANDLE, UCHAR, PUSB_INTERFACE_DESCRIPTOR descriptor) {
    descriptor->bNumEndpoints = static_cast<UCHAR>(s_library.pipes.size());
    return s_library.hasSettings;
}
BOOL WINAPI QueryPipe(WINUSB_INTERFACE_HANDLE, UCHAR, UCHAR index, PWINUSB_PIPE_INFORMATION pipe) {
    *pipe = s_library.pipes[index];
    return TRUE;
}
BOOL WINAPI ResetPipe(WINUSB_INTERFACE_HANDLE, UCHAR pipe) {
    Note("reset", pipe);
    return FALSE;
}
BOOL WINAPI WritePipe(WINUSB_INTERFACE_HANDLE, UCHAR pipe, PUCHAR data, ULONG bytes, PULONG, LPOVERLAPPED) {
    Note("write", pipe);
    s_library.sent.append(reinterpret_cast<char*>(data), bytes);
    return Answer(s_library.writeError);
}
// Two bytes at a time, half of them by calls that fail.
BOOL WINAPI ReadPipe(WINUSB_INTERFACE_HANDLE, UCHAR, PUCHAR buffer, ULONG bytes, PULONG got, LPOVERLAPPED) {
    if (s_library.readsBlock) Sleep(INFINITE);
    *got = static_cast<ULONG>(std::min<size_t>({bytes, 2, s_library.incoming.size()}));
    std::memcpy(buffer, s_library.incoming.data(), *got);
    s_library.incoming.erase(0, *got);
    SetLastError(ERROR_SEM_TIMEOUT);
    return s_library.failedReads-- <= 0;
}
BOOL WINAPI Free(WINUSB_INTERFACE_HANDLE) {
    Note("free", 0);
    return TRUE;
}
BOOL WINAPI FlushPipe(WINUSB_INTERFACE_HANDLE, UCHAR pipe) {
    Note("flush", pipe);
    return TRUE;
}

FARPROC WINAPI FindFunction(HMODULE, LPCSTR name) {
    static const std::pair<const char*, void*> kFunctions[] = {
        {"WinUsb_Initialize", reinterpret_cast<void*>(Initialize)},
        {"WinUsb_QueryDeviceInformation", reinterpret_cast<void*>(QueryDevice)},
        {"WinUsb_QueryInterfaceSettings", reinterpret_cast<void*>(QuerySettings)},
        {"WinUsb_QueryPipe", reinterpret_cast<void*>(QueryPipe)},
        {"WinUsb_ResetPipe", reinterpret_cast<void*>(ResetPipe)},
        {"WinUsb_WritePipe", reinterpret_cast<void*>(WritePipe)},
        {"WinUsb_ReadPipe", reinterpret_cast<void*>(ReadPipe)},
        {"WinUsb_Free", reinterpret_cast<void*>(Free)},
        {"WinUsb_FlushPipe", reinterpret_cast<void*>(FlushPipe)},
    };
    for (const auto& [known, function] : kFunctions) {
        if (std::strcmp(known, name) == 0 && name != s_library.missing) return reinterpret_cast<FARPROC>(function);
    }
    SetLastError(ERROR_PROC_NOT_FOUND);
    return nullptr;
}

class WinUsbDeviceTest : public testing::Test {
protected:
    WinUsbDeviceTest() { s_library = {}; }

    // A file does for a device, since the library is a fake.
    CString DevicePath() {
        const CString path = m_dir.Path(L"device").c_str();
        CFile(path, CFile::modeCreate | CFile::modeWrite);
        return path;
    }
    std::unique_ptr<WinUsbDevice> OpenDevice() {
        auto device = std::make_unique<WinUsbDevice>();
        EXPECT_EQ(device->Open(DevicePath()), 0);
        return device;
    }
    DWORD ErrorOfSending(WinUsbDevice& device) {
        CMemFile file;
        file.Write("hello", 5);
        try {
            device.SendData(file);
        } catch (CWinUsbException* problem) {
            const DWORD error = problem->m_systemError;
            problem->Delete();
            return error;
        }
        return 0;
    }

    ScopedTestDir m_dir;
    ImportPatch<decltype(&LoadLibraryW)> m_load{GetModuleHandleW(nullptr), "LoadLibraryW",
                                                [](LPCWSTR) { return GetModuleHandleW(nullptr); }};
    ImportPatch<decltype(&GetProcAddress)> m_find{GetModuleHandleW(nullptr), "GetProcAddress", FindFunction};
};

}  // namespace

TEST_F(WinUsbDeviceTest, UsesThePipesUpToOneThatItHasNoUseFor) {
    struct {
        std::vector<WINUSB_PIPE_INFORMATION> pipes;
        const char* resets;
    } const cases[] = {
        {{{UsbdPipeTypeInterrupt, 0x83, 8, 0}, {UsbdPipeTypeBulk, 0x84, 512, 0}, {UsbdPipeTypeBulk, 0x05, 512, 0}},
         "reset 84;reset 05;"},
        {{{UsbdPipeTypeBulk, 0x81, 512, 0}, {UsbdPipeTypeControl, 0x00, 8, 0}, {UsbdPipeTypeBulk, 0x02, 512, 0}},
         "reset 81;reset 00;"},
        {{{UsbdPipeTypeIsochronous, 0x86, 8, 0}, {UsbdPipeTypeBulk, 0x81, 512, 0}}, "reset 00;reset 00;"},
        {{{UsbdPipeTypeBulk, 0x81, 512, 0}, {UsbdPipeTypeBulk, 0x87, 512, 0}}, "reset 87;reset 00;"},
    };
    for (const auto& c : cases) {
        s_library.pipes = c.pipes;
        s_library.calls.clear();
        const auto device = OpenDevice();
        EXPECT_EQ(s_library.calls, c.resets);
        device->Close();
    }
    s_library = {};
    s_library.hasSettings = false;
    OpenDevice();
    EXPECT_EQ(s_library.calls, "reset 00;reset 00;");
}

TEST_F(WinUsbDeviceTest, SendsAFileAsOneTransferAndAnEmptyOneNotAtAll) {
    const auto device = OpenDevice();
    s_library.calls.clear();
    CMemFile file(4);
    device->SendData(file);
    EXPECT_EQ(s_library.calls, "");
    file.Write("hello", 5);
    file.Seek(3, CFile::begin);
    device->SendData(file);
    EXPECT_EQ(s_library.calls, "write 02;");
    EXPECT_EQ(s_library.sent, "hello");
    device->FlushPipes();
    device->Close();
    device->Close();
    EXPECT_EQ(s_library.calls, "write 02;flush 81;flush 02;free 00;");
    const LogCapture log;
    s_library.writeError = ERROR_GEN_FAILURE;
    EXPECT_EQ(ErrorOfSending(*device), DWORD{ERROR_GEN_FAILURE});
    EXPECT_TRUE(log.Contains(LogLevel::Error, L"[WinUsbDevice::SendData] WinUsb_WritePipe failed! Error:31"));
}

TEST_F(WinUsbDeviceTest, ReadsUntilAllHasComeAndCountsWhatFailedReadsBring) {
    const auto device = OpenDevice();
    s_library.incoming = "hello";
    s_library.failedReads = 2;
    const LogCapture log;
    char buffer[6] = {};
    UINT64 count = 5;
    EXPECT_EQ(device->ReceiveData(buffer, count), 0);
    EXPECT_EQ(count, 5U);
    EXPECT_STREQ(buffer, "hello");
    EXPECT_EQ(log.GetLines().size(), 2U);
    EXPECT_TRUE(log.Contains(LogLevel::Warning, L"[WinUsbDevice::ReceiveData] Read Pipe Error:0x00000079"));
    count = 0;
    EXPECT_EQ(device->ReceiveData(buffer, count), 0);
    EXPECT_EQ(count, 0U);
}

TEST_F(WinUsbDeviceTest, TellsWhyItDoesNotOpen) {
    EXPECT_EQ(WinUsbDevice().Open(m_dir.Path(L"none").c_str()), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    s_library.error = ERROR_BAD_COMMAND;
    WinUsbDevice device;
    EXPECT_EQ(device.Open(DevicePath()), HRESULT_FROM_WIN32(ERROR_BAD_COMMAND));
    EXPECT_TRUE(DeleteFileW(DevicePath())) << "closed";
    // The next handle has the number that the file's had.
    const HANDLE next = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    device.Close();
    EXPECT_TRUE(CloseHandle(next)) << "closed for a second time";
}

TEST_F(WinUsbDeviceTest, WithoutTheLibraryOrAFunctionEverythingFailsInItsOwnWay) {
    const auto expectFailures = [this](DWORD error) {
        WinUsbDevice device;
        EXPECT_EQ(device.Open(DevicePath()), HRESULT_FROM_WIN32(error));
        EXPECT_EQ(ErrorOfSending(device), error);
        char buffer[4];
        UINT64 count = 4;
        EXPECT_EQ(device.ReceiveData(buffer, count), HRESULT_FROM_WIN32(error));
        EXPECT_EQ(count, 0U);
        device.FlushPipes();
        device.Close();
    };
    for (const char* name : {"WinUsb_Initialize", "WinUsb_ReadPipe", "WinUsb_FlushPipe"}) {
        s_library.missing = name;
        expectFailures(ERROR_PROC_NOT_FOUND);
    }
    EXPECT_EQ(s_library.calls, "");
    const ImportPatch<decltype(&LoadLibraryW)> noLibrary(GetModuleHandleW(nullptr), "LoadLibraryW", [](LPCWSTR) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return static_cast<HMODULE>(nullptr);
    });
    expectFailures(ERROR_MOD_NOT_FOUND);
}

TEST_F(WinUsbDeviceTest, ASessionWithoutADeviceAnswersEveryRequest) {
    s_library.error = ERROR_BAD_COMMAND;
    WinUsbSession session;
    EXPECT_EQ(session.Connect(DevicePath(), true), static_cast<DWORD>(HRESULT_FROM_WIN32(ERROR_BAD_COMMAND)));
    EXPECT_EQ(session.OpenDataFile(L"a"), INVALID_HANDLE_VALUE);
    EXPECT_EQ(session.DoesDirectoryExist(L"a") + session.DriveFreeSpace(), 0U);
    char buffer[4];
    EXPECT_EQ(session.ReadData(nullptr, buffer, 4) + static_cast<DWORD>(session.SeekData(nullptr, 1, FILE_BEGIN)), 0U);
    EXPECT_EQ(CauseOf([&] { session.WriteData(nullptr, buffer, 4); }), ERROR_PIPE_NOT_CONNECTED);
    session.CloseFile(nullptr);
    session.Finish(0);
}

TEST_F(WinUsbDeviceTest, WithoutMemoryForAReplyTheLinkFails) {
    EXPECT_IN_FRESH_PROCESS([this] {
        static const HANDLE s_ended = CreateEventW(nullptr, TRUE, FALSE, nullptr);
        static WPARAM s_status = 0;
        const ImportPatch<decltype(&PostMessageW)> post(GetModuleHandleW(nullptr), "PostMessageW",
                                                        [](HWND, UINT, WPARAM status, LPARAM) {
                                                            s_status = status;
                                                            return SetEvent(s_ended);
                                                        });
        const ImportPatch<void* (*)(void*, size_t)> memory(LoadedModule(L"framework.dll"), "realloc",
                                                           [](void*, size_t) -> void* { return nullptr; });
        s_library.incoming = FromHex("33120000");
        WinUsbSession session;
        EXPECT_EQ(session.Connect(DevicePath(), false), 0U);
        WaitForSingleObject(s_ended, INFINITE);
        EXPECT_EQ(s_status, kUsbLinkFailed);
        EXPECT_EQ(s_library.sent, "");
    });
}

TEST_F(WinUsbDeviceTest, AGreetingThatCannotBeSentMakesNoSession) {
    s_library.writeError = ERROR_GEN_FAILURE;
    s_library.readsBlock = true;
    const LogCapture log;
    WinUsbSession session;
    EXPECT_EQ(session.Connect(DevicePath(), true), DWORD{ERROR_PIPE_NOT_CONNECTED});
    EXPECT_EQ(s_library.sent, std::string("\x33\x12\0\0", 4));
    EXPECT_TRUE(log.Contains(LogLevel::Error, L"[WinUsbSession::SendDataToWinUsb] Send Error:31"));
    EXPECT_EQ(session.OpenDataFile(L"a"), INVALID_HANDLE_VALUE);
    session.CloseSession();
}
