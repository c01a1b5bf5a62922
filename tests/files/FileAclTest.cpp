#include "files/FileAcl.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>

#include "files/FileSecurity.h"
#include "files/NotedCall.h"
#include "support/FileBytes.h"
#include "support/ImportPatch.h"
#include "support/LogCapture.h"
#include "support/ScopedTestDir.h"

namespace {

constexpr LPCWSTR kEveryone = L"S-1-1-0";
constexpr LPCWSTR kStranger = L"S-1-5-21-1-2-3-1001";

using Memory = LocalMemory<void>;

Memory Sid(LPCWSTR text) {
    PSID sid = nullptr;
    EXPECT_TRUE(ConvertStringSidToSidW(text, &sid));
    return Memory(sid);
}

// Descriptors are made and read by the system's own text form of them.
Memory Descriptor(LPCWSTR text) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(text, 1, &descriptor, nullptr));
    return Memory(descriptor);
}

// A file whose security the system reads as the descriptor of that text, and whose writes are noted.
const void* s_security = nullptr;
std::wstring s_readPath, s_written, s_writtenPath;
bool s_writeFails = false, s_wroteNullList = false;

struct GivenSecurity {
    explicit GivenSecurity(LPCWSTR text) : descriptor(Descriptor(text)) {
        s_security = descriptor.get();
        s_written.clear();
        s_writeFails = false;
    }

    Memory descriptor;
    ImportPatch<decltype(&GetFileSecurityW)> read{
        GetModuleHandleW(nullptr), "GetFileSecurityW",
        [](LPCWSTR path, SECURITY_INFORMATION what, PSECURITY_DESCRIPTOR buffer, DWORD size, DWORD* needed) -> BOOL {
            s_readPath = path;
            EXPECT_EQ(what, DWORD{OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION});
            *needed = GetSecurityDescriptorLength(const_cast<void*>(s_security));
            if (size < *needed) return FALSE;
            memcpy(buffer, s_security, *needed);
            return TRUE;
        }};
    ImportPatch<decltype(&SetFileSecurityW)> write{
        GetModuleHandleW(nullptr), "SetFileSecurityW",
        [](LPCWSTR path, SECURITY_INFORMATION what, PSECURITY_DESCRIPTOR given) -> BOOL {
            EXPECT_EQ(what, DWORD{DACL_SECURITY_INFORMATION});
            s_writtenPath = path;
            s_written = TextOf(given);
            BOOL present = FALSE, defaulted = FALSE;
            PACL dacl = nullptr;
            s_wroteNullList = GetSecurityDescriptorDacl(given, &present, &dacl, &defaulted) && present && !dacl;
            SetLastError(s_writeFails ? ERROR_ACCESS_DENIED : ERROR_SUCCESS);
            return !s_writeFails;
        }};
};

// Cause and system error of what the function throws.
std::pair<int, LONG> ThrownBy(const std::function<void()>& function) {
    try {
        function();
    } catch (CFileException* problem) {
        const std::pair<int, LONG> thrown(problem->m_cause, problem->m_lOsError);
        problem->Delete();
        return thrown;
    }
    return {};
}

}  // namespace

TEST(FileAcl, WhatIsWrittenStandsOnTheVolume) {
    const ScopedTestDir dir;
    const std::wstring file = dir.Path(L"file");
    PutBytes(file, "");
    CFileAcl acl(file.c_str());
    ASSERT_TRUE(acl.SupportsAcls() && acl.HasSecurity());
    EXPECT_TRUE(acl.AddFullAccessEntryToAcl(Sid(kEveryone).get()));
    EXPECT_FALSE(MayEveryoneWrite(file));
    EXPECT_TRUE(acl.Commit());
    EXPECT_TRUE(MayEveryoneWrite(file));
    EXPECT_TRUE(acl.HasAceForSid(Sid(kEveryone).get()));
    EXPECT_FALSE(acl.IsOwnedByTrustedInstaller());
    EXPECT_TRUE(CFileAcl(file.c_str()).HasAceForSid(Sid(kEveryone).get()));
}

TEST(FileAcl, EntriesAddUpUntilTheyAreWritten) {
    const GivenSecurity file(L"O:BAD:(A;;FR;;;SY)");
    CFileAcl acl(L"C:\\file");
    EXPECT_FALSE(acl.HasAceForSid(Sid(kEveryone).get()));
    EXPECT_TRUE(acl.AddFullAccessEntryToAcl(Sid(kEveryone).get()));
    EXPECT_TRUE(acl.AddFullAccessEntryToAcl(Sid(kStranger).get()));
    EXPECT_EQ(s_written, L"");
    for (const LPCWSTR sid : {kEveryone, kStranger, L"S-1-5-18"}) EXPECT_TRUE(acl.HasAceForSid(Sid(sid).get()));
    EXPECT_TRUE(acl.Commit());
    for (const LPCWSTR entry : {L"(A;OICI;GA;;;WD)", L"(A;OICI;GA;;;S-1-5-21-1-2-3-1001)", L"(A;;FR;;;SY)"}) {
        EXPECT_NE(s_written.find(entry), std::wstring::npos) << testing::PrintToString(s_written);
    }
    EXPECT_TRUE(acl.Commit());
    EXPECT_TRUE(acl.HasAceForSid(Sid(kStranger).get()));
}

TEST(FileAcl, ReadsAndWritesNullListsByTheLongPathRule) {
    const GivenSecurity file(L"O:BAD:(A;;FR;;;SY)");
    const CString path = L"C:\\" + CString(L'x', 300);
    CFileAcl acl(path);
    EXPECT_EQ(s_readPath, (L"\\\\?\\" + path).GetString());
    EXPECT_TRUE(acl.Commit());
    EXPECT_EQ(s_writtenPath, path.GetString());
    EXPECT_FALSE(s_wroteNullList);
    EXPECT_TRUE(acl.ApplyNullDacl());
    EXPECT_EQ(s_writtenPath, (L"\\\\?\\" + path).GetString());
    EXPECT_TRUE(s_wroteNullList);
    EXPECT_TRUE(acl.HasAceForSid(Sid(kStranger).get()));
}

TEST(FileAcl, AFailedWriteCostsCommitTheSecurity) {
    const GivenSecurity file(L"O:BAD:(A;;FR;;;SY)");
    CFileAcl acl(L"C:\\file");
    s_writeFails = true;
    EXPECT_FALSE(acl.ApplyNullDacl());
    EXPECT_TRUE(acl.HasSecurity());
    EXPECT_TRUE(acl.AddFullAccessEntryToAcl(Sid(kEveryone).get()));
    EXPECT_FALSE(acl.Commit());
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_FALSE(acl.HasSecurity());
    s_writeFails = false;
    EXPECT_FALSE(acl.Commit() || acl.ApplyNullDacl() || acl.IsOwnedByTrustedInstaller());
    EXPECT_TRUE(acl.ReadSecurity());
    EXPECT_FALSE(acl.HasAceForSid(Sid(kEveryone).get()));
    EXPECT_TRUE(acl.Commit());
}

TEST(FileAcl, AVolumeWithoutAccessListsIsLeftAlone) {
    const ImportPatch<decltype(&GetVolumeInformationW)> plainVolume(
        GetModuleHandleW(nullptr), "GetVolumeInformationW",
        [](LPCWSTR, LPWSTR, DWORD, DWORD*, DWORD*, DWORD* flags, LPWSTR, DWORD) -> BOOL {
            *flags = ~DWORD{FILE_PERSISTENT_ACLS};
            return TRUE;
        });
    CFileAcl acl(L"C:\\file");
    EXPECT_FALSE(acl.SupportsAcls() || acl.HasSecurity() || acl.IsOwnedByTrustedInstaller() || acl.Commit());
    EXPECT_TRUE(acl.AddFullAccessEntryToAcl(nullptr));
    EXPECT_TRUE(acl.ApplyNullDacl());
    EXPECT_TRUE(acl.HasAceForSid(nullptr));
}

TEST(FileAcl, AsksTheVolumeByItsRoot) {
    const NotedCall volume(&GetVolumeInformationW, "GetVolumeInformationW", FALSE);
    const std::pair<LPCWSTR, LPCWSTR> roots[] = {
        {L"C:\\a\\b", L"C:\\"},       {L"C:", L"C:"}, {L"abc", L"abc"}, {L"\\\\s\\t\\u\\v", L"\\\\s\\t\\"},
        {L"\\\\s\\t", L"\\\\s\\t\\"}, {L"abcd", L""}};
    for (const auto& [path, root] : roots) {
        EXPECT_FALSE(CFileAcl(path).SupportsAcls());
        EXPECT_EQ(TakePaths(), *root == L'\0' ? Paths() : Paths{root});
    }
}

TEST(FileAcl, FailingCallsShowAndLeaveNothingBehind) {
    const CString path = L"C:\\no such file";
    EXPECT_EQ(ThrownBy([] { CFileAcl(L""); }), std::pair(int{CFileException::badPath}, LONG{-1}));
    EXPECT_EQ(ThrownBy([&] { CFileAcl acl(path); }),
              std::pair(int{CFileException::genericException}, LONG{ERROR_FILE_NOT_FOUND}));

    const GivenSecurity file(L"O:BAD:(A;;FR;;;SY)");
    CFileAcl acl(path);
    {
        const NotedCall call(&MakeAbsoluteSD, "MakeAbsoluteSD", FALSE, ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_FALSE(acl.Commit() || acl.ApplyNullDacl());
    }
    {
        const NotedCall call(&MakeSelfRelativeSD, "MakeSelfRelativeSD", FALSE, ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_FALSE(acl.Commit() || acl.ApplyNullDacl());
    }
    EXPECT_EQ(s_written, L"");
    EXPECT_TRUE(acl.HasSecurity());
    {
        const NotedCall call(&GetAclInformation, "GetAclInformation", FALSE, ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_FALSE(acl.HasAceForSid(Sid(L"S-1-5-18").get()));
    }
    const LogCapture log;
    BYTE noSid[16] = {9};
    EXPECT_FALSE(acl.AddFullAccessEntryToAcl(noSid));
    EXPECT_TRUE(log.Contains(LogLevel::Error, L"Unable to set ACL Entry. Error:")) << GetLastError();
    EXPECT_TRUE(acl.HasAceForSid(Sid(L"S-1-5-18").get()));
    {
        const NotedCall call(&GetSecurityDescriptorDacl, "GetSecurityDescriptorDacl", FALSE, ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_FALSE(acl.ReadSecurity());
        EXPECT_FALSE(acl.HasSecurity());
    }
}

TEST(FileAcl, KnowsTheInstallersFiles) {
    const GivenSecurity file(L"O:S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464D:");
    EXPECT_TRUE(CFileAcl(L"C:\\file").IsOwnedByTrustedInstaller());
    EXPECT_FALSE(CFileAcl(L"C:\\file").HasAceForSid(Sid(kEveryone).get()));  // an empty list lets nobody in
}

TEST(FileAcl, ARebuiltDescriptorKeepsEverythingButTheList) {
    const Memory before = Descriptor(L"O:BAG:SYD:(A;;FR;;;SY)S:(AU;FA;FA;;;WD)");
    const Memory other = Descriptor(L"D:(A;OICI;FA;;;WD)");
    BOOL present = FALSE, defaulted = FALSE;
    PACL dacl = nullptr;
    ASSERT_TRUE(GetSecurityDescriptorDacl(other.get(), &present, &dacl, &defaulted));
    std::unique_ptr<BYTE[]> rebuilt;
    ASSERT_TRUE(CFileAcl::RebuildDescriptor(before.get(), rebuilt, dacl));
    EXPECT_EQ(TextOf(rebuilt.get()), L"O:BAG:SYD:(A;OICI;FA;;;WD)S:(AU;FA;FA;;;WD)");
    BYTE noDescriptor[64] = {};
    EXPECT_FALSE(CFileAcl::RebuildDescriptor(noDescriptor, rebuilt, dacl));
    EXPECT_EQ(rebuilt, nullptr);
}

TEST(FileAcl, AnEntryTooShortForItsSidMatchesNobody) {
    const GivenSecurity file(L"O:BAD:(A;;FR;;;SY)");
    // The one entry ends the descriptor; its SID says that it has 15 parts.
    auto* const bytes = static_cast<BYTE*>(file.descriptor.get());
    BOOL present = FALSE, defaulted = FALSE;
    PACL dacl = nullptr;
    GetSecurityDescriptorDacl(bytes, &present, &dacl, &defaulted);
    ACCESS_ALLOWED_ACE* entry = nullptr;
    ASSERT_TRUE(GetAce(dacl, 0, reinterpret_cast<void**>(&entry)));
    *GetSidSubAuthorityCount(&entry->SidStart) = 15;
    EXPECT_FALSE(CFileAcl(L"C:\\file").HasAceForSid(&entry->SidStart));
}
