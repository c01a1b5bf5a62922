#include "HostOutput.h"

#include <windows.h>

#include "Utf8.h"

namespace {

void Print(DWORD stream, const std::string& text) {
    const HANDLE handle = GetStdHandle(stream);
    DWORD written = 0;
    DWORD mode = 0;
    if (GetConsoleMode(handle, &mode)) {
        const std::wstring wide = FromUtf8(text);
        WriteConsoleW(handle, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
    } else {
        WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    }
}

}  // namespace

void PrintOutput(const std::string& text) {
    Print(STD_OUTPUT_HANDLE, text);
}

void PrintError(const std::string& text) {
    Print(STD_ERROR_HANDLE, text);
}

void PrintFailure(const std::string& text) {
    PrintError("RulesHost: " + text + "\n");
}

bool IsErrorConsole() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != FALSE;
}
