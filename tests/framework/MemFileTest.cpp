#include <afx.h>

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "support/FileBytes.h"

TEST(MemFile, GrowsByStepsAndHandsItsBufferOver) {
    CMemFile file(8);
    file.Write("0123456789", 10);
    file.Seek(2, CFile::end);
    EXPECT_EQ(file.GetLength(), 10U);
    file.Write("x", 1);
    file.Seek(-9, CFile::current);
    file.Write("ab", 2);
    EXPECT_EQ(file.GetPosition(), 6U);
    char got[20] = {};
    EXPECT_EQ(file.Read(got, sizeof(got)), 7U);
    EXPECT_EQ(std::string(got, 7), std::string("6789\0\0x", 7));
    EXPECT_EQ(file.Read(got, sizeof(got)), 0U);
    const std::unique_ptr<BYTE, decltype(&std::free)> buffer(file.Detach(), std::free);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer.get()), 13), std::string("0123ab6789\0\0x", 13));
    EXPECT_EQ(file.GetLength() + file.GetPosition(), 0U);
    EXPECT_EQ(file.Detach(), nullptr);
}

TEST(MemFile, BufferPointerCoversWhatIsThere) {
    CMemFile file;
    void* start = nullptr;
    void* end = nullptr;
    EXPECT_EQ(file.GetBufferPtr(CFile::bufferRead, 10, &start, &end), 0U);
    EXPECT_EQ(start, end);
    file.Write("hello", 5);
    file.Seek(1, CFile::begin);
    EXPECT_EQ(file.GetBufferPtr(CFile::bufferRead, 10, &start, &end), 4U);
    EXPECT_EQ(std::string(static_cast<char*>(start), static_cast<char*>(end)), "ello");
    EXPECT_EQ(file.GetPosition(), 5U);
}

TEST(MemFile, IsFilledInPlaceAndUsedAgain) {
    CMemFile file;
    void* start = nullptr;
    void* end = nullptr;
    file.Write("head", 4);
    EXPECT_EQ(file.GetBufferPtr(CFile::bufferWrite, 2000, &start, &end), 2000U);
    EXPECT_EQ(static_cast<char*>(end) - static_cast<char*>(start), 2000);
    std::memcpy(start, "tail", 4);
    EXPECT_EQ(file.GetLength(), 4U);
    file.GetBufferPtr(CFile::bufferCommit, 3, nullptr, nullptr);
    EXPECT_EQ(file.GetLength() + file.GetPosition(), 14U);
    file.SeekToBegin();
    file.GetBufferPtr(CFile::bufferRead, 100, &start, &end);
    EXPECT_EQ(std::string(static_cast<char*>(start), static_cast<char*>(end)), "headtai");

    const void* const memory = start;
    file.SetLength(0);
    EXPECT_EQ(file.GetLength() + file.GetPosition(), 0U);
    file.SetLength(2);
    EXPECT_EQ(file.GetBufferPtr(CFile::bufferRead, 100, &start, &end), 2U);
    EXPECT_EQ(start, memory);
    EXPECT_EQ(std::string(static_cast<char*>(start), static_cast<char*>(end)), std::string(2, '\0'));
}

TEST(MemFile, RefusesWhatItCannotDo) {
    CMemFile file;
    file.Write("hello", 5);
    EXPECT_EQ(CauseOf([&] { file.Seek(-6, CFile::end); }), CFileException::badSeek);
    EXPECT_EQ(file.GetPosition(), 5U);
    file.Close();
    EXPECT_EQ(file.GetLength(), 0U);
    try {
        file.Write("x", 1);
        ADD_FAILURE();
    } catch (CMemoryException* problem) {
        problem->Delete();
    }
}
