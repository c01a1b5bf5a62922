// Profile paths over real registry keys, on a running system and on a preinstallation boot.
#include "profiles/ProfilePathHelper.h"

#include <filesystem>
#include <gtest/gtest.h>

#include "profiles/ProfileKeys.h"
#include "registry/Thrown.h"
#include "support/FakeVersion.h"
#include "support/FreshProcess.h"
#include "support/LogCapture.h"
#include "support/ScopedPreinstallation.h"
#include "support/ScopedRegistryPlace.h"

namespace {

constexpr wchar_t kSid[] = L"S-1-5-21-1-2-3-1001";

CString UserPath(LPCWSTR userName = L"") {
    return CProfilePathHelper::GetUserProfilePath(kSid, userName);
}

CString LocalPath() {
    return CProfilePathHelper::GetLocalProfilePath(kSid);
}

}  // namespace

TEST(UserProfilePath, TheCentralCopyWinsUnlessAPolicyKeepsProfilesLocal) {
    ScopedRegistryPlace profile(HKEY_LOCAL_MACHINE, kProfileList + L"\\" + kSid);
    EXPECT_EQ(UserPath(L"DOMAIN\\ann"), L"") << "a listed user without paths has none";
    EXPECT_EQ(LocalPath(), L"");
    profile.SetText(L"ProfileImagePath", L"%SystemDrive%\\p\\ann", REG_EXPAND_SZ);
    EXPECT_EQ(UserPath(), L"C:\\p\\ann");
    profile.SetText(L"CentralProfile", L"");
    EXPECT_EQ(UserPath(), L"C:\\p\\ann");
    profile.SetText(L"CentralProfile", L"\\\\srv\\p\\%OS%");
    EXPECT_EQ(UserPath(), L"\\\\srv\\p\\Windows_NT") << "no policy key; texts of any type are expanded";
    ScopedRegistryPlace policies(HKEY_LOCAL_MACHINE, kPolicies);
    EXPECT_EQ(UserPath(), L"\\\\srv\\p\\Windows_NT") << "no policy value";
    policies.SetNumber(L"LocalProfile", 0);
    EXPECT_EQ(UserPath(), L"\\\\srv\\p\\Windows_NT");
    policies.SetNumber(L"LocalProfile", 1);
    EXPECT_EQ(UserPath(), L"C:\\p\\ann");
    EXPECT_EQ(LocalPath(), L"C:\\p\\ann");
    policies.SetText(L"LocalProfile", L"1");
    EXPECT_EQ(StatusThrownBy([] { UserPath(); }), DWORD{ERROR_INVALID_DATATYPE});
    const BYTE oddUnterminated[] = {'C', 0, ':', 0, '\\'};
    profile.SetData(L"ProfileImagePath", REG_SZ, oddUnterminated, sizeof(oddUnterminated));
    EXPECT_EQ(LocalPath(), L"C:\\");
    profile.SetNumber(L"ProfileImagePath", 1);
    EXPECT_EQ(StatusThrownBy([] { LocalPath(); }), DWORD{ERROR_INVALID_DATATYPE});
}

TEST(UserProfilePath, TheCurrentUsersIsThatOfTheEnvironment) {
    wchar_t profile[MAX_PATH] = {};
    GetEnvironmentVariableW(L"USERPROFILE", profile, MAX_PATH);
    EXPECT_EQ(CProfilePathHelper::GetCurrentProfilePath().CompareNoCase(profile), 0);
}

TEST(UserProfilePath, AUserWhoIsNotListedHasConfiguredPathsOrAGuess) {
    const ScopedRegistryPlace list(HKEY_LOCAL_MACHINE, kProfileList);
    EXPECT_EQ(StatusThrownBy([] { LocalPath(); }), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(UserPath(), L"");
    EXPECT_EQ(UserPath(L"DOMAIN\\ann"), L"C:\\users\\ann");
    EXPECT_EQ(UserPath(L"ann"), L"C:\\users\\") << "without a domain there is no name";
    ScopedRegistryPlace configured(HKEY_LOCAL_MACHINE, kConfigured + kSid);
    EXPECT_EQ(UserPath(L"DOMAIN\\ann"), L"");
    EXPECT_EQ(LocalPath(), L"");
    configured.SetText(L"Roaming", L"\\\\srv\\%OS%");
    configured.SetText(L"Local", L"D:\\%OS%", REG_EXPAND_SZ);
    EXPECT_EQ(UserPath(L"DOMAIN\\ann"), L"\\\\srv\\%OS%") << "configured paths are meant as they stand";
    EXPECT_EQ(LocalPath(), L"D:\\%OS%");
}

TEST(ProfileRegistryValue, GivesAStatusForWhatIsNoText) {
    ScopedRegistryPlace list(HKEY_LOCAL_MACHINE, kProfileList);
    const std::string longText(100000, 'x');
    struct Case {
        DWORD type;
        std::string bytes;
        LONG status;
        CString expected;
    };
    const Case cases[] = {
        {REG_SZ, std::string("%\0O\0S\0%\0\0\0", 10), 0, L"%OS%"},
        {REG_EXPAND_SZ, std::string("%\0O\0S\0%\0\0\0", 10), 0, L"Windows_NT"},
        {REG_SZ, std::string(), 0, L""},
        {REG_EXPAND_SZ, longText + std::string(2, '\0'), 0, CString(L'\x7878', 50000)},
        {REG_SZ, std::string("C\0:\0", 4), ERROR_INVALID_DATA, L""},
        {REG_SZ, std::string("C\0:\0\0", 5), ERROR_INVALID_DATA, L""},
        {REG_SZ, std::string("C", 1), ERROR_INVALID_DATA, L""},
        {REG_MULTI_SZ, std::string("C\0\0\0\0\0", 6), ERROR_INVALID_DATA, L""},
        {REG_DWORD, std::string("\1\0\0\0", 4), ERROR_INVALID_DATA, L""},
    };
    CString value;
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "type " << c.type << ", " << testing::PrintToString(c.bytes.substr(0, 20)));
        list.SetData(L"RrValue", c.type, c.bytes.data(), c.bytes.size());
        value = L"before";
        EXPECT_EQ(CProfilePathHelper::GetRegistryValue(L"RrValue", value), c.status);
        EXPECT_EQ(value, c.expected);
    }
    const LogCapture log;
    EXPECT_EQ(CProfilePathHelper::GetRegistryValue(L"RrValue", value), ERROR_INVALID_DATA);
    list.Remove(L"RrValue");
    EXPECT_EQ(CProfilePathHelper::GetRegistryValue(L"RrValue", value), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(CProfilePathHelper::GetRegistryValue(L"Public", value), ERROR_SUCCESS);
    EXPECT_TRUE(
        log.Contains(LogLevel::Informational, L"QueryStringValue returned 13 for " + kProfileList + L"\\RrValue"));
    EXPECT_TRUE(log.Contains(LogLevel::Informational, L"QueryValue returned 2 for " + kProfileList + L"\\RrValue"));
    EXPECT_TRUE(log.Contains(LogLevel::Trace,
                             L"Registry value for 80000002\\" + kProfileList + L"\\Public is C:\\users\\Public"));
}

TEST(ProfilePathSuffix, OnWindows8TheServiceHasASetting) {
    EXPECT_IN_FRESH_PROCESS([] {
        const FakeVersion windows8(6, 2);
        EXPECT_EQ(CProfilePathHelper::GetProfilePathExtension(), L".V2");
        ScopedRegistryPlace service(HKEY_LOCAL_MACHINE, kProfileService);
        EXPECT_EQ(CProfilePathHelper::GetProfilePathExtension(), L".V2");
        service.SetNumber(L"UseProfilePathExtensionVersion", 1);
        EXPECT_EQ(CProfilePathHelper::GetProfilePathExtension(), L".V3");
        CString path = L"\\\\srv\\p\\ann.V2";
        CProfilePathHelper::ApplyProfilePathExtension(path);
        EXPECT_EQ(path, L"\\\\srv\\p\\ann.V3");
        EXPECT_EQ(CProfilePathHelper::BuildProfilePath(L"\\\\srv\\p", L"ann"), L"\\\\srv\\p\\ann.V3");
        EXPECT_EQ(CProfilePathHelper::GetNetlogonDefaultUserPath(L"\\\\srv\\profiles\\ann"),
                  L"\\\\srv\\NETLOGON\\Default User.V3");
        service.SetText(L"UseProfilePathExtensionVersion", L"1");
        EXPECT_EQ(StatusThrownBy([] { CProfilePathHelper::GetProfilePathExtension(); }), DWORD{ERROR_INVALID_DATATYPE});
    });
}

TEST(ProfilesOnAPreinstallationBoot, ATextThatCannotBeExpandedIsNotKept) {
    EXPECT_IN_FRESH_PROCESS([] {
        const ScopedPreinstallation machine;
        HiveBuilder software;
        software.SetNumber(L"Microsoft\\Windows NT\\CurrentVersion", L"SystemRoot", 1);
        software.SetText(L"Microsoft\\Windows NT\\CurrentVersion\\ProfileList", L"Default", L"%SystemRoot%\\x",
                         REG_EXPAND_SZ);
        machine.Mount(L"OS_SOFTWARE", machine.Install(L'D', L"SOFTWARE", software));
        for (int again = 0; again < 2; ++again)
            EXPECT_EQ(StatusThrownBy([] { CProfilePathHelper::GetDefaultUserProfilePath(); }), 0x70Cu);
    });
}

TEST(ProfilesOnAPreinstallationBoot, AreTheInstalledSystemsAndKeptOnceTheyAreKnown) {
    EXPECT_IN_FRESH_PROCESS([] {
        const ScopedPreinstallation machine;
        HiveBuilder software;
        software.SetText(L"Microsoft\\Windows NT\\CurrentVersion", L"SystemRoot", L"Q:\\Target");
        const std::wstring list = L"Microsoft\\Windows NT\\CurrentVersion\\ProfileList";
        software.SetText(list, L"ProfilesDirectory", L"Q:\\Users");
        software.SetText(list + L"\\" + kSid, L"ProfileImagePath", L"%SystemDrive%\\Users\\ann");
        // The 32-bit view of the same key, which must not be read.
        software.SetText(L"Wow6432Node\\" + list, L"ProfilesDirectory", L"Q:\\32");
        software.SetText(L"Wow6432Node\\Microsoft\\Windows\\CurrentVersion", L"ProgramFilesDir (x86)", L"Q:\\P");
        HiveBuilder system;
        system.SetNumber(L"Select", L"Current", 2);
        system.SetText(L"ControlSet002\\Services\\ProfSvc\\Parameters", L"UseProfilePathExtensionVersion", L"text");
        // The hives are copied to a drive that no rule for drive C rewrites, as a boot image does.
        const std::filesystem::path copies = L"E:\\Profiles";
        std::filesystem::create_directories(copies);
        SetEnvironmentVariableW(L"TMP", copies.c_str());
        machine.Install(L'D', L"SOFTWARE", software);
        machine.Install(L'D', L"SYSTEM", system);
        const LogCapture log;
        // The very first question, which also has the hives mounted.
        const CString defaultProfile = CProfilePathHelper::GetDefaultUserProfilePath();
        EXPECT_EQ(defaultProfile, L"Q:\\Users\\Default");
        EXPECT_TRUE(
            log.Contains(LogLevel::Informational, L"Failed to read default user profile path, using default default"));
        EXPECT_TRUE(log.Contains(LogLevel::Verbose, L"KEY_WOW64_64KEY added to Key in PE"));
        EXPECT_EQ(UserPath(), L"Q:\\Users\\ann");
        EXPECT_EQ(CProfilePathHelper::GetUserProfilePath(L"S-1-5-21-9", L"DOMAIN\\bob"), L"Q:\\Users\\bob");
        EXPECT_EQ(StatusThrownBy([] { CProfilePathHelper::GetProfilePathExtension(); }), DWORD{ERROR_INVALID_DATATYPE})
            << "the setting of the installed system's control set is read";

        EXPECT_EQ(CProfilePathHelper::GetPublicProfilePath(), L"");
        EXPECT_TRUE(CProfilePathHelper::IsUnderPublicProfile(L"x")) << "what is not known is everywhere";
        ScopedRegistryPlace mounted(HKEY_LOCAL_MACHINE, L"OS_SOFTWARE\\" + list);
        mounted.SetText(L"Default", L"D:\\too late");
        mounted.SetText(L"Public", L"Q:\\Users\\Public\\");
        EXPECT_EQ(CProfilePathHelper::GetDefaultUserProfilePath(), defaultProfile);
        EXPECT_EQ(CProfilePathHelper::GetPublicProfilePath(), L"Q:\\Users\\Public\\");
        mounted.SetText(L"Public", L"D:\\too late");
        EXPECT_TRUE(CProfilePathHelper::IsUnderPublicProfile(L"q:\\USERS\\public"));
        EXPECT_FALSE(CProfilePathHelper::IsUnderPublicProfile(L"q:\\USERS\\publication"));
        EXPECT_TRUE(CProfilePathHelper::IsUnderProfilesDirectory(L"d:\\backup\\q:\\users\\x"));
        EXPECT_FALSE(CProfilePathHelper::IsUnderProfilesDirectory(L"d:\\users\\x"));
        std::error_code ignored;
        std::filesystem::remove_all(copies, ignored);
    });
}
