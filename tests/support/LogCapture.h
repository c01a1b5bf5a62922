// Collects what is logged while it lives, instead of its going to the debugger.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "siblings/coresv/LoggingService.h"

class LogCapture {
public:
    struct Line {
        LogLevel level;
        std::wstring message;
        bool operator==(const Line&) const = default;
    };

    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // In the order of logging.
    std::vector<Line> GetLines() const;
    // Those of one level.
    std::vector<std::wstring> Messages(LogLevel level) const;
    // Whether a message of that level contains `part`.
    bool Contains(LogLevel level, std::wstring_view part) const;

private:
    mutable std::mutex m_mutex;
    std::vector<Line> m_lines;
    CLoggingService::Sink m_previous;
};
