#include "ProgressLine.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <utility>

#include "HostOutput.h"
#include "Printable.h"
#include "Utf8.h"

namespace {

constexpr size_t kColumns = 79;
constexpr std::chrono::milliseconds kBetween{200};

std::atomic<bool> g_isCancelled{false};

BOOL WINAPI OnControl(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
    g_isCancelled = true;
    return TRUE;
}

// The end of a text that is too long tells more than its start.
std::wstring_view LastChars(std::wstring_view text, size_t most) {
    return text.substr(text.size() - std::min(text.size(), most));
}

}  // namespace

ProgressLine::ProgressLine() : m_isConsole(IsErrorConsole()), m_next(Clock::now() + std::chrono::seconds(1)) {
    g_isCancelled = false;
    SetConsoleCtrlHandler(OnControl, TRUE);
}

ProgressLine::~ProgressLine() {
    SetConsoleCtrlHandler(OnControl, FALSE);
    Clear();
}

bool ProgressLine::Show(const CarryProgress& progress) {
    if (m_isConsole && Clock::now() >= m_next) {
        m_next = Clock::now() + kBetween;
        std::string line = std::to_string(progress.keys) + " keys, " + std::to_string(progress.values) + " values, " +
                           std::to_string(progress.bytes) + " bytes  ";
        const size_t room = kColumns - std::min(line.size(), kColumns);
        line += Printable(ToReadableUtf8(LastChars(progress.path, room)));
        Clear();
        PrintError(line);
        m_isShown = true;
    }
    return !g_isCancelled;
}

void ProgressLine::Clear() {
    if (!std::exchange(m_isShown, false)) return;
    PrintError("\r" + std::string(kColumns, ' ') + "\r");
}
