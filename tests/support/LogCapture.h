// Collects what is logged while it lives, instead of its going to the debugger.
#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "siblings/coresv/LoggingService.h"

class LogCapture {
public:
    struct Line {
        LogLevel level;
        std::wstring message;
        bool operator==(const Line&) const = default;
    };

    LogCapture() {
        m_previous = Logger().SetSink([this](LogLevel level, const wchar_t* message) {
            const std::lock_guard lock(m_mutex);
            m_lines.push_back({level, message});
        });
    }
    ~LogCapture() { Logger().SetSink(std::move(m_previous)); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // In the order of logging.
    std::vector<Line> GetLines() const {
        const std::lock_guard lock(m_mutex);
        return m_lines;
    }
    // Those of one level.
    std::vector<std::wstring> Messages(LogLevel level) const {
        std::vector<std::wstring> messages;
        for (const Line& line : GetLines())
            if (line.level == level) messages.push_back(line.message);
        return messages;
    }
    // Whether a message of that level contains `part`.
    bool Contains(LogLevel level, std::wstring_view part) const {
        for (const std::wstring& message : Messages(level))
            if (message.find(part) != message.npos) return true;
        return false;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<Line> m_lines;
    CLoggingService::Sink m_previous;
};
