// Sessions that end as they begin, over and over, each in a process of its own, since a thread that was ended in the
// wrong place may hang its process at the very end:
//     usb_soak KIND ROUNDS
// Of KIND "greet" the greeting cannot be sent; "close" is closed while a caller waits for an answer; "breath" is closed
// as soon as it is there. Prints the round that hangs or fails, and ends with 1 then.
#include <cstdio>
#include <future>
#include <string>

#include "peers/LinkSocket.h"
#include "peers/StartProgram.h"
#include "siblings/coresv/LoggingService.h"
#include "transports/WinUsbSession.h"

namespace {

constexpr DWORD kRoundMilliseconds = 60000;

CString DeviceFile(const std::string& text) {
    WCHAR folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    CString device;
    device.Format(L"%susb-soak-%u", folder, GetCurrentProcessId());
    CFile(device, CFile::modeCreate | CFile::modeWrite).Write(text.data(), static_cast<UINT>(text.size()));
    return device;
}

// Odd rounds leave the end to the destructor.
bool Greet(bool isOdd) {
    WinUsbSession session;
    const bool isRight = session.Connect(DeviceFile("refuse"), true) == ERROR_PIPE_NOT_CONNECTED;
    if (!isOdd) session.CloseSession();
    return isRight;
}

// Odd rounds close while the request is anywhere on its way; in even ones it has crossed.
bool Close(bool isOdd) {
    const LinkSocket listener = LinkSocket::Listen();
    WinUsbSession session;
    if (session.Connect(DeviceFile("port " + std::to_string(listener.Port())), false) != 0) return false;
    auto opened = std::async(std::launch::async, [&] { return session.OpenDataFile(L"a"); });
    const LinkSocket peer = listener.Accept(kRoundMilliseconds);
    char request = 0;
    const bool isRight = isOdd || peer.Receive(&request, 1) == 1;
    session.CloseSession();
    return opened.get() == INVALID_HANDLE_VALUE && isRight;
}

bool Breath(bool isOdd) {
    const LinkSocket listener = LinkSocket::Listen();
    WinUsbSession session;
    const bool isRight = session.Connect(DeviceFile("port " + std::to_string(listener.Port())), false) == 0;
    if (!isOdd) session.CloseSession();
    return isRight;
}

bool Round(const std::wstring& kind, bool isOdd) {
    // What is logged goes nowhere, but a thread that is ended while it logs shows.
    Logger().SetSink([](LogLevel, const wchar_t*) {});
    return kind == L"greet" ? Greet(isOdd) : kind == L"close" ? Close(isOdd) : Breath(isOdd);
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 3) return 2;
    const std::wstring kind = argv[1];
    if (argc > 3) return Round(kind, _wtoi(argv[3]) % 2 != 0) ? 0 : 1;
    for (int round = 0; round < _wtoi(argv[2]); ++round) {
        const HANDLE process = StartProgram(argv[0], kind + L" once " + std::to_wstring(round));
        const bool hasEnded = WaitForSingleObject(process, kRoundMilliseconds) == WAIT_OBJECT_0;
        DWORD exitCode = 0;
        GetExitCodeProcess(process, &exitCode);
        if (hasEnded && exitCode == 0) {
            CloseHandle(process);
            continue;
        }
        std::printf("%ls: round %d %s\n", kind.c_str(), round, hasEnded ? "fails" : "hangs");
        TerminateProcess(process, 1);
        return 1;
    }
    std::printf("%ls: %ls rounds\n", kind.c_str(), argv[2]);
    return 0;
}
