// Starts programs of the other side.
#pragma once

#include <windows.h>

#include <string>

// The process, which the caller closes; null when the program does not start.
inline HANDLE StartProgram(const std::wstring& program, const std::wstring& arguments) {
    std::wstring command = L"\"" + program + L"\" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process)) {
        return nullptr;
    }
    CloseHandle(process.hThread);
    return process.hProcess;
}
