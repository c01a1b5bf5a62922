#include "transports/FakeWinUsb.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

#include "transports/HexBytes.h"

namespace {

constexpr ULONGLONG kLongestMilliseconds = 10000;
constexpr DWORD kPipeBytes = 1 << 16;

// The system's own pipes, so that a thread which is ended in one of the calls leaves nothing behind.
struct Pipe {
    Pipe() { CreatePipe(&read, &write, nullptr, kPipeBytes); }
    ~Pipe() {
        CloseHandle(read);
        if (write != nullptr) CloseHandle(write);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    DWORD Waiting() const {
        DWORD bytes = 0;
        return PeekNamedPipe(read, nullptr, 0, nullptr, &bytes, nullptr) ? bytes : 0;
    }
    HANDLE read = nullptr;
    HANDLE write = nullptr;
};

FakeWinUsb* s_usb = nullptr;
Pipe* s_in = nullptr;
Pipe* s_out = nullptr;
decltype(&GetProcAddress) s_find = nullptr;

BOOL Answer(DWORD error) {
    SetLastError(error);
    return error == 0;
}

void Note(const char* call, UCHAR pipe) {
    char text[32];
    std::snprintf(text, sizeof(text), "%s %02x;", call, pipe);
    s_usb->calls += text;
}

BOOL WINAPI Initialize(HANDLE, PWINUSB_INTERFACE_HANDLE handle) {
    *handle = s_usb;
    return Answer(s_usb->openError);
}
BOOL WINAPI QueryDevice(WINUSB_INTERFACE_HANDLE, ULONG, PULONG, PVOID) {
    return FALSE;
}
BOOL WINAPI QuerySettings(WINUSB_INTERFACE_HANDLE, UCHAR, PUSB_INTERFACE_DESCRIPTOR descriptor) {
    descriptor->bNumEndpoints = static_cast<UCHAR>(s_usb->pipes.size());
    return s_usb->hasSettings;
}
BOOL WINAPI QueryPipe(WINUSB_INTERFACE_HANDLE, UCHAR, UCHAR index, PWINUSB_PIPE_INFORMATION pipe) {
    *pipe = s_usb->pipes[index];
    return TRUE;
}
BOOL WINAPI ResetPipe(WINUSB_INTERFACE_HANDLE, UCHAR pipe) {
    Note("reset", pipe);
    return FALSE;
}
BOOL WINAPI WritePipe(WINUSB_INTERFACE_HANDLE, UCHAR pipe, PUCHAR data, ULONG bytes, PULONG written, LPOVERLAPPED) {
    if (pipe != 0x02) return Answer(ERROR_INVALID_PARAMETER);
    return s_usb->writeError != 0 ? Answer(s_usb->writeError) : WriteFile(s_out->write, data, bytes, written, nullptr);
}
BOOL WINAPI ReadPipe(WINUSB_INTERFACE_HANDLE, UCHAR pipe, PUCHAR buffer, ULONG bytes, PULONG got, LPOVERLAPPED) {
    if (pipe != 0x81) return Answer(ERROR_INVALID_PARAMETER);
    if (!ReadFile(s_in->read, buffer, std::min(bytes, s_usb->mostBytes), got, nullptr)) return FALSE;
    return Answer(s_usb->failedReads > 0 && s_usb->failedReads-- > 0 ? ERROR_SEM_TIMEOUT : 0);
}
BOOL WINAPI Free(WINUSB_INTERFACE_HANDLE) {
    Note("free", 0);
    return TRUE;
}
BOOL WINAPI FlushPipe(WINUSB_INTERFACE_HANDLE, UCHAR pipe) {
    Note("flush", pipe);
    std::string thrownAway(s_in->Waiting(), '\0');
    DWORD got = 0;
    return pipe != 0x81 || thrownAway.empty() ||
           ReadFile(s_in->read, thrownAway.data(), static_cast<DWORD>(thrownAway.size()), &got, nullptr);
}

FARPROC WINAPI FindFunction(HMODULE library, LPCSTR name) {
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
        if (std::strcmp(known, name) == 0 && name != s_usb->missing) return reinterpret_cast<FARPROC>(function);
    }
    return s_find(library, name);  // this program has none of those names
}

}  // namespace

FakeWinUsb::FakeWinUsb()
    : m_device(m_folder.Path(L"device").c_str()),
      m_load(GetModuleHandleW(nullptr), "LoadLibraryW", [](LPCWSTR) { return GetModuleHandleW(nullptr); }),
      m_find(GetModuleHandleW(nullptr), "GetProcAddress", FindFunction) {
    s_usb = this;
    s_find = m_find.Original();
    s_in = new Pipe;
    s_out = new Pipe;
    CFile(m_device, CFile::modeCreate | CFile::modeWrite);
}

FakeWinUsb::~FakeWinUsb() {
    delete s_in;
    delete s_out;
}

void FakeWinUsb::Put(std::string_view hex) {
    const std::string bytes = FromHex(hex);
    DWORD written = 0;
    WriteFile(s_in->write, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

std::string FakeWinUsb::Take(size_t bytes) {
    std::string taken;
    for (const ULONGLONG start = GetTickCount64(); taken.size() < bytes;) {
        std::string piece(std::min<size_t>(s_out->Waiting(), bytes - taken.size()), '\0');
        DWORD got = 0;
        if (!piece.empty()) ReadFile(s_out->read, piece.data(), static_cast<DWORD>(piece.size()), &got, nullptr);
        taken.append(piece, 0, got);
        if (got != 0) continue;
        if (GetTickCount64() - start > kLongestMilliseconds) break;
        Sleep(1);
    }
    return ToHex(taken);
}

void FakeWinUsb::Cut() {
    CloseHandle(std::exchange(s_in->write, nullptr));
}
