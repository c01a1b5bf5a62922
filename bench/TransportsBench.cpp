// A command through the pipe client against the bare calls, on one server.
#include <windows.h>

#include <cstdio>
#include <thread>

#include "siblings/coresv/LoggingService.h"
#include "support/Ratios.h"
#include "transports/NamedPipeClient.h"
#include "transports/PipeServer.h"

namespace {

constexpr int kRoundTrips = 40;
constexpr int kRuns = 41;
constexpr int kInstances = 4;
constexpr wchar_t kMessage[] = L"GETENVVARIABLE:USERPROFILE";

int s_failures = 0;

void SendCommands() {
    for (int i = 0; i < kRoundTrips; ++i) {
        if (NamedPipeClient::GetEnvVariable(L"USERPROFILE") != L"C:\\users\\ann") ++s_failures;
    }
}

void SendBare(bool inMessageMode) {
    for (int i = 0; i < kRoundTrips; ++i) {
        const HANDLE pipe = CreateFileW(L"\\\\.\\pipe\\bvtnamedpipe", GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                        OPEN_EXISTING, 0, nullptr);
        wchar_t reply[512];
        DWORD bytes = 0;
        DWORD mode = PIPE_READMODE_MESSAGE;
        if (inMessageMode) SetNamedPipeHandleState(pipe, &mode, nullptr, nullptr);
        WriteFile(pipe, kMessage, sizeof kMessage, &bytes, nullptr);
        if (!ReadFile(pipe, reply, sizeof reply, &bytes, nullptr)) ++s_failures;
        CloseHandle(pipe);
    }
}

}  // namespace

int wmain() {
    // Some instances, so that one caller after the other finds one free without waiting.
    for (int i = 0; i < kInstances; ++i) {
        auto* const server = new PipeServer(PIPE_TYPE_MESSAGE | PIPE_READMODE_MESSAGE, kInstances);
        std::thread([server] {
            for (;; server->Message()) server->Answer(Utf16(L"C:\\users\\ann"));
        }).detach();
    }
    NamedPipeClient::pipeChannelEnabled = true;
    // The log is written, to nowhere: what a host's sink costs is the host's.
    Logger().SetSink([](LogLevel, const wchar_t*) {});
    Ratios ratios;
    // The client's reading by messages takes one call more than a connection that is read as bytes.
    ratios.Compare("pipe command round trip", 1.1, Timed(SendCommands), Timed([] { SendBare(true); }), kRuns);
    ratios.Compare("pipe command, bare without message mode", 1.1, Timed(SendCommands), Timed([] { SendBare(false); }),
                   kRuns);
    if (s_failures != 0) std::printf("%d round trips failed\n", s_failures);
    ratios.Print();
    return s_failures == 0 ? 0 : 1;
}
