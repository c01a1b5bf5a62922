#include "files/FileAcl.h"

#include <gtest/gtest.h>

#include "files/NotedCall.h"
#include "support/LogCapture.h"
#include "support/ScopedTestDir.h"

namespace {

using Memory = LocalMemory<void>;

Memory Sid(LPCWSTR text) {
    PSID sid = nullptr;
    EXPECT_TRUE(ConvertStringSidToSidW(text, &sid));
    return Memory(sid);
}
const Memory kEveryone = Sid(L"S-1-1-0"), kSystem = Sid(L"S-1-5-18"), kStranger = Sid(L"S-1-5-21-1-2-3-1001");

// Descriptors are made and read by the system's own text form of them.
Memory Descriptor(LPCWSTR text) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(text, 1, &descriptor, nullptr));
    return Memory(descriptor);
}

PACL DaclOf(PSECURITY_DESCRIPTOR descriptor) {
    BOOL present = FALSE, defaulted = FALSE;
    PACL dacl = nullptr;
    EXPECT_TRUE(GetSecurityDescriptorDacl(descriptor, &present, &dacl, &defaulted) && present);
    return dacl;
}

// A file whose security the system reads as the descriptor of that text, and whose writes are noted.
const void* s_security = nullptr;
std::wstring s_readPath, s_written, s_writtenPath;
bool s_writeFails = false;

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
            EXPECT_EQ(what, DWORD{OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION});
            s_readPath = path;
            *needed = GetSecurityDescriptorLength(const_cast<void*>(s_security));
            return size >= *needed && memcpy(buffer, s_security, *needed) != nullptr;
        }};
    ImportPatch<decltype(&SetFileSecurityW)> write{
        GetModuleHandleW(nullptr), "SetFileSecurityW",
        [](LPCWSTR path, SECURITY_INFORMATION what, PSECURITY_DESCRIPTOR given) -> BOOL {
            EXPECT_EQ(what, DWORD{DACL_SECURITY_INFORMATION});
            s_writtenPath = path;
            s_written = DaclOf(given) != nullptr ? TextOf(given) : L"everybody";
            SetLastError(s_writeFails ? ERROR_ACCESS_DENIED : ERROR_SUCCESS);
            return !s_writeFails;
        }};
};

}  // namespace

TEST(FileAcl, EntriesAddUpInMemoryUntilTheyAreWritten) {
    static int s_freed = 0;
    const ImportPatch<decltype(&LocalFree)> freed(GetModuleHandleW(nullptr), "LocalFree", [](HLOCAL memory) {
        ++s_freed;
        return SystemFunction(&LocalFree, L"kernel32.dll", "LocalFree")(memory);
    });
    const GivenSecurity file(L"O:BAD:(A;;FR;;;SY)");
    const CString path = L"C:\\" + CString(L'x', 300), prefixed = L"\\\\?\\" + path;
    {
        CFileAcl acl(path);
        EXPECT_EQ(s_readPath, prefixed.GetString());
        EXPECT_FALSE(acl.HasAceForSid(kEveryone.get()));
        EXPECT_TRUE(acl.AddFullAccessEntryToAcl(kEveryone.get()) && acl.AddFullAccessEntryToAcl(kStranger.get()));
        for (const Memory* sid : {&kEveryone, &kStranger, &kSystem}) EXPECT_TRUE(acl.HasAceForSid(sid->get()));
        EXPECT_EQ(s_written, L"");
        EXPECT_TRUE(acl.Commit());
        EXPECT_EQ(s_writtenPath, path.GetString());
        for (const LPCWSTR entry : {L"(A;OICI;GA;;;WD)", L"(A;OICI;GA;;;S-1-5-21-1-2-3-1001)", L"(A;;FR;;;SY)"})
            EXPECT_NE(s_written.find(entry), std::wstring::npos) << testing::PrintToString(s_written);
        EXPECT_TRUE(acl.Commit() && acl.HasAceForSid(kStranger.get()));
        EXPECT_TRUE(acl.ApplyNullDacl() && acl.HasAceForSid(kSystem.get()));
        EXPECT_EQ(s_written, L"everybody");
        EXPECT_EQ(s_writtenPath, prefixed.GetString());
        EXPECT_TRUE(acl.AddFullAccessEntryToAcl(kEveryone.get()));
    }
    EXPECT_EQ(s_freed, 3 + 2) << "the lists that the system made, and what two writes were noted by";

    CFileAcl acl(L"C:\\file");
    s_writeFails = true;
    EXPECT_FALSE(acl.ApplyNullDacl());
    EXPECT_TRUE(acl.HasSecurity() && acl.AddFullAccessEntryToAcl(kEveryone.get()));
    EXPECT_FALSE(acl.Commit());
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    s_writeFails = false;
    EXPECT_FALSE(acl.HasSecurity() || acl.Commit() || acl.ApplyNullDacl() || acl.IsOwnedByTrustedInstaller());
    EXPECT_TRUE(acl.ReadSecurity() && acl.Commit());
    EXPECT_FALSE(acl.HasAceForSid(kEveryone.get()));
}

TEST(FileAcl, AsksTheVolumeByItsRootAndLeavesOneWithoutAccessListsAlone) {
    const std::pair<LPCWSTR, Paths> roots[] = {{L"C:\\a\\b", {L"C:\\"}},
                                               {L"C:", {L"C:"}},
                                               {L"abc", {L"abc"}},
                                               {L"abcd", {}},
                                               {L"\\\\s\\t\\u", {L"\\\\s\\t\\"}},
                                               {L"\\\\s\\t", {L"\\\\s\\t\\"}}};
    for (const auto& [path, root] : roots) {
        const NotedCall volume(&GetVolumeInformationW, "GetVolumeInformationW", FALSE);
        EXPECT_FALSE(CFileAcl(path).SupportsAcls());
        EXPECT_EQ(TakePaths(), root);
    }
    const ImportPatch<decltype(&GetVolumeInformationW)> plainVolume(
        GetModuleHandleW(nullptr), "GetVolumeInformationW",
        [](LPCWSTR, LPWSTR, DWORD, DWORD*, DWORD*, DWORD* flags, LPWSTR, DWORD) -> BOOL {
            *flags = ~DWORD{FILE_PERSISTENT_ACLS};
            return TRUE;
        });
    CFileAcl acl(L"C:\\file");
    EXPECT_FALSE(acl.SupportsAcls() || acl.HasSecurity() || acl.IsOwnedByTrustedInstaller() || acl.Commit());
    EXPECT_TRUE(acl.AddFullAccessEntryToAcl(nullptr) && acl.ApplyNullDacl() && acl.HasAceForSid(nullptr));
}

TEST(FileAcl, FailingCallsAndOddDescriptorsLeaveNothingBehind) {
    const CString path = L"C:\\no such file";
    const std::tuple<CString, int, LONG> refused[] = {
        {L"", CFileException::badPath, -1},
        {CString(L"C:\0x", 4), CFileException::badPath, ERROR_INVALID_NAME},
        {path, CFileException::genericException, ERROR_FILE_NOT_FOUND}};
    for (const auto& [name, cause, error] : refused)
        EXPECT_EQ(ProblemOf([&file = name] { CFileAcl acl(file); }), std::tuple(cause, error, name));
    const std::wstring installer = L"S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464";
    const std::wstring entries = L"D:(A;;FR;;;SY)(A;;FR;;;" + installer + L")(A;;FR;;;" + installer + L")";
    const GivenSecurity file((L"O:" + installer + entries).c_str());
    CFileAcl acl(path);
    EXPECT_TRUE(acl.IsOwnedByTrustedInstaller());
    for (const bool first : {true, false}) {
        const auto call = first ? NotedCall(&MakeAbsoluteSD, "MakeAbsoluteSD", FALSE)
                                : NotedCall(&MakeSelfRelativeSD, "MakeSelfRelativeSD", FALSE);
        EXPECT_FALSE(acl.Commit() || acl.ApplyNullDacl());
    }
    EXPECT_EQ(s_written, L"");
    {
        const NotedCall call(&GetAclInformation, "GetAclInformation", FALSE);
        EXPECT_FALSE(acl.HasAceForSid(kSystem.get()));
    }
    const LogCapture log;
    BYTE noSid[16] = {9}, noDescriptor[64] = {};
    EXPECT_FALSE(acl.AddFullAccessEntryToAcl(noSid));
    EXPECT_TRUE(log.Contains(LogLevel::Error, L"Unable to set ACL Entry. Error:"));
    EXPECT_TRUE(acl.HasAceForSid(kSystem.get()) && acl.HasSecurity());
    {
        const NotedCall call(&GetSecurityDescriptorDacl, "GetSecurityDescriptorDacl", FALSE);
        EXPECT_FALSE(acl.ReadSecurity() || acl.HasSecurity());
    }
    // A rebuilt descriptor keeps everything but the list.
    const Memory before = Descriptor(L"O:BAG:SYD:(A;;FR;;;SY)S:(AU;FA;FA;;;WD)"),
                 other = Descriptor(L"D:(A;OICI;FA;;;WD)");
    std::unique_ptr<BYTE[]> rebuilt;
    EXPECT_TRUE(CFileAcl::RebuildDescriptor(before.get(), rebuilt, DaclOf(other.get())));
    EXPECT_EQ(TextOf(rebuilt.get()), L"O:BAG:SYD:(A;OICI;FA;;;WD)S:(AU;FA;FA;;;WD)");
    EXPECT_FALSE(CFileAcl::RebuildDescriptor(noDescriptor, rebuilt, nullptr) || rebuilt);
    // The SID of the first entry says that it has 15 parts, which reach into the other entries.
    ACCESS_ALLOWED_ACE* entry = nullptr;
    ASSERT_TRUE(GetAce(DaclOf(file.descriptor.get()), 0, reinterpret_cast<void**>(&entry)));
    *GetSidSubAuthorityCount(&entry->SidStart) = 15;
    EXPECT_FALSE(CFileAcl(path).HasAceForSid(&entry->SidStart));
}
