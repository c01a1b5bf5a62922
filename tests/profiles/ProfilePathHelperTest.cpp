// Profiles, path variables and shell folders over real registry keys: of a local and a roaming user, of one who is not
// listed, and on a preinstallation boot.
#include "profiles/ProfilePathHelper.h"

#include <filesystem>
#include <gtest/gtest.h>

#include "files/PathVariables.h"
#include "profiles/ShellFolderPathHelper.h"
#include "registry/Thrown.h"
#include "support/FakeVersion.h"
#include "support/FreshProcess.h"
#include "support/LogCapture.h"
#include "support/ScopedPreinstallation.h"
#include "support/ScopedRegistryPlace.h"
#include "transports/EnvironmentValue.h"
#include "transports/NamedPipeClient.h"
#include "transports/PipeServer.h"

namespace {

using Folders = CShellFolderPathHelper;
constexpr wchar_t kSid[] = L"S-1-5-21-1-2-3-1001";
const std::wstring kVersionKey = L"Microsoft\\Windows NT\\CurrentVersion";
const std::wstring kProfileList = L"SOFTWARE\\" + kVersionKey + L"\\ProfileList";
const std::wstring kPolicies = L"Policies\\Microsoft\\Windows\\System";
const std::wstring kConfigured = L"Brevant Corporation\\Zarvex7\\RoamingProfilePaths\\";
const std::wstring kProfileService = L"System\\CurrentControlset\\Services\\ProfSvc\\Parameters";

CString UsedPath(LPCWSTR userName = L"") {
    return CProfilePathHelper::GetUserProfilePath(kSid, userName);
}

CString LocalPath() {
    return CProfilePathHelper::GetLocalProfilePath(kSid);
}

// A value of the profile list that becomes longer, but not twice as long, once its size has been asked.
LSTATUS WINAPI QueryThenGrow(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size) {
    const auto query = SystemFunction(&RegQueryValueExW, L"advapi32.dll", "RegQueryValueExW");
    const LSTATUS status = query(key, name, reserved, type, data, size);
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, kProfileList.c_str(), L"RrValue", REG_SZ, L"C:\\longer", 20);
    return status;
}

}  // namespace

TEST(UserProfilePath, TheCentralCopyWinsUnlessAPolicyKeepsProfilesLocal) {
    ScopedRegistryPlace profile(HKEY_LOCAL_MACHINE, kProfileList + L"\\" + kSid);
    EXPECT_EQ(UsedPath(L"DOMAIN\\ann") + LocalPath(), L"") << "a listed user without paths has none";
    profile.SetText(L"ProfileImagePath", L"%SystemDrive%\\p\\ann", REG_EXPAND_SZ);
    profile.SetText(L"CentralProfile", L"");
    EXPECT_EQ(UsedPath(), L"C:\\p\\ann");
    profile.SetText(L"CentralProfile", L"\\\\srv\\p\\%OS%");
    EXPECT_EQ(UsedPath(), L"\\\\srv\\p\\Windows_NT") << "no policy key; texts of any type are expanded";
    ScopedRegistryPlace policies(HKEY_LOCAL_MACHINE, L"SOFTWARE\\" + kPolicies);
    EXPECT_EQ(UsedPath(), L"\\\\srv\\p\\Windows_NT") << "no policy value";
    for (const DWORD policy : {0u, 1u}) {
        policies.SetNumber(L"LocalProfile", policy);
        EXPECT_EQ(UsedPath(), policy == 0 ? L"\\\\srv\\p\\Windows_NT" : L"C:\\p\\ann");
        EXPECT_EQ(LocalPath(), L"C:\\p\\ann");
    }
    policies.SetText(L"LocalProfile", L"1");
    EXPECT_EQ(StatusThrownBy([] { UsedPath(); }), 0x70Cu);
    profile.SetData(L"ProfileImagePath", REG_SZ, "C\0:\0\\", 5);
    EXPECT_EQ(LocalPath(), L"C:\\");
    wchar_t current[MAX_PATH] = {};
    GetEnvironmentVariableW(L"USERPROFILE", current, MAX_PATH);
    EXPECT_EQ(CProfilePathHelper::GetCurrentProfilePath().CompareNoCase(current), 0);
}

TEST(UserProfilePath, AUserWhoIsNotListedHasConfiguredPathsOrAGuess) {
    const ScopedRegistryPlace list(HKEY_LOCAL_MACHINE, kProfileList);
    EXPECT_EQ(StatusThrownBy([] { LocalPath(); }), 2u);
    EXPECT_EQ(UsedPath(), L"");
    EXPECT_EQ(UsedPath(L"DOMAIN\\ann"), L"C:\\users\\ann");
    EXPECT_EQ(UsedPath(L"ann"), L"C:\\users\\") << "without a domain there is no name";
    ScopedRegistryPlace configured(HKEY_LOCAL_MACHINE, L"Software\\" + kConfigured + kSid);
    EXPECT_EQ(UsedPath(L"DOMAIN\\ann") + LocalPath(), L"");
    configured.SetText(L"Roaming", L"\\\\srv\\%OS%");
    configured.SetText(L"Local", L"D:\\%OS%", REG_EXPAND_SZ);
    EXPECT_EQ(UsedPath(L"DOMAIN\\ann"), L"\\\\srv\\%OS%") << "configured paths are meant as they stand";
    EXPECT_EQ(LocalPath(), L"D:\\%OS%");
}

TEST(ProfileRegistryValue, GivesAStatusForWhatIsNoText) {
    using namespace std::string_literals;
    ScopedRegistryPlace list(HKEY_LOCAL_MACHINE, kProfileList);
    const struct {
        std::string bytes;
        CString expected;
        DWORD type;
        LONG status;
    } cases[] = {
        {"%\0O\0S\0%\0\0\0"s, L"%OS%", REG_SZ, 0},
        {"%\0O\0S\0%\0\0\0"s, L"Windows_NT", REG_EXPAND_SZ, 0},
        {"", L"", REG_SZ, 0},
        {std::string(100000, 'x') + "\0\0"s, CString(L'\x7878', 50000), REG_EXPAND_SZ, 0},
        {"C\0:\0"s, L"", REG_SZ, 13},
        {"C\0:\0\0"s, L"", REG_SZ, 13},
        {"C\0\0\0\0\0"s, L"", REG_MULTI_SZ, 13},
        {"\1\0\0\0"s, L"", REG_DWORD, 13},
    };
    CString value;
    const LogCapture log;
    for (const auto& c : cases) {
        list.SetData(L"RrValue", c.type, c.bytes.data(), c.bytes.size());
        value = L"before";
        EXPECT_EQ(CProfilePathHelper::GetRegistryValue(L"RrValue", value), c.status) << c.bytes;
        EXPECT_EQ(value, c.expected);
    }
    list.SetText(L"RrValue", L"C:\\old");
    {
        const ImportPatch<decltype(&QueryThenGrow)> patch(GetModuleHandleW(nullptr), "RegQueryValueExW", QueryThenGrow);
        EXPECT_EQ(CProfilePathHelper::GetRegistryValue(L"RrValue", value), 0);
        EXPECT_EQ(value, L"C:\\longer");
    }
    list.Remove(L"RrValue");
    EXPECT_EQ(CProfilePathHelper::GetRegistryValue(L"RrValue", value), 2);
    EXPECT_EQ(CProfilePathHelper::GetRegistryValue(L"Public", value), 0);
    for (const wchar_t* line : {L"QueryStringValue returned 13 for ", L"QueryValue returned 2 for "})
        EXPECT_TRUE(log.Contains(LogLevel::Informational, line + kProfileList + L"\\RrValue"));
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
        CString path = L"\\\\srv\\p\\ann.V2";
        CProfilePathHelper::ApplyProfilePathExtension(path);
        EXPECT_EQ(path, L"\\\\srv\\p\\ann.V3");
        EXPECT_EQ(CProfilePathHelper::BuildProfilePath(L"\\\\srv\\p", L"ann"), path);
        EXPECT_EQ(CProfilePathHelper::GetNetlogonDefaultUserPath(path), L"\\\\srv\\NETLOGON\\Default User.V3");
    });
}

TEST(PathVariables, AreExpandedOnceAndWhatIsNotSetStays) {
    const CString big(L'x', 30000);
    const std::pair<const wchar_t*, const wchar_t*> variables[] = {
        {L"PvSelf", L"%PvSelf%\\a"}, {L"PvOther", L"%PvSelf%"}, {L"PvLong", big}, {L"PvValue", L"ours"}};
    for (const auto& [name, value] : variables) _wputenv_s(name, value);
    EXPECT_EQ(ExpandPath(L"%PvSelf%\\b"), L"%PvSelf%\\a\\b") << "a cycle ends at once";
    EXPECT_EQ(ExpandPath(L"%PVOTHER%\\%PvNotSet%\\%"), L"%PvSelf%\\%PvNotSet%\\%");
    EXPECT_EQ(ExpandPath(L"%PvLong%."), big + L".");
    EXPECT_EQ(ExpandPath(L"%PvLong%%PvLong%"), L"%PvLong%%PvLong%") << "too long for the system, which would cut it";
    EXPECT_EQ(ExpandPath(L"%OS%" + CString(L'x', 40000)), L"%OS%" + CString(L'x', 40000));
    EXPECT_EQ(ExpandPath(L"%SYSTEMroot%"), ExpandPath(L"%SystemRoot%")) << "off a boot image, any spelling";
    PipeServer companion;
    companion.Answer(Utf16(L"theirs"));
    CString value;
    for (const bool isOn : {true, false}) {
        NamedPipeClient::pipeChannelEnabled = isOn;
        EXPECT_TRUE(GetEnvironmentValue(L"PvValue", value));
        EXPECT_EQ(value, isOn ? L"theirs" : L"ours");
    }
    EXPECT_TRUE(GetEnvironmentValue(L"PvNotSet", value));
    EXPECT_EQ(value, L"");
    for (const auto& [name, unused] : variables) _wputenv_s(name, L"");
}

// An installed system of 64 bits. Where the 32-bit view has the key as well, it must not be read.
TEST(OnAPreinstallationBoot, ProfilesAndFoldersAreTheInstalledSystemsAndKeptOnceTheyAreKnown) {
    EXPECT_IN_FRESH_PROCESS([] {
        const ScopedPreinstallation machine;
        const std::wstring list = kVersionKey + L"\\ProfileList";
        const std::wstring current = L"Microsoft\\Windows\\CurrentVersion";
        const std::wstring folders = current + L"\\Explorer\\Shell Folders";
        HiveBuilder software;
        software.SetText(kVersionKey, L"SystemRoot", L"Q:\\Target");
        software.SetText(list, L"ProfilesDirectory", L"Q:\\Users");
        software.SetText(list + L"\\" + kSid, L"ProfileImagePath", L"%SystemDrive%\\Users\\ann");
        software.SetText(list + L"\\" + kSid, L"CentralProfile", L"\\\\srv\\%SystemRoot%");
        software.SetText(current, L"ProgramFilesDir (x86)", L"Q:\\P32");
        software.SetText(current, L"ProgramW6432Dir", L"Q:\\P64");
        software.SetText(folders, L"Common Desktop", L"Q:\\Desktop");
        software.SetText(L"Wow6432Node\\" + list, L"ProfilesDirectory", L"Q:\\32");
        software.SetText(L"Wow6432Node\\" + current, L"ProgramFilesDir (x86)", L"Q:\\not this");
        software.SetNumber(L"Wow6432Node\\" + kPolicies, L"LocalProfile", 1);
        software.SetText(L"Wow6432Node\\" + kConfigured + L"S-1-5-21-8", L"Roaming", L"\\\\srv\\only 32");
        HiveBuilder system;
        system.SetNumber(L"Select", L"Current", 2);
        system.SetText(L"ControlSet002\\Services\\ProfSvc\\Parameters", L"UseProfilePathExtensionVersion", L"text");
        HiveBuilder defaultUser;
        defaultUser.SetText(L"Software\\" + folders, L"Cache", L"%USERPROFILE%\\Default Cache");
        // The hives are copied to a drive that no rule for drive C rewrites, as a boot image does.
        const std::filesystem::path copies = L"E:\\Profiles";
        const std::filesystem::path users = L"D:\\Users";
        std::filesystem::create_directories(copies);
        std::filesystem::create_directories(users / L"Default");
        SetEnvironmentVariableW(L"TMP", copies.c_str());
        machine.Install(L'D', L"SOFTWARE", software);
        machine.Install(L'D', L"SYSTEM", system);
        defaultUser.Save(users / L"Default\\NTUSER.DAT");
        const LogCapture log;
        // The very first question, which has the hives mounted before it asks their bitness.
        EXPECT_EQ(Folders::GetProgramFilesPath(), L"Q:\\P32");
        const CString defaultProfile = CProfilePathHelper::GetDefaultUserProfilePath();
        EXPECT_EQ(defaultProfile, L"Q:\\Users\\Default");
        EXPECT_TRUE(
            log.Contains(LogLevel::Informational, L"Failed to read default user profile path, using default default"));
        EXPECT_TRUE(log.Contains(LogLevel::Verbose, L"KEY_WOW64_64KEY added to Key in PE"));
        EXPECT_EQ(UsedPath(), L"\\\\srv\\Q:\\Target");
        EXPECT_EQ(LocalPath(), L"Q:\\Users\\ann");
        EXPECT_EQ(CProfilePathHelper::GetUserProfilePath(L"S-1-5-21-8", L"DOMAIN\\bob"), L"\\\\srv\\only 32");
        EXPECT_EQ(CProfilePathHelper::GetUserProfilePath(L"S-1-5-21-9", L"DOMAIN\\bob"), L"Q:\\Users\\bob");
        EXPECT_EQ(StatusThrownBy([] { CProfilePathHelper::GetProfilePathExtension(); }), 0x70Cu)
            << "the setting of the installed system's control set is read";
        EXPECT_EQ(ExpandPath(L"%SYSTEMDRIVE%\\x"), L"Q:\\x");
        EXPECT_EQ(ExpandPath(L"%SystemDrive%%OS%%SYSTEMroot%"), L"Q:Windows_NTC:\\windows")
            << "what is left, of the boot";
        EXPECT_EQ(Folders::GetProgramFiles64Path(), L"Q:\\P64");
        EXPECT_EQ(Folders::GetSystemDirectoryPath(), L"Q:\\Target\\SysWOW64");
        EXPECT_EQ(Folders::GetSysnativePath(), L"Q:\\Target\\Sysnative");
        EXPECT_EQ(Folders::GetSystemDrive(), L"Q:\\");
        EXPECT_EQ(Folders::GetAllUsersPath(), L"Q:\\");

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
        Folders ann(kSid, L"", false);
        EXPECT_EQ(ann.GetCache(), L"Q:\\Users\\ann\\Default Cache") << "a roaming user without Local AppData";
        EXPECT_EQ(ann.GetFavorites(), L"") << "the boot image's default user is not asked";
        std::error_code ignored;
        for (const auto& folder : {copies, users}) std::filesystem::remove_all(folder, ignored);
    });
}

TEST(OnAPreinstallationBoot, ATextThatCannotBeExpandedIsNotKept) {
    EXPECT_IN_FRESH_PROCESS([] {
        const ScopedPreinstallation machine;
        HiveBuilder software;
        software.SetNumber(kVersionKey, L"SystemRoot", 1);
        software.SetText(kVersionKey + L"\\ProfileList", L"Default", L"%SystemRoot%\\x", REG_EXPAND_SZ);
        machine.Mount(L"OS_SOFTWARE", machine.Install(L'D', L"SOFTWARE", software));
        for (int again = 0; again < 2; ++again)
            EXPECT_EQ(StatusThrownBy([] { CProfilePathHelper::GetDefaultUserProfilePath(); }), 0x70Cu);
    });
}
