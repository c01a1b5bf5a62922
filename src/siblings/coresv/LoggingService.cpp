#include "siblings/coresv/LoggingService.h"

#include <cstdio>
#include <string>
#include <utility>

namespace {

void WriteToDebugger(LogLevel level, const wchar_t* message) {
    static constexpr const wchar_t* kNames[] = {L"error", L"warning", L"info", L"verbose", L"trace"};
    OutputDebugStringW((std::wstring(kNames[static_cast<size_t>(level)]) + L": " + message + L"\n").c_str());
}

}  // namespace

CLoggingService& Logger() {
    // Never destroyed: objects of other modules log while the process ends.
    static auto* const service = new CLoggingService;
    return *service;
}

CLoggingService::Sink CLoggingService::SetSink(Sink sink) {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_sink, std::move(sink));
}

void CLoggingService::Log(LogLevel level, const wchar_t* message) {
    // Callers log between a failed call and the return that leaves its error for their own caller.
    const DWORD lastError = GetLastError();
    try {
        const std::lock_guard lock(m_mutex);
        const wchar_t* text = message != nullptr ? message : L"";
        m_sink ? m_sink(level, text) : WriteToDebugger(level, text);
    } catch (...) {
        // A message that cannot be written is lost; its caller goes on.
    }
    SetLastError(lastError);
}

void CLoggingService::LogFormat(LogLevel level, const wchar_t* format, va_list arguments) {
    const DWORD lastError = GetLastError();
    std::wstring message;
    try {
        va_list counting;
        va_copy(counting, arguments);
        const int length = format != nullptr ? _vscwprintf(format, counting) : -1;
        va_end(counting);
        if (length >= 0) {
            message.resize(static_cast<size_t>(length));
            _vsnwprintf(message.data(), message.size() + 1, format, arguments);
            format = message.c_str();
        }
    } catch (...) {
        // Out of memory for the whole text: its format still says which message it is.
    }
    SetLastError(lastError);
    Log(level, format);
}

#define DEFINE_LEVEL(name, level)                                                \
    void CLoggingService::Log##name##Message(const wchar_t* message) {           \
        Log(level, message);                                                     \
    }                                                                            \
    void CLoggingService::Log##name##MessageFormat(const wchar_t* format, ...) { \
        va_list arguments;                                                       \
        va_start(arguments, format);                                             \
        LogFormat(level, format, arguments);                                     \
        va_end(arguments);                                                       \
    }

DEFINE_LEVEL(Error, LogLevel::Error)
DEFINE_LEVEL(Warning, LogLevel::Warning)
DEFINE_LEVEL(Informational, LogLevel::Informational)
DEFINE_LEVEL(Verbose, LogLevel::Verbose)
DEFINE_LEVEL(Trace, LogLevel::Trace)
