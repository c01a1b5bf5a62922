// A winusb.dll for the sessions and devices of this process, one at a time. Its bulk pipes are pipes of the system, and
// the test is at their other ends:
//
//     FakeWinUsb usb;
//     session.Connect(usb.Device(), false);
//     usb.Put("33120000");                        // arrives at the session
//     EXPECT_EQ(usb.Take(4), "34120000");         // what it sent
#pragma once

#include <afx.h>
#include <winusb.h>

#include <atomic>
#include <string>
#include <string_view>
#include <vector>

#include "support/ImportPatch.h"
#include "support/ScopedTestDir.h"

class FakeWinUsb {
public:
    FakeWinUsb();
    ~FakeWinUsb();
    FakeWinUsb(const FakeWinUsb&) = delete;
    FakeWinUsb& operator=(const FakeWinUsb&) = delete;

    // A file does for a device.
    CString Device() const { return m_device; }
    // Bytes in hexadecimal; blanks may stand between them. Take waits for so many, and gives what there is after 10
    // seconds or behind a cut.
    void Put(std::string_view hex);
    std::string Take(size_t bytes);
    // Nothing comes any more: reads fail.
    void Cut();

    std::vector<WINUSB_PIPE_INFORMATION> pipes = {{UsbdPipeTypeBulk, 0x02, 512, 0}, {UsbdPipeTypeBulk, 0x81, 512, 0}};
    bool hasSettings = true;
    std::string missing;                // a function that the library does not have
    DWORD openError = 0;                // of WinUsb_Initialize
    std::atomic<DWORD> writeError = 0;  // of WinUsb_WritePipe, which then sends nothing
    std::atomic<int> failedReads = 0;   // so many fail, though they bring bytes
    ULONG mostBytes = ULONG_MAX;        // that one read brings
    std::string calls;                  // "reset 81;", of the calls that only a fake can see

private:
    ScopedTestDir m_folder;
    CString m_device;
    ImportPatch<decltype(&LoadLibraryW)> m_load;
    ImportPatch<decltype(&GetProcAddress)> m_find;
};
