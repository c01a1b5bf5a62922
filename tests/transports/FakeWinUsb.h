// A winusb.dll for the sessions and devices of this process, one at a time. Its bulk pipes are pipes of the system, so
// that a thread which is ended in a call leaves nothing behind, and the test is at their other ends:
//
//     FakeWinUsb usb;
//     session.Connect(usb.Device(), false);
//     usb.Put("33120000");                        // arrives at the session
//     EXPECT_EQ(usb.Take(4), "34120000");         // what it sent
#pragma once

#include <afx.h>
#include <winusb.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/ImportPatch.h"
#include "support/ScopedTestDir.h"
#include "transports/HexBytes.h"

class FakeWinUsb {
public:
    FakeWinUsb() {
        s_usb = this;
        CreatePipe(&m_in, &m_inEnd, nullptr, 0);
        CreatePipe(&m_outEnd, &m_out, nullptr, 0);
        CFile(Device(), CFile::modeCreate | CFile::modeWrite);
    }
    ~FakeWinUsb() {
        for (const HANDLE end : {m_in, m_inEnd, m_out, m_outEnd}) CloseHandle(end);
    }
    FakeWinUsb(const FakeWinUsb&) = delete;
    FakeWinUsb& operator=(const FakeWinUsb&) = delete;

    // A file does for a device.
    CString Device() const { return m_folder.Path(L"device").c_str(); }
    // Bytes in hexadecimal; blanks may stand between them. Take waits for so many, and gives what there is after 10 s.
    void Put(std::string_view hex) const {
        const std::string bytes = FromHex(hex);
        DWORD written = 0;
        WriteFile(m_inEnd, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    }
    std::string Take(size_t bytes) const {
        std::string taken;
        for (const ULONGLONG start = GetTickCount64(); taken.size() < bytes && GetTickCount64() - start < 10000;) {
            const std::string piece = Waiting(m_outEnd, bytes - taken.size());
            taken += piece;
            if (piece.empty()) Sleep(1);
        }
        return ToHex(taken);
    }
    // Nothing comes any more: reads fail.
    void Cut() { CloseHandle(std::exchange(m_inEnd, nullptr)); }

    std::vector<WINUSB_PIPE_INFORMATION> pipes = {{UsbdPipeTypeBulk, 0x02, 512, 0}, {UsbdPipeTypeBulk, 0x81, 512, 0}};
    bool hasSettings = true;
    std::string missing;                // a function that the library does not have
    DWORD openError = 0;                // of WinUsb_Initialize
    std::atomic<DWORD> writeError = 0;  // of WinUsb_WritePipe, which then sends nothing
    std::atomic<int> failedReads = 0;   // so many fail, though they bring bytes
    ULONG mostBytes = ULONG_MAX;        // that one read brings
    std::string calls;                  // "reset 81;" and the like, of calls that only a fake can see

private:
    // Takes what is there, up to `most` bytes.
    static std::string Waiting(HANDLE pipe, size_t most) {
        DWORD bytes = 0;
        if (!PeekNamedPipe(pipe, nullptr, 0, nullptr, &bytes, nullptr)) return {};
        std::string waiting(std::min<size_t>(bytes, most), '\0');
        if (!waiting.empty()) ReadFile(pipe, waiting.data(), static_cast<DWORD>(waiting.size()), &bytes, nullptr);
        return waiting;
    }
    static BOOL Answer(DWORD error) {
        SetLastError(error);
        return error == 0;
    }
    static BOOL Note(const std::string& call, UCHAR pipe) {
        s_usb->calls += call + " " + ToHex({reinterpret_cast<const char*>(&pipe), 1}) + ";";
        return TRUE;
    }
    template <class Function>
    static void* Address(Function function) {
        return reinterpret_cast<void*>(+function);
    }
    static FARPROC WINAPI Find(HMODULE library, LPCSTR name) {
        using Usb = WINUSB_INTERFACE_HANDLE;
        static const std::map<std::string_view, void*> kFunctions = {
            {"WinUsb_Initialize", Address([](HANDLE, Usb* handle) -> BOOL {
                 *handle = s_usb;
                 return Answer(s_usb->openError);
             })},
            {"WinUsb_QueryDeviceInformation", Address([](Usb, ULONG, PULONG, PVOID) -> BOOL { return FALSE; })},
            {"WinUsb_QueryInterfaceSettings", Address([](Usb, UCHAR, PUSB_INTERFACE_DESCRIPTOR descriptor) -> BOOL {
                 descriptor->bNumEndpoints = static_cast<UCHAR>(s_usb->pipes.size());
                 return s_usb->hasSettings;
             })},
            {"WinUsb_QueryPipe", Address([](Usb, UCHAR, UCHAR index, PWINUSB_PIPE_INFORMATION pipe) -> BOOL {
                 *pipe = s_usb->pipes[index];
                 return TRUE;
             })},
            {"WinUsb_ResetPipe", Address([](Usb, UCHAR pipe) -> BOOL { return Note("reset", pipe); })},
            {"WinUsb_WritePipe", Address([](Usb, UCHAR pipe, PUCHAR data, ULONG bytes, PULONG written, LPOVERLAPPED) {
                 if (pipe != 0x02) return Answer(ERROR_INVALID_PARAMETER);
                 if (s_usb->writeError != 0) return Answer(s_usb->writeError);
                 return WriteFile(s_usb->m_out, data, bytes, written, nullptr);
             })},
            {"WinUsb_ReadPipe", Address([](Usb, UCHAR pipe, PUCHAR buffer, ULONG bytes, PULONG got, LPOVERLAPPED) {
                 if (pipe != 0x81) return Answer(ERROR_INVALID_PARAMETER);
                 if (!ReadFile(s_usb->m_in, buffer, std::min(bytes, s_usb->mostBytes), got, nullptr)) return FALSE;
                 return Answer(s_usb->failedReads > 0 && s_usb->failedReads-- > 0 ? ERROR_SEM_TIMEOUT : 0);
             })},
            {"WinUsb_Free", Address([](Usb) -> BOOL { return Note("free", 0); })},
            {"WinUsb_FlushPipe", Address([](Usb, UCHAR pipe) -> BOOL {
                 if (pipe == 0x81) Waiting(s_usb->m_in, SIZE_MAX);
                 return Note("flush", pipe);
             })},
        };
        const auto found = kFunctions.find(name);
        if (found != kFunctions.end() && name != s_usb->missing) return reinterpret_cast<FARPROC>(found->second);
        return s_usb->m_find.Original()(library, name);  // this program has none of those names
    }

    static inline FakeWinUsb* s_usb = nullptr;
    ScopedTestDir m_folder;
    HANDLE m_in = nullptr;
    HANDLE m_inEnd = nullptr;
    HANDLE m_out = nullptr;
    HANDLE m_outEnd = nullptr;
    ImportPatch<decltype(&LoadLibraryW)> m_load{GetModuleHandleW(nullptr), "LoadLibraryW",
                                                [](LPCWSTR) { return GetModuleHandleW(nullptr); }};
    ImportPatch<decltype(&GetProcAddress)> m_find{GetModuleHandleW(nullptr), "GetProcAddress", Find};
};
