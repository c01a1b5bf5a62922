#include "FileText.h"

#include <windows.h>

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <system_error>

#include "Utf8.h"
#include "support/ImportPatch.h"
#include "support/ScopedTestDir.h"

namespace {

std::size_t FileCount(const std::wstring& folder) {
    const std::filesystem::directory_iterator files(folder);
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

int FailureStatus(const std::function<void()>& call) {
    try {
        call();
    } catch (const std::system_error& error) {
        EXPECT_EQ(std::string(error.what()).find_first_of("\r\n"), std::string::npos) << error.what();
        return error.code().value();
    }
    return 0;
}

TEST(FileText, ReplacesWhatIsThereAndLeavesNothingBeside) {
    const ScopedTestDir folder;
    const std::wstring path = folder.Path(L"Regeln \x4E2D\xD83D\xDE00.json");
    EXPECT_FALSE(ReadFileText(path).has_value());
    ReplaceFileText(path, std::string("a\0b\r\n", 5));
    EXPECT_EQ(ReadFileText(path), std::string("a\0b\r\n", 5));
    ReplaceFileText(path, "");
    EXPECT_EQ(ReadFileText(path), "");
    EXPECT_EQ(FileCount(folder.Path()), 1u);
}

TEST(FileText, AFailedReplacementLeavesTheOldTextAndNothingBeside) {
    const ScopedTestDir folder;
    const std::wstring path = folder.Path(L"rules.json");
    ReplaceFileText(path, "old");
    {
        const ImportPatch<decltype(&WriteFile)> patch(GetModuleHandleW(nullptr), "WriteFile",
                                                      [](HANDLE, LPCVOID, DWORD bytes, LPDWORD written, LPOVERLAPPED) {
                                                          *written = bytes - 1;
                                                          return TRUE;
                                                      });
        EXPECT_EQ(FailureStatus([&] { ReplaceFileText(path, "new text"); }), ERROR_DISK_FULL);
    }
    {
        const ImportPatch<decltype(&MoveFileExW)> patch(GetModuleHandleW(nullptr), "MoveFileExW",
                                                        [](LPCWSTR, LPCWSTR, DWORD) {
                                                            SetLastError(ERROR_ACCESS_DENIED);
                                                            return FALSE;
                                                        });
        EXPECT_EQ(FailureStatus([&] { ReplaceFileText(path, "new text"); }), ERROR_ACCESS_DENIED);
    }
    EXPECT_EQ(ReadFileText(path), "old");
    EXPECT_EQ(FileCount(folder.Path()), 1u);
}

TEST(FileText, WhatCannotBeReadOrWrittenIsAFailureNotAMissingFile) {
    const ScopedTestDir folder;
    EXPECT_NE(FailureStatus([&] { ReadFileText(folder.Path()); }), 0) << "a folder";
    EXPECT_EQ(FailureStatus([&] { ReadFileText(folder.Path(L"none\\rules.json")); }), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(FailureStatus([&] { ReplaceFileText(folder.Path(L"none\\rules.json"), "x"); }), ERROR_PATH_NOT_FOUND);

    const std::wstring path = folder.Path(L"large.json");
    std::filesystem::resize_file((ReplaceFileText(path, ""), path), (64u << 20) + 1);
    EXPECT_EQ(FailureStatus([&] { ReadFileText(path); }), ERROR_FILE_TOO_LARGE);
}

TEST(Utf8, HalfASurrogatePairCannotBeSavedButCanBeShown) {
    EXPECT_EQ(ToUtf8(L"\xC4\xD83D\xDE00"), "\xC3\x84\xF0\x9F\x98\x80");
    EXPECT_EQ(FromUtf8("\xC3\x84\xF0\x9F\x98\x80"), L"\xC4\xD83D\xDE00");
    EXPECT_THROW(ToUtf8(L"a\xD83D"), std::runtime_error);
    EXPECT_THROW(ToUtf8(L"\xDE00z"), std::runtime_error);
    EXPECT_EQ(ToReadableUtf8(L"a\xD83D"), "a\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(L""), "");
}

}  // namespace
