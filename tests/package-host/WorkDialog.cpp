// WorkDialog PROGRAM: starts the program, types a key into the strip of its rules dialog, presses OK, and ends with the
// program's exit code; 2 when no dialog appears or the program does not end.
#include <windows.h>

#include <cstdio>

namespace {

constexpr int NewKeyEdit = 226;
constexpr DWORD TimeoutMs = 60000;

bool WorkDialog(HANDLE process) {
    const ULONGLONG end = GetTickCount64() + TimeoutMs;
    while (GetTickCount64() < end && WaitForSingleObject(process, 20) == WAIT_TIMEOUT) {
        const HWND dialog = FindWindowW(L"#32770", L"Registry Rules");
        if (dialog == nullptr || !IsWindowVisible(dialog)) continue;
        SetDlgItemTextW(dialog, NewKeyEdit, L"HKLM\\Software\\Fernhollow");
        PostMessageW(dialog, WM_COMMAND, IDOK, 0);
        return true;
    }
    std::puts("WorkDialog: no dialog appeared");
    return false;
}

}  // namespace

extern "C" int wmain(int, wchar_t** arguments) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    DWORD exitCode = 2;
    if (!CreateProcessW(nullptr, arguments[1], nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) {
        std::printf("WorkDialog: the program does not start: %lu\n", GetLastError());
    } else if (WaitForSingleObject(process.hProcess, WorkDialog(process.hProcess) ? TimeoutMs : 0) == WAIT_OBJECT_0) {
        GetExitCodeProcess(process.hProcess, &exitCode);
    } else {
        std::puts("WorkDialog: the program did not end");
        TerminateProcess(process.hProcess, exitCode);
    }
    return static_cast<int>(exitCode);
}
