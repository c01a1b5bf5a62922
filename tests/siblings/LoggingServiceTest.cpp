#include "siblings/coresv/LoggingService.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "siblings/coresv/LogMethodEntryExit.h"
#include "support/LogCapture.h"

namespace {

using Line = LogCapture::Line;

// What the process sends to its debugger, read as a debugger outside would: from the shared buffer.
class DebuggerOutput {
public:
    DebuggerOutput()
        : m_ready(CreateEventW(nullptr, FALSE, TRUE, L"DBWIN_BUFFER_READY")),
          m_written(CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_DATA_READY")),
          m_section(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kBytes, L"DBWIN_BUFFER")),
          m_buffer(static_cast<const char*>(MapViewOfFile(m_section, FILE_MAP_READ, 0, 0, kBytes))) {}
    ~DebuggerOutput() {
        UnmapViewOfFile(m_buffer);
        for (const HANDLE handle : {m_section, m_written, m_ready}) CloseHandle(handle);
    }
    DebuggerOutput(const DebuggerOutput&) = delete;
    DebuggerOutput& operator=(const DebuggerOutput&) = delete;

    // The next message, or an empty text if none comes.
    std::string Next() {
        if (WaitForSingleObject(m_written, 5000) != WAIT_OBJECT_0) return {};
        std::string text(m_buffer + sizeof(DWORD));  // the writer's process id stands in front
        SetEvent(m_ready);
        return text;
    }

private:
    static constexpr DWORD kBytes = 4096;
    HANDLE m_ready;
    HANDLE m_written;
    HANDLE m_section;
    const char* m_buffer;
};

}  // namespace

TEST(LoggingService, TakesTextsAsTheyComeAndFormats) {
    const LogCapture capture;
    const std::wstring path(40000, L'p');
    Logger().LogWarningMessage(L"w %s");
    Logger().LogInformationalMessageFormat(L"i %S %u%%", "narrow", 5U);
    Logger().LogVerboseMessageFormat(L"v %s", L"wide");
    Logger().LogErrorMessage(nullptr);
    Logger().LogErrorMessageFormat(nullptr);
    Logger().LogErrorMessageFormat(L"");
    Logger().LogErrorMessageFormat(L"<%s>", path.c_str());
    EXPECT_EQ(capture.GetLines(), (std::vector<Line>{{LogLevel::Warning, L"w %s"},
                                                     {LogLevel::Informational, L"i narrow 5%"},
                                                     {LogLevel::Verbose, L"v wide"},
                                                     {LogLevel::Error, L""},
                                                     {LogLevel::Error, L""},
                                                     {LogLevel::Error, L""},
                                                     {LogLevel::Error, L"<" + path + L">"}}));
}

TEST(LoggingService, KeepsTheLastErrorAndThrowsNothing) {
    auto previous = Logger().SetSink([](LogLevel, const wchar_t*) {
        SetLastError(ERROR_DISK_FULL);
        throw std::runtime_error("the sink failed");
    });
    SetLastError(ERROR_ACCESS_DENIED);
    EXPECT_NO_THROW(Logger().LogErrorMessage(L"plain"));
    EXPECT_NO_THROW(Logger().LogErrorMessageFormat(L"%d", 1));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    Logger().SetSink(std::move(previous));
}

TEST(LoggingService, LinesOfManyThreadsStayWhole) {
    constexpr int kThreads = 4;
    constexpr int kLines = 500;
    int inside = 0;  // guarded by nothing but the service
    int most = 0;
    std::vector<std::wstring> lines;
    auto previous = Logger().SetSink([&](LogLevel, const wchar_t* message) {
        most = std::max(most, ++inside);
        std::this_thread::yield();  // the others' chance, all threads being on one processor
        lines.emplace_back(message);
        --inside;
    });
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < kLines; ++i) Logger().LogTraceMessageFormat(L"%d:%d", t, i);
        });
    }
    for (std::thread& thread : threads) thread.join();
    Logger().SetSink(std::move(previous));

    EXPECT_EQ(most, 1);
    ASSERT_EQ(lines.size(), static_cast<size_t>(kThreads * kLines));
    for (int t = 0; t < kThreads; ++t) {
        // Each thread's own lines are in its order.
        const std::wstring prefix = std::to_wstring(t) + L":";
        int next = 0;
        for (const std::wstring& line : lines) {
            if (!line.starts_with(prefix)) continue;
            EXPECT_EQ(line, prefix + std::to_wstring(next++));
        }
        EXPECT_EQ(next, kLines);
    }
}

TEST(LoggingService, WithoutASinkTheDebuggerHears) {
    DebuggerOutput output;
    auto previous = Logger().SetSink({});
    Logger().LogWarningMessageFormat(L"File %d", 7);
    EXPECT_EQ(output.Next(), "warning: File 7\n");
    Logger().SetSink(std::move(previous));
}

TEST(LogMethodEntryExit, TracesEveryWayOut) {
    const LogCapture capture;
    try {
        const CLogMethodEntryExit log(L"CFile::Open");
        Logger().LogErrorMessage(L"within");
        throw 1;
    } catch (int) {
    }
    EXPECT_EQ(capture.GetLines(), (std::vector<Line>{{LogLevel::Trace, L"Enter CFile::Open"},
                                                     {LogLevel::Error, L"within"},
                                                     {LogLevel::Trace, L"Leave CFile::Open"}}));
}
