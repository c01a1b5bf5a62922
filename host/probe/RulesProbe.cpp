// RulesProbe [--dialog] [REPORT]: asks this system what the library depends on and prints a table: how it answers, and
// whether that is as on Windows, as on Wine, or as on neither, which the library was not made for. Writes the same into
// REPORT, for sending it ("RulesProbe-report.txt" here when it is not named). Changes nothing but in a folder and a key
// of its own, which it removes; asks for no rights beyond a user's. With --dialog it then works the dialog by mouse and
// keyboard for some ten seconds, and tells what was seen after each step.
//
// Exit code: 0 when each answer that there is is known, 1 when one differs, 2 when it cannot work.
#include <windows.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "ProbeDialog.h"
#include "ProbeRows.h"
#include "carry/KeyAccess.h"

namespace {

constexpr wchar_t kKeyPath[] = L"Software\\RulesProbe";

class ScopedPlace {
public:
    ScopedPlace() {
        place.folder =
            std::filesystem::temp_directory_path() / (L"RulesProbe-" + std::to_wstring(GetCurrentProcessId()));
        std::filesystem::create_directory(place.folder);
        if (RegCreateKeyExW(HKEY_CURRENT_USER, kKeyPath, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                            &place.key, nullptr) != ERROR_SUCCESS) {
            throw std::runtime_error("no key can be made below HKEY_CURRENT_USER\\Software");
        }
    }
    ~ScopedPlace() {
        RegCloseKey(place.key);
        RemoveBranch({HKEY_CURRENT_USER, kKeyPath});
        std::error_code ignored;
        std::filesystem::remove_all(L"\\\\?\\" + place.folder, ignored);
    }
    ScopedPlace(const ScopedPlace&) = delete;
    ScopedPlace& operator=(const ScopedPlace&) = delete;

    ProbePlace place;
};

// Prints each line, and keeps it for the report.
class Report {
public:
    void Line(const std::string& line) {
        std::printf("%s\n", line.c_str());
        m_text += line + "\r\n";
    }
    bool Save(const wchar_t* file) const {
        std::FILE* const out = _wfopen(file, L"wb");
        if (out == nullptr) return false;
        const bool isWritten = std::fwrite(m_text.data(), 1, m_text.size(), out) == m_text.size();
        return std::fclose(out) == 0 && isWritten;
    }

private:
    std::string m_text;
};

std::string Padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

bool IsWine() {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

enum Outcome { Known, Different, NotAsked };

Outcome Tell(Report& report, const ProbeRow& row, const ProbePlace& place) {
    std::string seen;
    std::string verdict;
    Outcome outcome = Known;
    try {
        SetLastError(0);
        seen = row.look(place);
        const bool isWindows = row.windows != nullptr && seen == row.windows;
        const bool isWine = row.wine != nullptr && seen == row.wine;
        if (row.windows != nullptr && !isWindows && !isWine) outcome = Different;
        verdict = row.windows == nullptr ? "told"
                  : isWindows            ? (isWine ? "as on both" : "as on Windows")
                  : isWine               ? "as on Wine"
                                         : std::string("DIFFERS: expected ") + row.windows;
    } catch (const std::exception& problem) {
        outcome = NotAsked;
        verdict = std::string("not asked: ") + problem.what();
    }
    report.Line(Padded(std::to_string(row.number), 4) + Padded(row.question, 52) + Padded(seen, 26) + verdict);
    return outcome;
}

Outcome TellStep(Report& report, const DialogStep& step) {
    const bool isExpected = step.seen == step.expected;
    report.Line(Padded("", 4) + Padded(step.what, 52) + step.seen);
    if (!isExpected) report.Line(Padded("", 56) + "DIFFERS: expected " + step.expected);
    return isExpected ? Known : Different;
}

int Probe(bool withDialog, const wchar_t* file) {
    const ScopedPlace scoped;
    Report report;
    report.Line(std::string("RulesProbe on ") + (IsWine() ? "Wine" : "Windows"));
    int counts[3] = {};
    for (const auto rows : {ControlRows(), FileRows(), SystemRows()}) {
        for (const ProbeRow& row : rows) ++counts[Tell(report, row, scoped.place)];
    }
    if (withDialog) {
        std::printf("The dialog now works by itself for some ten seconds: leave mouse and keyboard alone.\n");
        std::fflush(stdout);
        for (const DialogStep& step : WorkDialog()) ++counts[TellStep(report, step)];
    }
    report.Line(counts[Different] == 0 ? "Every answer is one that the library knows."
                                       : std::to_string(counts[Different]) + " answer(s) differ.");
    if (counts[NotAsked] != 0) report.Line(std::to_string(counts[NotAsked]) + " row(s) could not be asked.");
    if (!report.Save(file)) throw std::runtime_error("the report cannot be written");
    return counts[Different] == 0 ? 0 : 1;
}

}  // namespace

std::string YesOrStatus(bool isDone) {
    const DWORD status = GetLastError();
    return isDone ? "yes" : "no (" + std::to_string(status) + ")";
}

int wmain(int argc, wchar_t** argv) {
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);  // as RulesHost does; row 54 asks whether it counts
    try {
        const bool withDialog = argc > 1 && std::wstring_view(argv[1]) == L"--dialog";
        const int report = withDialog ? 2 : 1;
        return Probe(withDialog, argc > report ? argv[report] : L"RulesProbe-report.txt");
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "RulesProbe: %s\n", problem.what());
        return 2;
    }
}
