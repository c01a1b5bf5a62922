// One walk through a tree on disk that holds what trees should not: long paths, links to their own parents, other
// users' folders, files in the way. Search, copy, junctions, access and the wrappers' calls meet it for real.
#include <algorithm>
#include <gtest/gtest.h>
#include <set>

#include "files/FileFindEx.h"
#include "files/JunctionBuffer.h"
#include "files/Junctions.h"
#include "files/LongPathFile.h"
#include "files/NotedCall.h"
#include "files/PathHelper.h"
#include "files/ProfileCreator.h"
#include "helpers/UniqueHandle.h"
#include "registry/ProcessPrivilege.h"
#include "support/FakeVersion.h"
#include "support/FileBytes.h"
#include "support/FreshProcess.h"
#include "support/LogCapture.h"
#include "support/Narrow.h"
#include "support/ReparseVolume.h"
#include "support/ScopedTestDir.h"

namespace {

using Names = std::set<std::wstring>;

// Notes what it is about to copy.
class NotingCreator : public CProfileCreator {
public:
    std::vector<std::wstring> sources;

private:
    void OnCopying(const CString& source, const CString&) override { sources.emplace_back(source.GetString()); }
};

class HostileTree : public testing::Test {
protected:
    HostileTree() {
        CreateDirectoryW(m_source, nullptr);
        MakeFile(L"file", "from the source");
        MakeFile(L"read-only", "r", FILE_ATTRIBUTE_READONLY);
        MakeFile(L"hidden", "h", FILE_ATTRIBUTE_HIDDEN);
        MakeFile(L"\xd83d\xde00.txt", "u");
        CreateDirectoryW(In(m_source, L"Folder"), nullptr);
        MakeFile(L"Folder\\below", "b");
        SetFileAttributesW(In(m_source, L"Folder"), FILE_ATTRIBUTE_HIDDEN);
        EXPECT_TRUE(CPathHelper::CreateDirectoryTree(In(m_source, m_long)));
        PutBytes(L"\\\\?\\" + std::wstring(In(m_source, m_long + L"\\deep")), "deep");
        CreateDirectoryW(m_outside, nullptr);
        for (const auto& [name, target] :
             {std::pair(L"inside", In(m_source, L"Folder")), {L"outside", m_outside}, {L"parent", m_source}}) {
            EXPECT_TRUE(CreateJunction(In(m_source, name), target)) << name;
        }
        MarkJunctionSystem(In(m_source, L"inside"));
        HideJunction(In(m_source, L"parent"));
    }

    static CString In(const CString& folder, LPCWSTR name) { return folder + L"\\" + name; }
    void MakeFile(LPCWSTR name, std::string_view bytes, DWORD attributes = FILE_ATTRIBUTE_NORMAL) const {
        PutBytes(In(m_source, name).GetString(), bytes);
        SetFileAttributesW(In(m_source, name), attributes);
    }
    bool Copy() { return m_creator.CopyFilesAndFolders(m_source, m_target, m_source, m_target, m_user, m_error, true); }
    std::string TakeError() { return Narrow(std::exchange(m_error, CString()).GetString()); }
    // The words of a copy that fails, and its system error.
    std::pair<std::string, DWORD> FailedCopy() {
        EXPECT_FALSE(Copy());
        const DWORD error = GetLastError();
        return {TakeError(), error};
    }
    std::wstring CopiedFile(LPCWSTR name) const { return In(m_target, name).GetString(); }
    // The source and the target of an error in the log, with its format.
    bool HasLogged(LogLevel level, LPCWSTR format, LPCWSTR name) const {
        CString line;
        line.Format(format, In(m_source, name).GetString(), In(m_target, name).GetString());
        return m_log.Contains(level, line.GetString());
    }

    const ReparseVolume m_volume;
    const ScopedTestDir m_dir;
    const CString m_outside = m_dir.Path(L"Elsewhere").c_str();
    const CString m_long = CString(L'a', 120) + L"\\" + CString(L'b', 120) + L"\\" + CString(L'c', 120);
    CString m_source = m_dir.Path(L"Default").c_str(), m_target = m_dir.Path(L"New").c_str();
    const LogCapture m_log;
    NotingCreator m_creator;
    SID m_everyone{SID_REVISION, 1, {SECURITY_WORLD_SID_AUTHORITY}, {SECURITY_WORLD_RID}};
    CProfileUser m_user{&m_everyone};  // one of the accounts that Wine's volumes keep access for
    CString m_error;
};

// Everything that a search reports by its path, the dots left out.
Names PathsOf(CFileFind& search, LPCWSTR pattern) {
    Names paths;
    for (BOOL more = search.FindFile(pattern); more;) {
        more = search.FindNextFile();
        if (!search.IsDots()) paths.insert(search.GetFilePath().GetString());
    }
    return paths;
}

// Asked anew, so it is what stands on the volume: Wine keeps access as the mode bits of the host's file, and makes the
// list from these.
bool MayEveryoneWrite(const std::wstring& path) {
    BYTE security[1024];
    DWORD size = 0;
    EXPECT_TRUE(GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, security, sizeof(security), &size));
    return TextOf(security).find(L";0x1301ff;;;WD)") != std::wstring::npos;
}

}  // namespace

TEST_F(HostileTree, TheSearchFindsEverythingOnceAndShowsNoPrefix) {
    static int s_ended = 0;
    const ImportPatch<decltype(&FindClose)> ended(LoadedModule(L"RegistryRulesFramework.dll"), "FindClose",
                                                  [](HANDLE search) {
                                                      ++s_ended;
                                                      return FindClose(search);
                                                  });
    Names all;
    const CString top = m_long.Left(120), deep = In(m_source, m_long);
    for (const LPCWSTR name : {L"file", L"read-only", L"hidden", L"\xd83d\xde00.txt", L"Folder", L"inside", L"outside",
                               L"parent", top.GetString()}) {
        all.insert(In(m_source, name).GetString());
    }
    {
        CFileFindEx search;
        for (const LPCWSTR end : {L"\\*", L"\\"}) EXPECT_EQ(PathsOf(search, m_source + end), all);
        EXPECT_EQ(search.GetRoot(), m_source + L"\\");
        ASSERT_TRUE(search.FindFile(In(m_source, L"Folder")));
        EXPECT_TRUE(!search.FindNextFile() && search.IsDirectory() && search.GetFileName() == L"Folder");
        for (const CString& folder : {deep, CPathHelper::AddLongPathPrefix(deep)}) {
            EXPECT_EQ(PathsOf(search, folder + L"\\*"), Names{In(deep, L"deep").GetString()});
            EXPECT_EQ(search.GetRoot(), folder + L"\\");
        }
        EXPECT_EQ(s_ended, 4) << "each search ends the one before";
    }
    EXPECT_EQ(s_ended, 5);

    // What the system is asked for. A name must fit into what the system fills.
    const std::wstring longer = L"Q:\\" + std::wstring(245, L'x'), fits = longer.substr(0, 247), prefix = L"\\\\?\\";
    const std::wstring name259 = m_dir.Path(std::wstring(259, L'n'));
    const struct {
        std::wstring path;
        Paths asked;
        DWORD error;
    } rows[] = {{L"", {}, 7},
                {L"Q:\\", {}, 7},
                {L"Q:\\a\\", {L"Q:\\a\\*.*"}, 2},
                {L"name", {L"name"}, 2},
                {fits, {fits}, 2},
                {longer, {prefix + longer}, 2},
                {name259, {prefix + name259}, 2},
                {name259 + L"n", {}, ERROR_BAD_ARGUMENTS}};
    for (const auto& row : rows) {
        CFileFindEx search;
        ASSERT_TRUE(search.FindFile(m_source + L"\\*"));
        const NotedCall asked(&::FindFirstFileW, "FindFirstFileW", INVALID_HANDLE_VALUE, 2);
        SetLastError(7);
        EXPECT_FALSE(search.FindFile(row.path.c_str()));
        EXPECT_EQ(GetLastError(), row.error);
        EXPECT_EQ(TakePaths(), row.asked);
        EXPECT_EQ(search.FindNextFile() != FALSE, row.error == 7) << "the earlier search has ended";
    }
    CAtlTransactionManager fallback(TRUE, FALSE), none(FALSE, FALSE);
    CFileFindEx through(&fallback), refused(&none);
    EXPECT_TRUE(through.FindFile(m_source + L"\\*"));
    EXPECT_FALSE(refused.FindFile(m_source + L"\\*") || refused.FindFile(nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_FUNCTION});
}

TEST_F(HostileTree, TheCopyKeepsContentAttributesAndLinksAndGivesAccess) {
    CreateDirectoryW(m_target, nullptr);
    PutBytes(CopiedFile(L"file"), "there before");
    // What the system's own copy keeps: Wine 10 loses the hidden attribute there, where Windows keeps it.
    CopyFileW(In(m_source, L"hidden"), In(m_outside, L"hidden"), TRUE);
    const DWORD kept = GetFileAttributesW(In(m_outside, L"hidden")) & FILE_ATTRIBUTE_HIDDEN;

    ASSERT_TRUE(Copy()) << TakeError();
    EXPECT_EQ(TakeError(), "");
    const std::pair<LPCWSTR, std::string> files[] = {{L"file", "there before"},
                                                     {L"read-only", "r"},
                                                     {L"hidden", "h"},
                                                     {L"\xd83d\xde00.txt", "u"},
                                                     {L"Folder\\below", "b"}};
    for (const auto& [name, bytes] : files) {
        EXPECT_EQ(BytesOf(CopiedFile(name)), bytes);
        EXPECT_TRUE(MayEveryoneWrite(CopiedFile(name))) << bytes;
    }
    EXPECT_EQ(BytesOf(L"\\\\?\\" + CopiedFile(m_long + L"\\deep")), "deep");
    EXPECT_TRUE(MayEveryoneWrite(CopiedFile(L"Folder")));
    // Wine keeps read-only and access in the same bits, so access for all ends the attribute there.
    EXPECT_EQ(GetFileAttributesW(In(m_target, L"hidden")) & FILE_ATTRIBUTE_HIDDEN, kept);
    EXPECT_EQ(GetFileAttributesW(In(m_target, L"Folder")) & FILE_ATTRIBUTE_HIDDEN, 2U);
    EXPECT_TRUE(HasLogged(LogLevel::Informational, L"Skipping the file '%s' (target = '%s') since", L"file"));
    const std::tuple<LPCWSTR, CString, bool, bool> links[] = {{L"inside", In(m_target, L"Folder"), false, true},
                                                              {L"outside", m_outside, false, false},
                                                              {L"parent", m_target, true, false}};
    for (const auto& [name, target, hidden, system] : links) {
        const CString link = In(m_target, name);
        EXPECT_EQ(GetJunctionTarget(link), target);
        EXPECT_EQ(std::pair(IsJunctionHidden(link), IsJunctionSystem(link)), std::pair(hidden, system));
    }
    // The root, six files, four folders, three links.
    EXPECT_EQ(m_creator.sources.size(), 14U);
    EXPECT_EQ(m_creator.sources.front(), m_source.GetString());
    const auto traces = m_log.Messages(LogLevel::Trace);
    const std::vector<std::wstring> steps = {
        L"Adding a full access ACE to '" + m_dir.Path(L"New") + L"' for the SID 'S-1-1-0'",
        L"Enter CFileAcl::AddFullAccessEntryToAcl", L"Leave CFileAcl::AddFullAccessEntryToAcl",
        L"Committing the ACL changes"};
    EXPECT_FALSE(std::search(traces.begin(), traces.end(), steps.begin(), steps.end()) == traces.end())
        << testing::PrintToString(traces);

    // A second time a link is in the way.
    CreateDirectoryW(In(m_target, L"outside\\full"), nullptr);
    EXPECT_EQ(FailedCopy().first, "Undefined string resource requested: 25");
}

// Versions are found once, and the tree's own links ask for them.
struct TreeOnVista : HostileTree {
    void TestBody() override {
        EXPECT_TRUE(Copy()) << TakeError();
        EXPECT_FALSE(IsJunctionSystem(In(m_target, L"inside")));
        EXPECT_TRUE(IsJunctionHidden(In(m_target, L"parent")));
        const ImportPatch<decltype(&CreateDirectoryW)> unguarded(
            GetModuleHandleW(nullptr), "CreateDirectoryW",
            [](LPCWSTR, SECURITY_ATTRIBUTES* security) -> BOOL { return security == nullptr; });
        EXPECT_TRUE(PrepareJunctionDirectory(m_dir.Path(L"link").c_str()));
    }
};

TEST(HostileTreeOnVista, SystemJunctionsStaySoAboveItOnlyAndNewOnesAreOrdinaryDirectories) {
    EXPECT_IN_FRESH_PROCESS([] {
        const FakeVersion version(6, 0);
        TreeOnVista().TestBody();
    });
}

TEST_F(HostileTree, TheFirstFailureEndsTheCopySaysWhyAndKeepsWhatWasDone) {
    using Failure = std::pair<std::string, DWORD>;
    const std::string fileWords = "Undefined string resource requested: 271", linkWords =
                                                                                  "Undefined string resource "
                                                                                  "requested: 25";
    m_error = L"Earlier. ";
    const CString locked = In(m_source, L"Folder\\below");
    {
        const CFile locker(locked, CFile::modeReadWrite | CFile::shareExclusive);
        EXPECT_EQ(FailedCopy(), Failure("Earlier. " + fileWords, ERROR_SHARING_VIOLATION));
    }
    EXPECT_TRUE(HasLogged(LogLevel::Error, L"The file '%s' could not be copied to '%s'. Possible error code: 0x20",
                          L"Folder\\below"));
    EXPECT_TRUE(HasLogged(LogLevel::Error,
                          L"The directory '%s' could not be copied to '%s'. Possible error code is 0x20", L"Folder"));
    EXPECT_TRUE(MayEveryoneWrite(CopiedFile(L"Folder"))) << "what is laid down stays";
    EXPECT_EQ(m_creator.sources.back(), locked.GetString()) << "the rest is not tried";

    // A file stands where a directory should; a link that cannot be read; words for what is not there.
    RemoveDirectoryW(In(m_target, L"Folder"));
    PutBytes(CopiedFile(L"Folder"), "in the way");
    EXPECT_EQ(FailedCopy().first, fileWords);
    EXPECT_EQ(BytesOf(CopiedFile(L"Folder")), "in the way");
    DeleteFileW(In(m_target, L"Folder"));
    m_volume.BytesOf(In(m_source, L"inside").GetString()).resize(15);
    EXPECT_EQ(FailedCopy(), Failure(linkWords, ERROR_INVALID_REPARSE_DATA));
    EXPECT_FALSE(CPathHelper::DirectoryExists(In(m_target, L"inside")));
    EXPECT_FALSE(m_creator.CopyFilesAndFolders(L"C:\\", m_target, L"C:\\", m_target, m_user, m_error, false));
    EXPECT_EQ(TakeError(),
              "One of the following paths is smaller than 4 characters and cannot be processed by "
              "CopyFilesAndFolders: Source: C:\\, Target: " +
                  Narrow(m_target.GetString()));
    m_source = m_dir.Path(L"none").c_str();
    EXPECT_EQ(FailedCopy().first, "The source directory (" + Narrow(m_source.GetString()) + ") does not exist.");
    m_target = m_dir.Path(L"none\\New").c_str();
    EXPECT_EQ(FailedCopy().first, "Unable to create the directory (" + Narrow(m_target.GetString()) + ") Error:3");
    m_target = CString(m_dir.Path(L"x").c_str()) + CString(L"\0x", 2);
    EXPECT_NE(FailedCopy().first.find(") Error:123"), std::string::npos);
}

TEST_F(HostileTree, DirectoriesAreMadeLikeTheirParentsWithThePrefixOnlyAfterAFailure) {
    {
        const NotedCall set(&SetFileAttributesW, "SetFileAttributesW", FALSE, ERROR_ACCESS_DENIED);
        EXPECT_TRUE(Copy());
        const std::string words = TakeError();
        EXPECT_TRUE(words.starts_with("Unable to set attributes on the new folder '") && words.ends_with("' due to 5"))
            << words;
    }
    const NotedCall create(&CreateDirectoryExW, "CreateDirectoryExW", FALSE);
    const std::wstring parent = m_dir.Path(std::wstring(247, L'p')), target = parent + L"\\t", prefix = L"\\\\?\\";
    m_target = target.c_str();
    FailedCopy();
    EXPECT_EQ(TakePaths(), (Paths{parent, target, prefix + parent, prefix + target}));
    m_target = (prefix + target).c_str();
    FailedCopy();
    EXPECT_EQ(TakePaths(), (Paths{prefix + parent, prefix + target}));
}

TEST_F(HostileTree, JunctionsLiveFromCreationToRemovalAtAnyDepth) {
    const CString deep = In(m_source, m_long), prefixed = CPathHelper::AddLongPathPrefix(deep);
    for (const CString& folder : {CString(m_dir.Path().c_str()), deep, prefixed}) {
        const CString link = In(folder, L"link");
        EXPECT_FALSE(IsJunction(link));
        ASSERT_TRUE(CreateJunction(link, deep)) << GetLastError();
        EXPECT_EQ(m_volume.BytesOf(link.GetString()), *Junction::Encode(deep.GetString()));
        EXPECT_EQ(GetJunctionTarget(link), folder == prefixed ? prefixed : deep);
        EXPECT_EQ(GetJunctionAttributes(link), DWORD{FILE_ATTRIBUTE_DIRECTORY}) << "Wine's own";
        EXPECT_TRUE(HideJunction(link) && IsJunctionHidden(link) && !IsJunctionSystem(link));
        EXPECT_TRUE(MarkJunctionSystem(link) && IsJunctionHidden(link) && IsJunctionSystem(link));
        EXPECT_TRUE(SetJunctionAttributes(link, FILE_ATTRIBUTE_DIRECTORY));
        EXPECT_FALSE(IsJunctionHidden(link) || IsJunctionSystem(link));
        EXPECT_TRUE(DeleteJunction(link, false));
        EXPECT_TRUE(!IsJunction(link) && CPathHelper::DirectoryExists(link));
        ASSERT_TRUE(CreateJunction(link, m_outside)) << "an empty directory may become one";
        EXPECT_EQ(GetJunctionTarget(link), m_outside);
        EXPECT_TRUE(DeleteJunction(link, true));
        EXPECT_FALSE(CPathHelper::DirectoryExists(link));
    }
    EXPECT_EQ(GetFileAttributesW(m_outside), DWORD{FILE_ATTRIBUTE_DIRECTORY});

    // What is none, and what cannot become one.
    const CString hidden = In(m_source, L"Folder");
    for (const CString& path : {hidden, In(m_source, L"missing"), In(m_source, L"hidden"), CString()}) {
        EXPECT_EQ(GetJunctionTarget(path), path);
        EXPECT_EQ(GetJunctionAttributes(path), INVALID_FILE_ATTRIBUTES);
        EXPECT_FALSE(IsJunctionHidden(path) || IsJunctionSystem(path) || DeleteJunction(path, true));
        EXPECT_FALSE(SetJunctionAttributes(path, 0) || HideJunction(path) || MarkJunctionSystem(path));
    }
    const CString link = In(m_outside, L"link");
    const std::pair<CString, CString> refused[] = {
        {m_source, m_outside},       {In(m_source, L"file"), m_outside}, {In(m_outside, L"a\\b"), m_outside},
        {link, CString(L'x', 8179)}, {link, CString(L"C:\\a\0b", 6)},    {CString(L"C:\\a\0b", 6), m_outside}};
    EXPECT_FALSE(PrepareJunctionDirectory(In(m_source, L"file")));
    for (const auto& [path, target] : refused) EXPECT_FALSE(CreateJunction(path, target));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_NAME});
    EXPECT_FALSE(CPathHelper::DirectoryExists(link));

    const ImportPatch<decltype(&CreateDirectoryW)> guarded(
        GetModuleHandleW(nullptr), "CreateDirectoryW", [](LPCWSTR path, SECURITY_ATTRIBUTES* security) -> BOOL {
            EXPECT_TRUE(std::wstring_view(path).starts_with(L"\\\\?\\") && !security->bInheritHandle);
            return TextOf(security->lpSecurityDescriptor) == L"D:(D;;CC;;;WD)(A;OICIID;FA;;;SY)(A;OICIID;FA;;;BA)";
        });
    EXPECT_TRUE(PrepareJunctionDirectory(In(deep, L"new")));
}

TEST_F(HostileTree, LinksOfOthersOpenByPrivilegesWhichAreGivenBack) {
    const CString link = In(m_source, L"outside");
    for (const LPCWSTR name : {SE_BACKUP_NAME, SE_RESTORE_NAME}) SetProcessPrivilege(name, false);
    m_volume.GiveToAnotherUser(link.GetString());
    EXPECT_EQ(CreateFileW(link, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0x2200000, nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetJunctionTarget(link), m_outside);
    EXPECT_TRUE(HideJunction(link) && IsJunctionHidden(link) && DeleteJunction(link, false));
    EXPECT_TRUE(CreateJunction(link, m_outside));
    EXPECT_FALSE(m_volume.HasBackupPrivileges());
    {
        const ScopedBackupPrivileges held;
        EXPECT_EQ(GetJunctionTarget(link), m_outside);
        EXPECT_TRUE(m_volume.HasBackupPrivileges()) << "the first holder's are the last to go";
    }
    for (const bool enable : {true, false}) {
        SetProcessPrivilege(SE_BACKUP_NAME, enable);
        SetProcessPrivilege(SE_RESTORE_NAME, enable);
        EXPECT_EQ(GetJunctionTarget(link), m_outside);
        EXPECT_EQ(m_volume.HasBackupPrivileges(), enable) << "what a host has enabled stays so";
    }
    EXPECT_TRUE(MakeUniqueHandle(OpenJunction(link, false))) << "a host's own calls open it, too";
}

TEST_F(HostileTree, DamagedAndLockedLinksGiveNothingAndSayWhy) {
    const CString link = In(m_source, L"outside");
    auto& bytes = m_volume.BytesOf(link.GetString());
    const auto whole = bytes;
    bytes[10] = bytes[11] = std::byte{0xFF};
    EXPECT_EQ(GetJunctionTarget(link), m_outside) << "lengths that lie are not believed";
    bytes[0] = std::byte{0x0C};
    EXPECT_EQ(GetJunctionTarget(link), L"") << "another kind of link";
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_REPARSE_DATA});
    EXPECT_FALSE(DeleteJunction(link, true));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_REPARSE_TAG_MISMATCH});
    bytes.assign(0x4001, std::byte{});
    EXPECT_EQ(GetJunctionTarget(link), L"");
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MORE_DATA});
    bytes = whole;
    const HANDLE taken = OpenJunction(link, false);
    ASSERT_NE(taken, INVALID_HANDLE_VALUE);
    EXPECT_EQ(OpenJunction(link, false), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetJunctionTarget(link), L"");
    EXPECT_EQ(GetJunctionAttributes(link), INVALID_FILE_ATTRIBUTES);
    EXPECT_FALSE(HideJunction(link) || DeleteJunction(link, true));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
    CloseHandle(taken);
    EXPECT_TRUE(DeleteJunction(link, true));
}

TEST_F(HostileTree, TheWrappersTellTheTruthFarBeyondTheClassicLimit) {
    const CString folder = In(m_source, m_long), file = In(folder, L"deep"), copy = file + L".copy",
                  link = file + L".link";
    const CString small = In(m_source, L"file"), missing = In(m_source, L"missing");
    EXPECT_TRUE(LongPath::CopyFile(file, copy, true) && LongPath::CreateHardLink(link, file, nullptr));
    EXPECT_FALSE(LongPath::CopyFile(file, copy, true));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_EXISTS});
    BY_HANDLE_FILE_INFORMATION info{};
    EXPECT_EQ(LongPath::GetFileInformation(file, info).nNumberOfLinks, 2u);
    const FILETIME times[] = {{1, 30000000}, {2, 30000001}, {3, 30000002}};
    FILETIME told[3]{};
    const HANDLE handle = LongPath::CreateFile(copy, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0);
    SetFileTime(handle, &times[0], &times[1], &times[2]);
    CloseHandle(handle);
    EXPECT_TRUE(LongPath::GetFileTime(folder, &told[0], &told[1], &told[2])) << "of folders, too";
    EXPECT_TRUE(LongPath::GetFileTime(copy, &told[0], &told[1], &told[2]));
    EXPECT_EQ(std::pair(told[1].dwHighDateTime, told[2].dwHighDateTime), std::pair(30000001ul, 30000002ul));
    EXPECT_TRUE(LongPath::SetFileAttributes(copy, FILE_ATTRIBUTE_READONLY) && LongPath::ReplaceFile(file, copy));
    EXPECT_TRUE(LongPath::FileAccess(file) == -1 && LongPath::FileAccess(copy) == 0);
    WIN32_FILE_ATTRIBUTE_DATA data{};
    EXPECT_TRUE(LongPath::GetFileAttributesEx(link, GetFileExInfoStandard, &data) && data.nFileSizeLow == 4);

    // What is meant to fail, or to make what was missing.
    LARGE_INTEGER size{};
    EXPECT_FALSE(LongPath::ReplaceFile(small, missing) || LongPath::GetFileSize(missing, size));
    EXPECT_TRUE(LongPath::GetFileSize(small, size) && size.QuadPart == 15);
    EXPECT_TRUE(LongPath::ReplaceFile(L"A:\\none", L"a:\\NONE"));
    EXPECT_EQ(LongPath::GetFileInformation(missing, info).nNumberOfLinks, 1u);
    EXPECT_TRUE(LongPath::GetFileSize(missing, size) && size.QuadPart == 0);
    EXPECT_EQ(LongPath::GetFileInformation(In(m_source, L"none\\file"), info).nNumberOfLinks, 0u);
}

TEST_F(HostileTree, DirectoryTreesComeAndGo) {
    const CString deep = In(m_source, m_long), renamed = CPathHelper::GetParentPath(deep) + L"\\renamed";
    const LogCapture log;
    for (const CString& path : {deep, CPathHelper::AddLongPathPrefix(deep) + L"\\more\\still"}) {
        EXPECT_TRUE(CPathHelper::CreateDirectoryTree(path));
        EXPECT_TRUE(CPathHelper::DirectoryExists(path));
    }
    EXPECT_TRUE(log.GetLines().empty());
    EXPECT_EQ(CPathHelper::GetLongPath(deep), deep);
    EXPECT_TRUE(LongPath::MoveFile(deep, renamed));
    EXPECT_FALSE(CPathHelper::DirectoryExists(deep));
    EXPECT_FALSE(CPathHelper::DeleteDirectory(renamed, false));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_DIR_NOT_EMPTY});

    // A file in the way ends it with what was made left; so does a name that no volume takes.
    const CString file = In(m_source, L"file");
    EXPECT_FALSE(CPathHelper::CreateDirectoryTree(file + L"\\a\\b"));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
    const std::wstring start = L"[CPathHelper::CreateDirectoryTree] Couldn't create the directory";
    EXPECT_TRUE(log.Contains(LogLevel::Error, start + L" '" + file.GetString() +
                                                  L"\\a' as part of creating the directory tree '" + file.GetString() +
                                                  L"\\a\\b'- 0x3"));
    EXPECT_FALSE(CPathHelper::CreateDirectoryTree(In(m_outside, L"made\\no*name\\c")));
    EXPECT_TRUE(CPathHelper::DirectoryExists(In(m_outside, L"made")));
    const std::pair<std::wstring, LPCWSTR> rootless[] = {
        {L"Q:\\a", L"' - the specified drive letter is invalid."},
        {L"a\\b", L"' - can't the determine the path type (drive or UNC)."},
        {L"", L"' - can't the determine the path type (drive or UNC)."},
        {L"\\\\server", L"' - can't the determine the path type (drive or UNC)."}};
    for (const auto& [path, problem] : rootless) {
        EXPECT_FALSE(CPathHelper::CreateDirectoryTree(path.c_str()));
        EXPECT_EQ(log.GetLines().back().message, std::wstring(start).append(L" tree '").append(path).append(problem));
    }
    EXPECT_FALSE(CPathHelper::CreateDirectoryTree(L"\\\\no.such.server\\share")) << "a share is all root";
    {
        // Neither a drive with the prefix nor a share is made as a directory; somebody else may be faster.
        const NotedCall none(&GetFileAttributesW, "GetFileAttributesW", INVALID_FILE_ATTRIBUTES);
        const NotedCall create(&CreateDirectoryW, "CreateDirectoryW", FALSE, ERROR_ALREADY_EXISTS);
        const std::pair<LPCWSTR, Paths> rows[] = {
            {L"\\\\?\\C:\\a\\b", {L"\\\\?\\C:\\a\\b", L"\\\\?\\C:\\a", L"\\\\?\\C:\\a", L"\\\\?\\C:\\a\\b"}},
            {L"\\\\s\\t\\a", {L"\\\\s\\t\\a", L"\\\\s\\t\\a"}}};
        for (const auto& [path, askedThenMade] : rows) {
            EXPECT_TRUE(CPathHelper::CreateDirectoryTree(path));
            EXPECT_EQ(TakePaths(), askedThenMade);
        }
    }
    CPathHelper::MoveFile(file, L"Q:\\none");
    EXPECT_TRUE(CPathHelper::FileExists(file));
    CPathHelper::MoveFile(file, In(m_outside, L"to\\file"));
    EXPECT_TRUE(CPathHelper::DirectoryExists(In(m_outside, L"to\\file")) && !CPathHelper::FileExists(file));
    EXPECT_TRUE(log.Contains(LogLevel::Trace, (L"original = '" + file + L"', destination = '").GetString()));
    EXPECT_TRUE(CPathHelper::DeleteDirectory(m_outside, true));
    EXPECT_FALSE(CPathHelper::DirectoryExists(m_outside) || CPathHelper::DeleteDirectory(m_outside, true));
}
