#include "files/Junctions.h"

#include <aclapi.h>

#include <gtest/gtest.h>

#include "files/DeepFolder.h"
#include "files/JunctionBuffer.h"
#include "files/NotedCall.h"
#include "files/PathHelper.h"
#include "support/FakeVersion.h"
#include "support/FreshProcess.h"
#include "support/ImportPatch.h"
#include "support/ReparseVolume.h"
#include "support/ScopedTestDir.h"

namespace {

class JunctionsTest : public testing::Test {
protected:
    JunctionsTest() {
        CreateDirectoryW(m_target.c_str(), nullptr);
        CreateDirectoryW(m_plain.c_str(), nullptr);
    }

    CString Link() const { return m_link.c_str(); }
    CString Target() const { return m_target.c_str(); }

    const ReparseVolume m_volume;
    const ScopedTestDir m_dir;
    const std::wstring m_link = m_dir.Path(L"link"), m_target = m_dir.Path(L"target"), m_plain = m_dir.Path(L"plain");
};

}  // namespace

TEST_F(JunctionsTest, LiveFromCreationToRemoval) {
    EXPECT_FALSE(IsJunction(Link()));
    ASSERT_TRUE(CreateJunction(Link(), Target())) << GetLastError();
    EXPECT_TRUE(IsJunction(Link()));
    EXPECT_FALSE(IsJunction(Target()));
    if (!m_volume.IsReal()) {
        EXPECT_EQ(m_volume.BytesOf(m_link), *Junction::Encode(m_target));
    }
    EXPECT_EQ(GetJunctionTarget(Link()), Target());
    EXPECT_TRUE(DeleteJunction(Link(), false));
    EXPECT_FALSE(IsJunction(Link()));
    EXPECT_TRUE(CPathHelper::DirectoryExists(Link()));
    EXPECT_FALSE(DeleteJunction(Link(), true));
    EXPECT_TRUE(CPathHelper::DirectoryExists(Link()));
    ASSERT_TRUE(CreateJunction(Link(), Target()));
    EXPECT_TRUE(DeleteJunction(Link(), true));
    EXPECT_FALSE(CPathHelper::DirectoryExists(Link()));
}

TEST_F(JunctionsTest, AttributesAreTheLinksOwn) {
    ASSERT_TRUE(CreateJunction(Link(), Target()));
    constexpr DWORD kLink = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    EXPECT_EQ(GetJunctionAttributes(Link()) & kLink, kLink);
    EXPECT_FALSE(IsJunctionHidden(Link()));
    EXPECT_TRUE(HideJunction(Link()));
    EXPECT_TRUE(IsJunctionHidden(Link()));
    EXPECT_FALSE(IsJunctionSystem(Link()));
    EXPECT_TRUE(MarkJunctionSystem(Link()));
    EXPECT_TRUE(IsJunctionHidden(Link()) && IsJunctionSystem(Link()));
    EXPECT_EQ(GetFileAttributesW(Target()), DWORD{FILE_ATTRIBUTE_DIRECTORY});
    EXPECT_TRUE(SetJunctionAttributes(Link(), FILE_ATTRIBUTE_DIRECTORY));
    EXPECT_FALSE(IsJunctionHidden(Link()) || IsJunctionSystem(Link()));
}

TEST_F(JunctionsTest, AnythingElseIsNoJunction) {
    SetFileAttributesW(m_plain.c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    for (const CString& path : {CString(m_plain.c_str()), Link() + L"\\missing", CString()}) {
        EXPECT_EQ(GetJunctionTarget(path), path);
        EXPECT_EQ(GetJunctionAttributes(path), INVALID_FILE_ATTRIBUTES);
        EXPECT_FALSE(IsJunctionHidden(path) || IsJunctionSystem(path));
        EXPECT_FALSE(SetJunctionAttributes(path, 0) || HideJunction(path) || MarkJunctionSystem(path));
        EXPECT_FALSE(DeleteJunction(path, true));
    }
}

TEST_F(JunctionsTest, OnlyAnEmptyDirectoryBecomesOne) {
    CreateDirectoryW((m_plain + L"\\child").c_str(), nullptr);
    EXPECT_FALSE(CreateJunction(m_plain.c_str(), Target()));
    EXPECT_FALSE(IsJunction(m_plain.c_str()));
    RemoveDirectoryW((m_plain + L"\\child").c_str());
    EXPECT_TRUE(CreateJunction(m_plain.c_str(), Target()));
    EXPECT_FALSE(CreateJunction(Link() + L"\\below\\missing", Target()));
    EXPECT_FALSE(CreateJunction(Link(), CString(L'x', 8179)));
    EXPECT_FALSE(CPathHelper::DirectoryExists(Link()));
}

TEST_F(JunctionsTest, ANewDirectoryKeepsFilesOut) {
    static std::vector<BYTE> s_descriptor;
    static BOOL s_inherited = TRUE;
    const ImportPatch<decltype(&CreateDirectoryW)> create(
        GetModuleHandleW(nullptr), "CreateDirectoryW", [](LPCWSTR, SECURITY_ATTRIBUTES* security) -> BOOL {
            const DWORD size = GetSecurityDescriptorLength(security->lpSecurityDescriptor);
            const auto* const bytes = static_cast<const BYTE*>(security->lpSecurityDescriptor);
            s_descriptor.assign(bytes, bytes + size);
            s_inherited = security->bInheritHandle;
            return TRUE;
        });
    EXPECT_TRUE(PrepareJunctionDirectory(Link()));
    EXPECT_FALSE(s_inherited);
    BOOL present = FALSE, defaulted = FALSE;
    PACL acl = nullptr;
    ASSERT_TRUE(GetSecurityDescriptorDacl(s_descriptor.data(), &present, &acl, &defaulted));
    ASSERT_EQ(acl->AceCount, 3);
    ACCESS_DENIED_ACE* entry = nullptr;
    ASSERT_TRUE(GetAce(acl, 0, reinterpret_cast<void**>(&entry)));
    EXPECT_EQ(entry->Header.AceType, ACCESS_DENIED_ACE_TYPE);
    EXPECT_EQ(entry->Mask, 1u);
    EXPECT_TRUE(IsWellKnownSid(&entry->SidStart, WinWorldSid));
}

TEST_F(JunctionsTest, BeforeWindows7ANewDirectoryIsAnOrdinaryOne) {
    EXPECT_IN_FRESH_PROCESS([&] {
        const FakeVersion version(6, 0);
        const ImportPatch<decltype(&CreateDirectoryW)> create(GetModuleHandleW(nullptr), "CreateDirectoryW",
                                                              [](LPCWSTR, SECURITY_ATTRIBUTES* security) -> BOOL {
                                                                  EXPECT_EQ(security, nullptr);
                                                                  return TRUE;
                                                              });
        EXPECT_TRUE(PrepareJunctionDirectory(Link()));
    });
}

TEST_F(JunctionsTest, FarBeyondTheClassicLimit) {
    const CString folder = MakeDeepFolder(m_dir.Path()).c_str();
    const CString link = folder + L"\\link", prefixed = CPathHelper::AddLongPathPrefix(link);
    ASSERT_TRUE(CreateJunction(link, folder));
    EXPECT_TRUE(IsJunction(link));
    EXPECT_EQ(GetJunctionTarget(link), folder);
    EXPECT_EQ(GetJunctionTarget(prefixed), CPathHelper::AddLongPathPrefix(folder));
    EXPECT_TRUE(DeleteJunction(prefixed, false));
    ASSERT_TRUE(CreateJunction(link, Target()));
    EXPECT_EQ(GetJunctionTarget(prefixed), Target());
    const NotedCall remove(&RemoveDirectoryW, "RemoveDirectoryW", TRUE);
    EXPECT_TRUE(DeleteJunction(link, true));
    EXPECT_EQ(TakePaths(), Paths{prefixed.GetString()});
}

TEST_F(JunctionsTest, DamagedLinksAndFailingCallsGiveNothing) {
    if (m_volume.IsReal()) GTEST_SKIP() << "a real volume takes no damaged links";
    auto bytes = *Junction::Encode(m_target);
    bytes[10] = bytes[11] = std::byte{0xFF};
    m_volume.SetBytes(m_plain, bytes);
    EXPECT_EQ(GetJunctionTarget(m_plain.c_str()), Target());
    bytes.resize(15);
    m_volume.SetBytes(m_plain, bytes);
    EXPECT_EQ(GetJunctionTarget(m_plain.c_str()), L"");
    m_volume.SetBytes(m_plain, std::vector<std::byte>(0x4001));
    EXPECT_EQ(GetJunctionTarget(m_plain.c_str()), L"");
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MORE_DATA});

    m_volume.SetBytes(m_plain, *Junction::Encode(m_target));
    const HANDLE taken = OpenJunction(m_plain.c_str(), false);
    ASSERT_NE(taken, INVALID_HANDLE_VALUE);
    EXPECT_EQ(OpenJunction(m_plain.c_str(), false), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetJunctionTarget(m_plain.c_str()), L"");
    EXPECT_EQ(GetJunctionAttributes(m_plain.c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_FALSE(HideJunction(m_plain.c_str()));
    EXPECT_FALSE(DeleteJunction(m_plain.c_str(), true));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
    CloseHandle(taken);
    EXPECT_TRUE(DeleteJunction(m_plain.c_str(), true));
}
