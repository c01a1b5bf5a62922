// Files on the disk and in memory, what their exceptions tell, and the threads that work with them.
#include <afxwin.h>

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "support/FileBytes.h"
#include "support/ScopedTestDir.h"

TEST(File, OpensReadsAndWrites) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"data.bin");
    const auto opens = [&](UINT flags) { return CFile().Open(path.c_str(), flags) != FALSE; };
    constexpr UINT kKeep = CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite;
    EXPECT_TRUE(!opens(CFile::modeWrite) && opens(kKeep));
    CFile file(path.c_str(), CFile::modeReadWrite);
    char tail[10] = {};
    file.Write("hello\r\n\0end", 11);
    EXPECT_EQ(file.Seek(-3, CFile::end), 8U);
    EXPECT_EQ(file.Read(tail, sizeof(tail)), 3U);
    EXPECT_STREQ(tail, "end");
    file.SeekToBegin();
    file.Write("J", 1);
    EXPECT_EQ(file.Seek(1, CFile::current) + file.GetPosition() + file.SeekToEnd() + file.GetLength(),
              2U + 2 + 11 + 11);
    EXPECT_EQ(CauseOf([&] { file.Seek(-1, CFile::begin); }), CFileException::badSeek);
    file.Close();
    EXPECT_EQ(CauseOf([&] { file.Write("x", 1); }), CFileException::invalidFile);
    EXPECT_TRUE(opens(kKeep));
    EXPECT_EQ(BytesOf(path), std::string("Jello\r\n\0end", 11));
    EXPECT_TRUE(opens(CFile::modeCreate | CFile::modeWrite));
    EXPECT_EQ(BytesOf(path), "");
}

TEST(File, TellsWhyItCannotBeOpened) {
    const ScopedTestDir dir;
    const CFile held(dir.Path(L"held").c_str(), CFile::modeCreate | CFile::modeWrite | CFile::shareExclusive);
    const struct {
        std::wstring path;
        int cause;
        LONG error;
    } rows[] = {{dir.Path(L"none"), CFileException::fileNotFound, ERROR_FILE_NOT_FOUND},
                {dir.Path(L"no\\none"), CFileException::badPath, ERROR_PATH_NOT_FOUND},
                {dir.Path(), CFileException::accessDenied, ERROR_ACCESS_DENIED},
                {dir.Path(L"held"), CFileException::sharingViolation, ERROR_SHARING_VIOLATION}};
    CFileException problem;
    for (const auto& [path, cause, error] : rows) {
        EXPECT_FALSE(CFile().Open(path.c_str(), CFile::modeRead, &problem) || CFile().Open(path.c_str(), 0));
        EXPECT_EQ(problem.m_cause, cause);
        EXPECT_EQ(problem.m_lOsError, error);
        EXPECT_EQ(problem.m_strFileName, path.c_str());
        EXPECT_EQ(CauseOf([&name = path] { CFile(name.c_str(), CFile::modeRead); }), cause);
    }
    wchar_t text[] = L"xxxxxx";
    EXPECT_TRUE(problem.GetErrorMessage(text, 5));
    EXPECT_EQ(std::wstring(text).size(), 4U) << "cut to the buffer";
    EXPECT_TRUE(CInvalidArgException().GetErrorMessage(text, 4));
    EXPECT_STREQ(text, L"An ");
    EXPECT_FALSE(problem.GetErrorMessage(text, 0) || CUserException().GetErrorMessage(text, 6));
    EXPECT_STREQ(text, L"");
}

TEST(MemFile, GrowsIsFilledInPlaceAndHandsItsBufferOver) {
    CMemFile file(8);
    void* start = nullptr;
    void* end = nullptr;
    const auto rest = [&] {
        file.GetBufferPtr(CFile::bufferRead, 100, &start, &end);
        return std::string(static_cast<char*>(start), static_cast<char*>(end));
    };
    file.Write("gggggggggggggggg", 16);
    file.SetLength(0);  // the bytes are lost, the memory stays
    file.Write("0123456789", 10);
    file.Seek(2, CFile::end);
    file.Write("x", 1);
    file.Seek(-9, CFile::current);
    file.Write("ab", 2);
    char got[4] = {};
    EXPECT_EQ(file.Read(got, 4), 4U);
    EXPECT_EQ(std::string(got, 4) + rest() + rest(), std::string("6789\0\0x", 7));
    EXPECT_EQ(file.Read(got, 1), 0U);
    EXPECT_EQ(CauseOf([&] { file.Seek(-14, CFile::end); }), CFileException::badSeek);
    EXPECT_EQ(file.GetBufferPtr(CFile::bufferWrite, 2000, &start, &end), 2000U);
    std::memset(start, 't', 2000);
    file.GetBufferPtr(CFile::bufferCommit, 3, nullptr, nullptr);
    EXPECT_EQ(file.GetLength() + file.GetPosition(), 32U);
    file.SetLength(14);
    file.SetLength(15);
    file.SeekToBegin();
    EXPECT_EQ(rest(), std::string("0123ab6789\0\0xt\0", 15));
    std::free(file.Detach());
    EXPECT_EQ(file.GetLength() + file.GetPosition(), 0U);
    file.Close();
    EXPECT_TRUE(Throws<CMemoryException>([&] { file.Write("x", 1); })) << "a closed one cannot grow";
}

TEST(WinThread, RunsInTheCallersModuleState) {
    static CWinThread* s_object = nullptr;
    static AFX_MODULE_STATE* s_state = nullptr;
    AFX_MODULE_STATE state(nullptr);
    AFX_MANAGE_STATE(&state)
    const AFX_THREADPROC procedure = [](LPVOID code) -> UINT {
        s_object = AfxGetThread();
        s_state = AfxGetModuleState();
        return *static_cast<UINT*>(code);
    };
    UINT code = 7;
    const std::unique_ptr<CWinThread> thread(
        AfxBeginThread(procedure, &code, THREAD_PRIORITY_NORMAL, 0, CREATE_SUSPENDED));
    thread->m_bAutoDelete = FALSE;
    ResumeThread(thread->m_hThread);
    DWORD exitCode = 0;
    EXPECT_EQ(WaitForSingleObject(thread->m_hThread, INFINITE), WAIT_OBJECT_0);
    GetExitCodeThread(thread->m_hThread, &exitCode);
    EXPECT_EQ(exitCode, 7U);
    EXPECT_TRUE(s_object == thread.get() && s_state == &state && AfxGetThread() == nullptr);
}
