#include <afx.h>

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

#include "support/FileBytes.h"
#include "support/ScopedTestDir.h"

TEST(File, WritesReadsAndSeeks) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"data.bin");
    {
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeReadWrite | CFile::shareExclusive);
        file.Write("hello\r\n\0end", 11);
        EXPECT_EQ(file.GetPosition(), 11U);
        EXPECT_EQ(file.Seek(-3, CFile::end), 8U);
        char tail[10] = {};
        EXPECT_EQ(file.Read(tail, sizeof(tail)), 3U);
        EXPECT_STREQ(tail, "end");
        EXPECT_EQ(file.Read(tail, sizeof(tail)), 0U);
        EXPECT_EQ(file.Seek(0, CFile::begin), 0U);
        file.Write("J", 1);
        file.Write(nullptr, 0);
        EXPECT_EQ(file.Seek(1, CFile::current), 2U);
        EXPECT_EQ(file.SeekToEnd(), 11U);
        EXPECT_EQ(file.GetLength(), 11U);
        EXPECT_EQ(file.GetFileName(), L"data.bin");
        EXPECT_EQ(file.GetFilePath(), path.c_str());
    }
    EXPECT_EQ(BytesOf(path), std::string("Jello\r\n\0end", 11));
}

TEST(File, TheFlagsDecideWhatIsThereAfterOpening) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"kept.txt");
    std::ofstream(std::filesystem::path(path)) << "old";
    CFile(path.c_str(), CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite);
    EXPECT_EQ(BytesOf(path), "old");
    CFile(path.c_str(), CFile::modeWrite);
    EXPECT_EQ(BytesOf(path), "old");
    CFile(path.c_str(), CFile::modeCreate | CFile::modeWrite);
    EXPECT_EQ(BytesOf(path), "");
    const std::wstring fresh = dir.Path(L"fresh.txt");
    EXPECT_FALSE(CFile().Open(fresh.c_str(), CFile::modeWrite));
    EXPECT_TRUE(CFile().Open(fresh.c_str(), CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite));
}

TEST(File, SharesAsTheFirstOneAllows) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"shared.txt");
    const struct {
        UINT share;
        bool mayRead;
        bool mayWrite;
    } rows[] = {{CFile::shareExclusive, false, false},
                {CFile::shareDenyWrite, true, false},
                {CFile::shareDenyRead, false, true},
                {CFile::shareDenyNone, true, true}};
    for (const auto& row : rows) {
        const CFile first(path.c_str(), CFile::modeCreate | CFile::modeReadWrite | row.share);
        EXPECT_EQ(CFile().Open(path.c_str(), CFile::modeRead | CFile::shareDenyNone) != FALSE, row.mayRead)
            << row.share;
        EXPECT_EQ(CFile().Open(path.c_str(), CFile::modeWrite | CFile::shareDenyNone) != FALSE, row.mayWrite)
            << row.share;
    }
}

TEST(File, TellsWhyItCannotBeOpened) {
    const ScopedTestDir dir;
    const std::wstring missing = dir.Path(L"none.txt");
    CFile file;
    CFileException problem;
    EXPECT_FALSE(file.Open(missing.c_str(), CFile::modeRead, &problem));
    EXPECT_EQ(problem.m_cause, CFileException::fileNotFound);
    EXPECT_EQ(problem.m_lOsError, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(problem.m_strFileName, missing.c_str());
    EXPECT_EQ(file.m_hFile, CFile::hFileNull);
    wchar_t text[200];
    EXPECT_TRUE(problem.GetErrorMessage(text, 200));
    EXPECT_NE(text[0], L'\0');
    EXPECT_TRUE(problem.GetErrorMessage(text, 5));
    EXPECT_EQ(std::wstring(text).size(), 4U);

    EXPECT_FALSE(file.Open(dir.Path(L"no\\none.txt").c_str(), CFile::modeRead, &problem));
    EXPECT_EQ(problem.m_cause, CFileException::badPath);
    EXPECT_FALSE(file.Open(dir.Path().c_str(), CFile::modeRead, &problem));
    EXPECT_EQ(problem.m_cause, CFileException::accessDenied);
    EXPECT_FALSE(file.Open(missing.c_str(), CFile::modeRead));
    EXPECT_EQ(CauseOf([&] { CFile(missing.c_str(), CFile::modeRead); }), CFileException::fileNotFound);
}

TEST(File, AClosedOrReadOnlyFileRefuses) {
    const ScopedTestDir dir;
    CFile file(dir.Path(L"a.txt").c_str(), CFile::modeCreate | CFile::modeWrite);
    char byte = 0;
    EXPECT_EQ(CauseOf([&] { file.Read(&byte, 1); }), CFileException::accessDenied);
    EXPECT_EQ(CauseOf([&] { file.Seek(-1, CFile::begin); }), CFileException::badSeek);
    file.Close();
    file.Close();
    EXPECT_EQ(file.m_hFile, CFile::hFileNull);
    EXPECT_EQ(CauseOf([&] { file.Write("x", 1); }), CFileException::invalidFile);
    EXPECT_EQ(CauseOf([&] { static_cast<void>(file.GetLength()); }), CFileException::invalidFile);
    EXPECT_EQ(BytesOf(dir.Path(L"a.txt")), "");
}
