// A winusb.dll for the sessions and devices of this process, one at a time. Its cable is a connection of the system, in
// which a thread that is ended in a call leaves nothing behind. The test is at the other end,
//
//     FakeWinUsb usb;
//     session.Connect(usb.Device(), false);
//     usb.Put("33120000");                        // arrives at the session
//     EXPECT_EQ(usb.Take(4), "34120000");         // what it sent
//
// or whoever is at that of a given connection. A transfer reaches it whole, as on a bulk pipe.
#pragma once

#include <afx.h>
#include <winusb.h>

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "peers/HexBytes.h"
#include "peers/LinkSocket.h"
#include "support/ImportPatch.h"
#include "support/ScopedTestDir.h"

class FakeWinUsb {
public:
    explicit FakeWinUsb(LinkSocket cable) : m_cable(std::move(cable)) {
        s_usb = this;
        CFile(Device(), CFile::modeCreate | CFile::modeWrite);
    }
    FakeWinUsb() : FakeWinUsb(LinkSocket()) {
        const LinkSocket listener = LinkSocket::Listen();
        m_cable = LinkSocket::Connect(listener.Port());
        m_end = listener.Accept();
    }
    FakeWinUsb(const FakeWinUsb&) = delete;
    FakeWinUsb& operator=(const FakeWinUsb&) = delete;

    // A file does for a device.
    CString Device() const { return m_folder.Path(L"device").c_str(); }
    // Bytes in hexadecimal; blanks may stand between them. Take waits for so many, and gives what there is after 10 s.
    void Put(std::string_view hex) const {
        const std::string bytes = FromHex(hex);
        m_end.SendAll(bytes.data(), bytes.size());
    }
    std::string Take(size_t bytes) const {
        std::string taken(bytes, '\0');
        size_t done = 0;
        while (const size_t got = done < bytes ? m_end.Receive(&taken[done], bytes - done, 10000) : 0) done += got;
        return ToHex(taken.substr(0, done));
    }
    // Nothing comes any more: reads fail.
    void Cut() { m_end = {}; }

    std::vector<WINUSB_PIPE_INFORMATION> pipes = {{UsbdPipeTypeBulk, 0x02, 512, 0}, {UsbdPipeTypeBulk, 0x81, 512, 0}};
    bool hasSettings = true;
    std::string missing;                       // a function that the library does not have, or the library
    DWORD openError = 0;                       // of WinUsb_Initialize
    std::atomic<DWORD> writeError = 0;         // of WinUsb_WritePipe, which then sends nothing
    std::atomic<int> failedReads = 0;          // so many fail, though they bring bytes
    std::atomic<ULONG> mostBytes = ULONG_MAX;  // that one read brings
    std::string calls;                         // "reset 81;" and the like, of calls that only a fake can see
    std::function<void(std::string&)>
        onCable[2];  // sees, and may damage, each transfer that goes, each read that comes

private:
    static BOOL Answer(DWORD error) {
        SetLastError(error);
        return error == 0;
    }
    static BOOL Note(const std::string& call, UCHAR pipe) {
        s_usb->calls += call + " " + ToHex({reinterpret_cast<const char*>(&pipe), 1}) + ";";
        return TRUE;
    }
    BOOL Write(const UCHAR* data, ULONG bytes) {
        if (writeError != 0) return Answer(writeError);
        std::string transfer;
        if (onCable[0]) onCable[0](transfer.assign(data, data + bytes));
        // Both threads of an end may write; neither tears the other's transfer apart.
        const std::lock_guard lock(m_writing);
        const bool isSent =
            onCable[0] ? m_cable.SendAll(transfer.data(), transfer.size()) : m_cable.SendAll(data, bytes);
        return Answer(isSent ? 0 : ERROR_GEN_FAILURE);
    }
    BOOL Read(UCHAR* buffer, ULONG bytes, ULONG& got) {
        got = static_cast<ULONG>(m_cable.Receive(buffer, std::min<ULONG>(bytes, mostBytes)));
        if (got == 0) return Answer(ERROR_GEN_FAILURE);
        std::string piece;
        if (onCable[1]) onCable[1](piece.assign(buffer, buffer + got));
        std::copy(piece.begin(), piece.end(), buffer);
        if (failedReads == 0) return Answer(0);
        --failedReads;
        return Answer(ERROR_SEM_TIMEOUT);
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
            {"WinUsb_WritePipe", Address([](Usb, UCHAR pipe, PUCHAR data, ULONG bytes, PULONG, LPOVERLAPPED) -> BOOL {
                 return pipe == 0x02 ? s_usb->Write(data, bytes) : Answer(ERROR_INVALID_PARAMETER);
             })},
            {"WinUsb_ReadPipe", Address([](Usb, UCHAR pipe, PUCHAR buffer, ULONG bytes, PULONG got, LPOVERLAPPED) {
                 return pipe == 0x81 ? s_usb->Read(buffer, bytes, *got) : Answer(ERROR_INVALID_PARAMETER);
             })},
            {"WinUsb_Free", Address([](Usb) -> BOOL { return Note("free", 0); })},
            {"WinUsb_FlushPipe", Address([](Usb, UCHAR pipe) -> BOOL {
                 char thrownAway[4096];
                 while (pipe == 0x81 && s_usb->m_cable.Receive(thrownAway, sizeof(thrownAway), 0) != 0) continue;
                 return Note("flush", pipe);
             })},
        };
        const auto found = kFunctions.find(name);
        if (found != kFunctions.end() && name != s_usb->missing) return reinterpret_cast<FARPROC>(found->second);
        return s_usb->m_find.Original()(library, name);  // this program has none of those names
    }
    static HMODULE WINAPI Load(LPCWSTR name) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return name == std::wstring_view(L"winusb.dll") && s_usb->missing != "winusb.dll" ? GetModuleHandleW(nullptr)
                                                                                          : nullptr;
    }

    static inline FakeWinUsb* s_usb = nullptr;
    ScopedTestDir m_folder;
    LinkSocket m_cable;
    LinkSocket m_end;
    std::mutex m_writing;
    ImportPatch<decltype(&LoadLibraryW)> m_load{GetModuleHandleW(nullptr), "LoadLibraryW", Load};
    ImportPatch<decltype(&GetProcAddress)> m_find{GetModuleHandleW(nullptr), "GetProcAddress", Find};
};
