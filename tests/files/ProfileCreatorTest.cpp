#include "files/ProfileCreator.h"

#include <sddl.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "files/FileSecurity.h"
#include "files/Junctions.h"
#include "files/NotedCall.h"
#include "files/PathHelper.h"
#include "support/FakeVersion.h"
#include "support/FileBytes.h"
#include "support/FreshProcess.h"
#include "support/LogCapture.h"
#include "support/Narrow.h"
#include "support/ReparseVolume.h"
#include "support/ScopedTestDir.h"

namespace {

// Notes what it is about to copy.
class NotingCreator : public CProfileCreator {
public:
    std::vector<std::wstring> sources;

private:
    void OnCopying(const CString& source, const CString&) override { sources.emplace_back(source.GetString()); }
};

class ProfileCopy : public testing::Test {
protected:
    ProfileCopy() : m_source(m_dir.Path(L"Default").c_str()), m_target(m_dir.Path(L"New").c_str()) {
        CreateDirectoryW(m_source, nullptr);
    }

    bool Copy() { return m_creator.CopyFilesAndFolders(m_source, m_target, m_source, m_target, m_user, m_error, true); }
    std::wstring InSource(std::wstring_view name) const { return m_dir.Path(L"Default\\" + std::wstring(name)); }
    std::wstring InTarget(std::wstring_view name) const { return m_dir.Path(L"New\\" + std::wstring(name)); }
    void MakeFile(std::wstring_view name, std::string_view bytes, DWORD attributes = FILE_ATTRIBUTE_NORMAL) {
        PutBytes(InSource(name), bytes);
        SetFileAttributesW(InSource(name).c_str(), attributes);
    }
    std::string Error() const { return Narrow(m_error.GetString()); }

    const ScopedTestDir m_dir;
    CString m_source;
    CString m_target;
    NotingCreator m_creator;
    // Of the accounts that Wine's volumes keep access for.
    SID m_everyone{SID_REVISION, 1, {SECURITY_WORLD_SID_AUTHORITY}, {SECURITY_WORLD_RID}};
    CProfileUser m_user{&m_everyone};
    CString m_error;
    const LogCapture m_log;
};

}  // namespace

TEST_F(ProfileCopy, ATreeOfTwoThousandFiles) {
    constexpr int kFolders = 40;
    constexpr int kFiles = 50;
    for (int i = 0; i < kFolders; ++i) {
        const std::wstring folder = std::to_wstring(i);
        CreateDirectoryW(InSource(folder).c_str(), nullptr);
        for (int j = 0; j < kFiles; ++j) {
            MakeFile(folder + L"\\" + std::to_wstring(j), std::to_string(i * kFiles + j));
        }
    }
    MakeFile(L"7\\read-only", "r", FILE_ATTRIBUTE_READONLY);
    MakeFile(L"7\\hidden", "h", FILE_ATTRIBUTE_HIDDEN);
    SetFileAttributesW(InSource(L"8").c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_DIRECTORY);
    const std::wstring deep = std::wstring(120, L'a') + L"\\" + std::wstring(120, L'b');
    CPathHelper::CreateDirectoryTree(InSource(deep).c_str());
    PutBytes(L"\\\\?\\" + InSource(deep + L"\\deep"), "deep");
    CreateDirectoryW(m_target, nullptr);
    CreateDirectoryW(InTarget(L"3").c_str(), nullptr);
    PutBytes(InTarget(L"3\\0"), "there before");

    ASSERT_TRUE(Copy()) << Error();
    EXPECT_EQ(Error(), "");
    for (int i = 0; i < kFolders * kFiles; ++i) {
        const std::wstring path = InTarget(std::to_wstring(i / kFiles) + L"\\" + std::to_wstring(i % kFiles));
        ASSERT_EQ(BytesOf(path), i == 3 * kFiles ? "there before" : std::to_string(i)) << i;
    }
    // Wine keeps read-only and access in the same bits, so access for all ends the attribute there.
    EXPECT_EQ(BytesOf(InTarget(L"7\\read-only")), "r");
    EXPECT_EQ(GetFileAttributesW(InTarget(L"7\\hidden").c_str()) & FILE_ATTRIBUTE_HIDDEN, 2U);
    EXPECT_EQ(GetFileAttributesW(InTarget(L"8").c_str()) & FILE_ATTRIBUTE_HIDDEN, 2U);
    EXPECT_EQ(BytesOf(L"\\\\?\\" + InTarget(deep + L"\\deep")), "deep");
    EXPECT_TRUE(MayEveryoneWrite(InTarget(L"7")) && MayEveryoneWrite(InTarget(L"7\\hidden")));
    EXPECT_TRUE(MayEveryoneWrite(InTarget(L"3\\0"))) << "a file that was there";
    EXPECT_TRUE(m_log.Contains(LogLevel::Informational, L"Skipping the file '" + InSource(L"3\\0")));
    // Files, folders, the root, the long path's two folders.
    EXPECT_EQ(m_creator.sources.size(), kFolders * kFiles + 3U + kFolders + 1U + 2U);
    EXPECT_EQ(m_creator.sources.front(), m_source.GetString());
}

TEST_F(ProfileCopy, JunctionsStayJunctionsAndAreNeverEntered) {
    const ReparseVolume volume;
    CreateDirectoryW(InSource(L"Data").c_str(), nullptr);
    MakeFile(L"Data\\file", "x");
    const std::wstring outside = m_dir.Path(L"Elsewhere");
    const std::pair<std::wstring, std::wstring> links[] = {
        {L"inside", InSource(L"Data")}, {L"outside", outside}, {L"parent", m_source.GetString()}};
    for (const auto& [name, target] : links) ASSERT_TRUE(CreateJunction(InSource(name).c_str(), target.c_str()));
    HideJunction(InSource(L"parent").c_str());
    MarkJunctionSystem(InSource(L"inside").c_str());

    ASSERT_TRUE(Copy()) << Error();
    EXPECT_EQ(GetJunctionTarget(InTarget(L"inside").c_str()), InTarget(L"Data").c_str());
    EXPECT_EQ(GetJunctionTarget(InTarget(L"outside").c_str()), outside.c_str());
    EXPECT_EQ(GetJunctionTarget(InTarget(L"parent").c_str()), m_target);
    EXPECT_TRUE(IsJunctionHidden(InTarget(L"parent").c_str()) && !IsJunctionSystem(InTarget(L"parent").c_str()));
    EXPECT_TRUE(IsJunctionSystem(InTarget(L"inside").c_str()) && !IsJunctionHidden(InTarget(L"inside").c_str()));
    EXPECT_EQ(BytesOf(InTarget(L"Data\\file")), "x");
    EXPECT_EQ(m_creator.sources.size(), 1U + 2U + 3U);

    // A second time the links are in the way.
    CreateDirectoryW((InTarget(L"outside") + L"\\full").c_str(), nullptr);
    EXPECT_FALSE(Copy());
    EXPECT_EQ(Error(), "Undefined string resource requested: 25");
}

TEST_F(ProfileCopy, SystemJunctionsStaySoAboveWindowsVistaOnly) {
    for (const DWORD minor : {0U, 1U}) {
        EXPECT_IN_FRESH_PROCESS([&] {
            const FakeVersion version(6, minor);
            const ReparseVolume volume;
            ASSERT_TRUE(CreateJunction(InSource(L"link").c_str(), m_dir.Path().c_str()));
            MarkJunctionSystem(InSource(L"link").c_str());
            HideJunction(InSource(L"link").c_str());
            ASSERT_TRUE(Copy()) << Error();
            EXPECT_EQ(IsJunctionSystem(InTarget(L"link").c_str()), minor != 0) << minor;
            EXPECT_TRUE(IsJunctionHidden(InTarget(L"link").c_str())) << minor;
        });
    }
}

TEST_F(ProfileCopy, TheFirstFailureEndsItSaysWhyAndKeepsWhatWasDone) {
    CreateDirectoryW(InSource(L"sub").c_str(), nullptr);
    CreateDirectoryW(InSource(L"sub\\below").c_str(), nullptr);
    for (const LPCWSTR name : {L"a", L"sub\\below\\locked", L"sub\\below\\other"}) MakeFile(name, "x");
    const std::wstring locked = InSource(L"sub\\below\\locked");
    m_error = L"Earlier. ";
    {
        const CFile locker(locked.c_str(), CFile::modeReadWrite | CFile::shareExclusive);
        EXPECT_FALSE(Copy());
    }
    EXPECT_EQ(Error(), "Earlier. Undefined string resource requested: 271");
    EXPECT_TRUE(m_log.Contains(LogLevel::Error, L"The file '" + locked + L"' could not be copied to '" +
                                                    InTarget(L"sub\\below\\locked") + L"'. Possible error code: 0x20"));
    for (const LPCWSTR name : {L"sub\\below", L"sub"}) {
        EXPECT_TRUE(m_log.Contains(LogLevel::Error, L"The directory '" + InSource(name) +
                                                        L"' could not be copied to '" + InTarget(name) +
                                                        L"'. Possible error code is 0x20"));
        EXPECT_TRUE(MayEveryoneWrite(InTarget(name))) << "what is laid down stays";
    }
    EXPECT_EQ(BytesOf(InTarget(L"sub\\below\\locked")), "");
    EXPECT_EQ(m_creator.sources.back(), locked) << "the rest is not tried";

    // A file stands where a directory should.
    RemoveDirectoryW(InTarget(L"sub\\below").c_str());
    PutBytes(InTarget(L"sub\\below"), "in the way");
    m_error.Empty();
    EXPECT_FALSE(Copy());
    EXPECT_EQ(Error(), "Undefined string resource requested: 271");
    EXPECT_EQ(BytesOf(InTarget(L"sub\\below")), "in the way");
}

TEST_F(ProfileCopy, WordsForDirectoriesThatAreNotThere) {
    EXPECT_FALSE(m_creator.CopyFilesAndFolders(L"C:\\", m_target, L"C:\\", m_target, m_user, m_error, false));
    EXPECT_EQ(Error(),
              "One of the following paths is smaller than 4 characters and cannot be processed by "
              "CopyFilesAndFolders: Source: C:\\, Target: " +
                  Narrow(m_target.GetString()));
    m_target = m_dir.Path(L"none\\New").c_str();
    EXPECT_FALSE(Copy());
    EXPECT_EQ(Error(), "Unable to create the directory (" + Narrow(m_target.GetString()) + ") Error:3");
    m_target = m_dir.Path(L"New").c_str();
    m_source = m_dir.Path(L"none").c_str();
    EXPECT_FALSE(Copy());
    EXPECT_EQ(Error(), "The source directory (" + Narrow(m_source.GetString()) + ") does not exist.");
    EXPECT_TRUE(MayEveryoneWrite(m_target.GetString())) << "the target stays";
}

TEST_F(ProfileCopy, ADirectoryIsMadeLikeItsParentWithThePrefixOnlyAfterAFailure) {
    const NotedCall create(&CreateDirectoryExW, "CreateDirectoryExW", FALSE);
    const std::wstring name(248, L't'), parent = m_dir.Path(), target = m_dir.Path(name), prefix = L"\\\\?\\";
    m_target = target.c_str();
    EXPECT_FALSE(Copy());
    EXPECT_EQ(TakePaths(), (Paths{parent, target, parent, prefix + target}));
    m_target = (prefix + target).c_str();
    EXPECT_FALSE(Copy());
    EXPECT_EQ(TakePaths(), (Paths{prefix + parent, prefix + target}));
}

TEST_F(ProfileCopy, TracesEveryStepOfTheAccess) {
    ASSERT_TRUE(Copy());
    const auto traces = m_log.Messages(LogLevel::Trace);
    const std::vector<std::wstring> steps = {
        L"Adding a full access ACE to '" + m_dir.Path(L"New") + L"' for the SID 'S-1-1-0'",
        L"Enter CFileAcl::AddFullAccessEntryToAcl", L"Leave CFileAcl::AddFullAccessEntryToAcl",
        L"Committing the ACL changes"};
    EXPECT_FALSE(std::ranges::search(traces, steps).empty()) << testing::PrintToString(traces);
}

TEST_F(ProfileCopy, AttributesThatCannotBeSetLeaveWordsBesideSuccess) {
    MakeFile(L"a", "a");
    const NotedCall set(&SetFileAttributesW, "SetFileAttributesW", FALSE, ERROR_ACCESS_DENIED);
    EXPECT_TRUE(Copy());
    EXPECT_EQ(Error(), "Unable to set attributes on the new folder '" + Narrow(m_target.GetString()) + "' due to 5");
    EXPECT_EQ(BytesOf(InTarget(L"a")), "a");
}

TEST(ProfileUser, KnowsItsSidInBothForms) {
    PSID sid = nullptr;
    ASSERT_TRUE(ConvertStringSidToSidW(L"S-1-5-21-1-2-3-1001", &sid));
    CProfileUser user(sid);
    LocalFree(sid);
    EXPECT_EQ(user.GetSidText(), L"S-1-5-21-1-2-3-1001");
    EXPECT_EQ(user.GetSidText(), L"S-1-5-21-1-2-3-1001");
}
