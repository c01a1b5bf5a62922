#include "files/VlpFile.h"

#include <atlbase.h>
#include <gtest/gtest.h>

#include "files/DeepFolder.h"
#include "support/FileBytes.h"
#include "support/ImportPatch.h"
#include "support/LogCapture.h"
#include "support/ScopedTestDir.h"

namespace {

struct Opening {
    DWORD access;
    DWORD share;
    DWORD disposition;
    DWORD attributes;
    bool isInherited = true;
    bool operator==(const Opening&) const = default;
};

void PrintTo(const Opening& opening, std::ostream* out) {
    *out << std::hex << opening.access << ' ' << opening.share << ' ' << opening.disposition << ' '
         << opening.attributes << ' ' << opening.isInherited;
}

Opening s_opening;
std::wstring s_openedPath;
HANDLE s_transaction = nullptr;

HANDLE WINAPI NoteOpening(LPCWSTR path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security, DWORD disposition,
                          DWORD attributes, HANDLE) {
    s_openedPath = path;
    s_opening = {access, share, disposition, attributes, security->bInheritHandle != FALSE};
    SetLastError(ERROR_SHARING_VIOLATION);
    return security->nLength == 24 ? INVALID_HANDLE_VALUE : nullptr;
}

HANDLE WINAPI NoteTransacted(LPCWSTR path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security, DWORD disposition,
                             DWORD attributes, HANDLE origin, HANDLE transaction, PUSHORT, PVOID) {
    s_transaction = transaction;
    return NoteOpening(path, access, share, security, disposition, attributes, origin);
}

class TransactedFile : public CVlpFile {
public:
    TransactedFile(HANDLE transaction, BOOL fallback) : m_manager(transaction, fallback) { m_pTM = &m_manager; }

private:
    struct Manager : CAtlTransactionManager {
        Manager(HANDLE transaction, BOOL fallback) : CAtlTransactionManager(fallback, FALSE) {
            m_hTransaction = transaction;
        }
    } m_manager;
};

}  // namespace

TEST(VlpFile, EveryFlagReachesTheSystem) {
    const ImportPatch<decltype(&CreateFileW)> patch(GetModuleHandleW(nullptr), "CreateFileW", NoteOpening);
    const struct {
        UINT flags;
        Opening opening;
    } rows[] = {
        {0x0, {GENERIC_READ, 0, OPEN_EXISTING, 0x80}},
        {0x1, {GENERIC_WRITE, 0, OPEN_EXISTING, 0x80}},
        {0x2, {GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING, 0x80}},
        {0x8010, {GENERIC_READ, 0, OPEN_EXISTING, 0x80}},
        {0x20, {GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0x80}},
        {0x30, {GENERIC_READ, FILE_SHARE_WRITE, OPEN_EXISTING, 0x80}},
        {0x40, {GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, 0x80}},
        {0x50, {GENERIC_READ, 0, OPEN_EXISTING, 0x80}},
        {0x80, {GENERIC_READ, 0, OPEN_EXISTING, 0x80, false}},
        {0x1001, {GENERIC_WRITE, 0, CREATE_ALWAYS, 0x80}},
        {0x3011, {GENERIC_WRITE, 0, OPEN_ALWAYS, 0x80}},
        {0x2001, {GENERIC_WRITE, 0, OPEN_EXISTING, 0x80}},
        {0x10000, {GENERIC_READ, 0, OPEN_EXISTING, 0x80 | FILE_FLAG_NO_BUFFERING}},
        {0x20000, {GENERIC_READ, 0, OPEN_EXISTING, 0x80 | FILE_FLAG_WRITE_THROUGH}},
        {0x40000, {GENERIC_READ, 0, OPEN_EXISTING, 0x80 | FILE_FLAG_RANDOM_ACCESS}},
        {0x80000, {GENERIC_READ, 0, OPEN_EXISTING, 0x80 | FILE_FLAG_SEQUENTIAL_SCAN}},
        {0xFB0C2, {GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_ALWAYS, 0xB8000080, false}},
    };
    const std::wstring path = L"C:\\" + std::wstring(245, L'x');
    for (const auto& row : rows) {
        CFileException problem;
        EXPECT_FALSE(CVlpFile().Open(path.c_str(), row.flags, &problem));
        EXPECT_EQ(s_openedPath, L"\\\\?\\" + path);
        EXPECT_EQ(s_opening, row.opening) << std::hex << row.flags;
        EXPECT_EQ(problem.m_cause, CFileException::sharingViolation);
        EXPECT_EQ(problem.m_lOsError, ERROR_SHARING_VIOLATION);
        EXPECT_EQ(problem.m_strFileName, path.c_str());
    }
}

// The transaction is a stand-in, because Wine has none: its CreateTransaction answers a handle that stands for nothing,
// and kernel32 lacks CreateFileTransactedW. So what is seen here is how the file is opened, not that it is rolled back.
TEST(VlpFile, ATransactionObjectDecidesHowToOpen) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"a.txt");
    PutBytes(path, "old");
    EXPECT_TRUE(TransactedFile(nullptr, TRUE).Open(path.c_str(), CFile::modeRead));
    EXPECT_FALSE(TransactedFile(nullptr, FALSE).Open(path.c_str(), CFile::modeRead));

    const ImportPatch<decltype(&GetProcAddress)> patch(
        LoadedModule(L"framework.dll"), "GetProcAddress", [](HMODULE, LPCSTR name) -> FARPROC {
            if (std::string_view(name) != "CreateFileTransactedW") return nullptr;
            return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&NoteTransacted));
        });
    const HANDLE transaction = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    EXPECT_FALSE(TransactedFile(transaction, TRUE).Open(path.c_str(), CFile::modeWrite));
    EXPECT_EQ(s_transaction, transaction);
    EXPECT_EQ(s_opening, (Opening{GENERIC_WRITE, 0, OPEN_EXISTING, 0x80}));
}

TEST(VlpFile, ReadsAndWritesUnderALongPath) {
    const ScopedTestDir dir;
    const std::wstring path = MakeDeepFolder(dir.Path()) + L"\\file.bin";
    CVlpFile file;
    ASSERT_TRUE(file.Open(path.c_str(), CFile::modeCreate | CFile::modeReadWrite));
    file.Write("hello", 5);
    EXPECT_EQ(file.Seek(-2, CFile::end), 3U);
    char tail[8] = {};
    EXPECT_EQ(file.Read(tail, sizeof(tail)), 2U);
    EXPECT_STREQ(tail, "lo");
    EXPECT_EQ(file.GetPosition(), 5U);
    EXPECT_EQ(file.GetLength(), 5U);
    EXPECT_EQ(file.GetFilePath(), path.c_str());
    file.Close();
    EXPECT_EQ(CVlpFile(path.c_str()).GetLength(), 5U);
}

TEST(VlpFile, TheReadingConstructorLogsAndThrows) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"none.txt");
    const LogCapture log;
    EXPECT_EQ(CauseOf([&] { CVlpFile file(path.c_str()); }), CFileException::fileNotFound);
    EXPECT_TRUE(log.Contains(LogLevel::Warning, L"File open failure - File:'" + path + L"'(2:2)"));
    EXPECT_THROW(CVlpFile().SetFilePath(nullptr), CInvalidArgException*);
}

TEST(VlpFile, AMemoryBufferIsWrittenFromTheStartAtClose) {
    const ScopedTestDir dir;
    const std::wstring path = dir.Path(L"a.txt");
    PutBytes(path, "0123456789");
    CVlpFile file;
    file.SetUseMemoryBuffer(true);
    ASSERT_TRUE(file.Open(path.c_str(), CFile::modeReadWrite | CFile::shareDenyNone));
    EXPECT_EQ(file.GetLength(), 0U) << "of the buffer";
    file.Write("abcdef", 6);
    EXPECT_EQ(file.Seek(1, CFile::begin), 1U);
    file.Write("X", 1);
    char rest[8] = {};
    EXPECT_EQ(file.Read(rest, sizeof(rest)), 4U);
    EXPECT_STREQ(rest, "cdef");
    EXPECT_EQ(file.GetPosition(), 6U);
    EXPECT_EQ(BytesOf(path), "0123456789");
    file.Close();
    EXPECT_EQ(BytesOf(path), "aXcdef6789");

    ASSERT_TRUE(file.Open(path.c_str(), CFile::modeCreate | CFile::modeWrite));
    file.Close();
    EXPECT_EQ(BytesOf(path), "") << "nothing was written";
    EXPECT_EQ(CauseOf([&] { file.Close(); }), CFileException::invalidFile);
}
