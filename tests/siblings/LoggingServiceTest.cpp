#include "siblings/coresv/LoggingService.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "siblings/coresv/LogMethodEntryExit.h"
#include "support/LogCapture.h"

using Line = LogCapture::Line;

TEST(LoggingService, TakesTextsAsTheyComeFormatsAndTraces) {
    const LogCapture capture;
    const std::wstring path(40000, L'p');
    Logger().LogWarningMessage(L"w %s");
    Logger().LogInformationalMessageFormat(L"i %S %u%%", "narrow", 5U);
    Logger().LogErrorMessage(nullptr);
    Logger().LogErrorMessageFormat(nullptr);
    Logger().LogErrorMessageFormat(L"<%s>", path.c_str());
    {
        const CLogMethodEntryExit log(L"CFile::Open");
        Logger().LogVerboseMessageFormat(L"v %s", L"wide");
    }
    EXPECT_EQ(capture.GetLines(), (std::vector<Line>{{LogLevel::Warning, L"w %s"},
                                                     {LogLevel::Informational, L"i narrow 5%"},
                                                     {LogLevel::Error, L""},
                                                     {LogLevel::Error, L""},
                                                     {LogLevel::Error, L"<" + path + L">"},
                                                     {LogLevel::Trace, L"Enter CFile::Open"},
                                                     {LogLevel::Verbose, L"v wide"},
                                                     {LogLevel::Trace, L"Leave CFile::Open"}}));
}

TEST(LoggingService, KeepsTheLastErrorAndThrowsNothing) {
    auto previous = Logger().SetSink([](LogLevel, const wchar_t*) {
        SetLastError(ERROR_DISK_FULL);
        throw std::runtime_error("the sink failed");
    });
    for (const bool plain : {true, false}) {
        SetLastError(ERROR_ACCESS_DENIED);
        EXPECT_NO_THROW(plain ? Logger().LogErrorMessage(L"plain") : Logger().LogErrorMessageFormat(L"%d", 1));
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    }
    Logger().SetSink(std::move(previous));
}

TEST(LoggingService, HandsOneLineAtATimeToTheSink) {
    int inside = 0, most = 0, lines = 0;  // guarded by nothing but the service
    auto previous = Logger().SetSink([&](LogLevel, const wchar_t*) {
        most = std::max(most, ++inside);
        std::this_thread::yield();  // the other's chance, both threads being on one processor
        --inside;
        ++lines;
    });
    const auto log = [] {
        for (int i = 0; i < 500; ++i) Logger().LogTraceMessageFormat(L"%d", i);
    };
    std::thread other(log);
    log();
    other.join();
    Logger().SetSink(std::move(previous));
    EXPECT_EQ(most, 1);
    EXPECT_EQ(lines, 2 * 500);
}

// Read as a debugger outside would: from the shared buffer, where the writer's process id stands in front.
TEST(LoggingService, WithoutASinkTheDebuggerHears) {
    constexpr DWORD kBytes = 4096;
    const HANDLE handles[] = {
        CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_DATA_READY"),
        CreateEventW(nullptr, FALSE, TRUE, L"DBWIN_BUFFER_READY"),
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kBytes, L"DBWIN_BUFFER")};
    const void* const buffer = MapViewOfFile(handles[2], FILE_MAP_READ, 0, 0, kBytes);
    auto previous = Logger().SetSink({});
    Logger().LogWarningMessageFormat(L"File %d", 7);
    EXPECT_EQ(WaitForSingleObject(handles[0], 5000), WAIT_OBJECT_0);
    EXPECT_STREQ(static_cast<const char*>(buffer) + sizeof(DWORD), "warning: File 7\n");
    Logger().SetSink(std::move(previous));
    UnmapViewOfFile(buffer);
    for (const HANDLE handle : handles) CloseHandle(handle);
}
