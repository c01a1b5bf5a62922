// Loading the library into a process that has nothing of it yet, beside loading the common controls alone, which every
// program with windows loads. Each measurement is a new process of this program, `load_bench DLL`, whose exit code is
// the microseconds that the loader took.
#include <windows.h>

#include <string>

#include "support/Ratios.h"

namespace {

constexpr int kRuns = 15;

DWORD MicrosecondsToLoad(const wchar_t* library) {
    HMODULE module = nullptr;
    const double seconds = SecondsOf([&] { module = LoadLibraryW(library); });
    Require(module != nullptr);
    return static_cast<DWORD>(seconds * 1e6);
}

double SecondsToLoad(const wchar_t* program, const std::wstring& library) {
    std::wstring command = L"\"" + std::wstring(program) + L"\" " + library;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    Require(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD microseconds = 0;
    GetExitCodeProcess(process.hProcess, &microseconds);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    Require(microseconds != 0);
    return microseconds / 1e6;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc > 1) return static_cast<int>(MicrosecondsToLoad(argv[1]));
    Ratios ratios;
    const auto load = [&](const wchar_t* library) { return [=] { return SecondsToLoad(argv[0], library); }; };
    ratios.Compare("loading RegistryRules.dll", kNoLimit, load(L"RegistryRules.dll"), load(L"comctl32.dll"), kRuns);
    ratios.Compare("loading RulesC.dll", kNoLimit, load(L"RulesC.dll"), load(L"comctl32.dll"), kRuns);
    ratios.Print();
    return 0;
}
