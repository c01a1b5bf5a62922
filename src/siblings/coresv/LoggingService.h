// The log that the toolkit writes to:
//
//     Logger().LogErrorMessageFormat(L"Opening %s failed with %u", path.GetString(), GetLastError());
//
// Every member may be called from any thread; lines of one sink never run into each other. Logging never throws, never
// fails visibly and keeps the thread's last error as it was.
#pragma once

#include <windows.h>

#include <cstdarg>
#include <functional>
#include <mutex>

#ifdef CORESV_BUILD
#define CORESV_API __declspec(dllexport)
#else
#define CORESV_API __declspec(dllimport)
#endif

enum class LogLevel { Error, Warning, Informational, Verbose, Trace };

class CORESV_API CLoggingService {
public:
    // Receives one message, without a line end. It runs under the service's lock and must not log.
    using Sink = std::function<void(LogLevel level, const wchar_t* message)>;

    CLoggingService() = default;
    CLoggingService(const CLoggingService&) = delete;
    CLoggingService& operator=(const CLoggingService&) = delete;

    // The plain forms take the text as it is; a null pointer is an empty text. The formats are those of the Windows
    // runtime (%s is a wide text); one that it rejects is logged as it stands.
    void LogErrorMessage(const wchar_t* message);
    void __cdecl LogErrorMessageFormat(const wchar_t* format, ...);
    void LogWarningMessage(const wchar_t* message);
    void __cdecl LogWarningMessageFormat(const wchar_t* format, ...);
    void LogInformationalMessage(const wchar_t* message);
    void __cdecl LogInformationalMessageFormat(const wchar_t* format, ...);
    void LogVerboseMessage(const wchar_t* message);
    void __cdecl LogVerboseMessageFormat(const wchar_t* format, ...);
    void LogTraceMessage(const wchar_t* message);
    void __cdecl LogTraceMessageFormat(const wchar_t* format, ...);

    // Sends messages to `sink` from now on and returns the one before. An empty sink stands for the default, which is
    // the debugger's output.
    Sink SetSink(Sink sink);

private:
    void Log(LogLevel level, const wchar_t* message);
    void LogFormat(LogLevel level, const wchar_t* format, va_list arguments);

    std::mutex m_mutex;
    Sink m_sink;
};

// The one service of the process.
CORESV_API CLoggingService& Logger();
