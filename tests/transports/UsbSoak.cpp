// Sessions that end as they begin, over and over, each in a process of its own, since a thread that was ended in the
// wrong place may hang its process at the very end:
//     usb_soak KIND ROUNDS
// Of KIND "greet" the greeting cannot be sent; "close" is closed while a caller waits for an answer; "breath" is closed
// as soon as it is there. Prints the round that hangs or fails, and ends with 1 then.
#include <cstdio>
#include <future>
#include <string>

#include "peers/FakeWinUsb.h"
#include "siblings/coresv/LoggingService.h"
#include "transports/WinUsbSession.h"

namespace {

constexpr DWORD kRoundMilliseconds = 60000;
constexpr int kMostStarts = 3;  // of a round, of which the system loses one in thousands

// Odd rounds leave the end to the destructor.
bool Greet(bool isOdd) {
    FakeWinUsb usb;
    usb.writeError = ERROR_GEN_FAILURE;
    WinUsbSession session;
    const bool isRight = session.Connect(usb.Device(), true) == ERROR_PIPE_NOT_CONNECTED;
    if (!isOdd) session.CloseSession();
    return isRight;
}

// Odd rounds close while the request is anywhere on its way; in even ones it has crossed.
bool Close(bool isOdd) {
    FakeWinUsb usb;
    WinUsbSession session;
    if (session.Connect(usb.Device(), false) != 0) return false;
    auto opened = std::async(std::launch::async, [&] { return session.OpenDataFile(L"a"); });
    const bool isRight = isOdd || usb.Take(1) == "35";
    session.CloseSession();
    return opened.get() == INVALID_HANDLE_VALUE && isRight;
}

bool Breath(bool isOdd) {
    FakeWinUsb usb;
    WinUsbSession session;
    const bool isRight = session.Connect(usb.Device(), false) == 0;
    if (!isOdd) session.CloseSession();
    return isRight;
}

bool Round(const std::wstring& kind, bool isOdd) {
    // What is logged goes nowhere, but a thread that is ended while it logs shows.
    Logger().SetSink([](LogLevel, const wchar_t*) {});
    return kind == L"greet" ? Greet(isOdd) : kind == L"close" ? Close(isOdd) : Breath(isOdd);
}

const std::string kNotStarted = "does not start";

// What went wrong; empty for nothing. Not started is a process that the system did not make, or ended in its own DLLs
// before the program began.
std::string RunOnce(const std::wstring& program, const std::wstring& arguments) {
    std::wstring command = L"\"" + program + L"\" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process)) {
        return kNotStarted;
    }
    const bool isOver = WaitForSingleObject(process.hProcess, kRoundMilliseconds) == WAIT_OBJECT_0;
    DWORD exitCode = 0;
    GetExitCodeProcess(process.hProcess, &exitCode);
    TerminateProcess(process.hProcess, 1);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    if (!isOver) return "hangs";
    if (exitCode == static_cast<DWORD>(STATUS_DLL_INIT_FAILED)) return kNotStarted;
    return exitCode == 0 ? "" : "fails";
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 3) return 2;
    const std::wstring kind = argv[1];
    if (argc > 3) return Round(kind, _wtoi(argv[3]) % 2 != 0) ? 0 : 1;
    for (int round = 0; round < _wtoi(argv[2]); ++round) {
        std::string problem;
        for (int start = 0; start < kMostStarts; ++start) {
            problem = RunOnce(argv[0], kind + L" once " + std::to_wstring(round));
            if (!problem.empty()) std::printf("%ls: round %d %s\n", kind.c_str(), round, problem.c_str());
            if (problem != kNotStarted) break;
        }
        if (!problem.empty()) return 1;
    }
    std::printf("%ls: %ls rounds\n", kind.c_str(), argv[2]);
    return 0;
}
