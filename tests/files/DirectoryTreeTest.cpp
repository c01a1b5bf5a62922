#include <gtest/gtest.h>
#include <string>

#include "files/Junctions.h"
#include "files/LongPathFile.h"
#include "files/NotedCall.h"
#include "files/PathHelper.h"
#include "support/LogCapture.h"
#include "support/ScopedTestDir.h"

namespace {

constexpr std::wstring_view kFailure = L"[CPathHelper::CreateDirectoryTree] Couldn't create the directory";

std::wstring Levels(int count, size_t length) {
    std::wstring path;
    for (int i = 0; i < count; ++i) path += L"\\" + std::wstring(length, L'n');
    return path;
}

void CreateEmptyFile(const CString& path) {
    CloseHandle(LongPath::CreateFile(path, GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0));
}

}  // namespace

TEST(DirectoryTree, IsCreatedRenamedAndDeletedBeyondTheClassicLimit) {
    const ScopedTestDir dir;
    const CString top = dir.Path(L"top").c_str();
    const CString deep = top + Levels(30, 30).c_str();
    const LogCapture log;
    ASSERT_TRUE(CPathHelper::CreateDirectoryTree(deep));
    EXPECT_TRUE(CPathHelper::CreateDirectoryTree(deep));
    EXPECT_TRUE(log.GetLines().empty());
    EXPECT_TRUE(CPathHelper::DirectoryExists(deep));
    CreateEmptyFile(deep + L"\\file");
    EXPECT_TRUE(CPathHelper::FileExists(deep + L"\\file"));
    EXPECT_EQ(CPathHelper::GetLongPath(deep), deep);

    const CString renamed = CPathHelper::CombinePath(CPathHelper::GetParentPath(deep), L"renamed");
    EXPECT_TRUE(LongPath::MoveFile(deep, renamed));
    EXPECT_FALSE(CPathHelper::DirectoryExists(deep));
    EXPECT_TRUE(LongPath::DeleteFile(renamed + L"\\file"));
    for (CString path = renamed; path != top; path = CPathHelper::GetParentPath(path)) {
        ASSERT_TRUE(CPathHelper::DeleteDirectory(path, false));
    }
    EXPECT_TRUE(CPathHelper::DeleteDirectory(top, false)) << "nothing else is left";
}

// Wine takes long paths without the prefix, too.
TEST(DirectoryTree, LongPathsReachTheSystemWithThePrefix) {
    const NotedCall create(&CreateDirectoryW, "CreateDirectoryW", TRUE);
    const NotedCall remove(&RemoveDirectoryW, "RemoveDirectoryW", TRUE);
    const CString path = L"C:\\" + CString(L'x', 245);
    EXPECT_TRUE(CPathHelper::CreateDirectoryTree(path));
    EXPECT_TRUE(PrepareJunctionDirectory(path));
    EXPECT_TRUE(CPathHelper::DeleteDirectory(path, false));
    EXPECT_EQ(TakePaths(), Paths(3, (L"\\\\?\\" + path).GetString()));
}

TEST(DirectoryTree, RefusesWhatHasNoRoot) {
    struct Case {
        LPCWSTR path, problem;
    };
    const Case cases[] = {
        {L"Q:\\a", L"' - the specified drive letter is invalid."},
        {L"a\\b", L"' - can't the determine the path type (drive or UNC)."},
        {L"", L"' - can't the determine the path type (drive or UNC)."},
        {L"\\\\server", L"' - can't the determine the path type (drive or UNC)."},
    };
    for (const Case& c : cases) {
        const LogCapture log;
        EXPECT_FALSE(CPathHelper::CreateDirectoryTree(c.path));
        const std::vector<LogCapture::Line> expected = {
            {LogLevel::Error, std::wstring(kFailure) + L" tree '" + c.path + c.problem}};
        EXPECT_EQ(log.GetLines(), expected);
    }
    const LogCapture log;
    EXPECT_FALSE(CPathHelper::CreateDirectoryTree(L"\\\\no.such.server\\share"));
    EXPECT_TRUE(log.GetLines().empty());  // a share is all root
}

TEST(DirectoryTree, AFileInTheWayEndsItWithWhatWasCreatedLeft) {
    const ScopedTestDir dir;
    const CString file = dir.Path(L"file").c_str();
    CreateEmptyFile(file);
    const LogCapture log;
    EXPECT_FALSE(CPathHelper::CreateDirectoryTree(file + L"\\a\\b"));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
    const std::wstring expected = std::wstring(kFailure) + L" '" + file.GetString() +
                                  L"\\a' as part of creating the directory tree '" + file.GetString() + L"\\a\\b'- 0x3";
    EXPECT_TRUE(log.Contains(LogLevel::Error, expected)) << testing::PrintToString(expected);
    EXPECT_FALSE(CPathHelper::CreateDirectoryTree(dir.Path(L"made\\no*name\\c").c_str()));
    EXPECT_TRUE(CPathHelper::DirectoryExists(dir.Path(L"made").c_str()));
}

TEST(DirectoryTree, MovingMakesADirectoryOfTheDestination) {
    const ScopedTestDir dir;
    const CString file = dir.Path(L"file").c_str(), target = dir.Path(L"a\\b").c_str();
    CreateEmptyFile(file);
    const LogCapture log;
    CPathHelper::MoveFile(file, L"Q:\\none");
    EXPECT_TRUE(CPathHelper::FileExists(file));
    CPathHelper::MoveFile(file, target);
    EXPECT_TRUE(CPathHelper::DirectoryExists(target));
    EXPECT_FALSE(CPathHelper::FileExists(file));
    EXPECT_TRUE(
        log.Contains(LogLevel::Trace, (L"original = '" + file + L"', destination = '" + target + L"'").GetString()));
}

TEST(DirectoryTree, DeletesAllBelowOnlyWhenAsked) {
    const ScopedTestDir dir;
    const CString top = dir.Path(L"top").c_str();
    ASSERT_TRUE(CPathHelper::CreateDirectoryTree(top + L"\\a\\b"));
    CreateEmptyFile(top + L"\\a\\file");
    EXPECT_FALSE(CPathHelper::DeleteDirectory(top, false));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_DIR_NOT_EMPTY});
    EXPECT_TRUE(CPathHelper::DeleteDirectory(top, true));
    EXPECT_FALSE(CPathHelper::DirectoryExists(top));
    EXPECT_FALSE(CPathHelper::DeleteDirectory(top, true));
}
