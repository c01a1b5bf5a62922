// One line on the console that tells how far a long work is, and the user's wish to end it.
#pragma once

#include <chrono>

#include "carry/CarryReport.h"

class ProgressLine {
public:
    // From now on Ctrl+C asks the work to end.
    ProgressLine();
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    // Writes to standard error, if that is a console, once the work has taken a second. False after Ctrl+C.
    bool Show(const CarryProgress& progress);
    void Clear();

    CarryProgressFunction Function() {
        return [this](const CarryProgress& progress) { return Show(progress); };
    }

private:
    using Clock = std::chrono::steady_clock;

    bool m_isConsole;
    bool m_isShown = false;
    Clock::time_point m_next;
};
