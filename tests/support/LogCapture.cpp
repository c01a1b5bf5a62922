#include "support/LogCapture.h"

#include <algorithm>
#include <utility>

LogCapture::LogCapture() {
    m_previous = Logger().SetSink([this](LogLevel level, const wchar_t* message) {
        const std::lock_guard lock(m_mutex);
        m_lines.push_back({level, message});
    });
}

LogCapture::~LogCapture() {
    Logger().SetSink(std::move(m_previous));
}

std::vector<LogCapture::Line> LogCapture::GetLines() const {
    const std::lock_guard lock(m_mutex);
    return m_lines;
}

std::vector<std::wstring> LogCapture::Messages(LogLevel level) const {
    std::vector<std::wstring> messages;
    for (const Line& line : GetLines()) {
        if (line.level == level) messages.push_back(line.message);
    }
    return messages;
}

bool LogCapture::Contains(LogLevel level, std::wstring_view part) const {
    const std::lock_guard lock(m_mutex);
    return std::any_of(m_lines.begin(), m_lines.end(), [&](const Line& line) {
        return line.level == level && line.message.find(part) != std::wstring::npos;
    });
}
