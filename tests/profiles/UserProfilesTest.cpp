// Profile paths and shell folders over real keys: of a listed user, local and roaming, of one without a hive, of one
// who is not listed, and on a preinstallation boot.
#include <gtest/gtest.h>

#include "files/PathVariables.h"
#include "profiles/ProfilePathHelper.h"
#include "profiles/ShellFolderPathHelper.h"
#include "registry/RegistryHelper.h"
#include "registry/Thrown.h"
#include "support/FakeVersion.h"
#include "support/FreshProcess.h"
#include "support/LogCapture.h"
#include "support/ScopedPreinstallation.h"
#include "transports/EnvironmentValue.h"
#include "transports/NamedPipeClient.h"
#include "transports/PipeServer.h"

namespace {

using Profiles = CProfilePathHelper;
using Folders = CShellFolderPathHelper;
using namespace std::string_literals;

const std::wstring kSid = L"S-1-5-21-1-2-3-1001";
const std::wstring kVersionKey = L"Microsoft\\Windows NT\\CurrentVersion";
const std::wstring kProfileList = L"SOFTWARE\\" + kVersionKey + L"\\ProfileList";
const std::wstring kExplorer = L"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
const std::wstring kPolicies = L"Policies\\Microsoft\\Windows\\System";
const std::wstring kConfigured = L"Brevant Corporation\\Zarvex7\\RoamingProfilePaths\\";
const std::wstring kContacts = L"{56784854-C6CB-462B-8169-88E350ACB882}";
const std::wstring kLinks = L"{BFB9D5E0-C6A9-404C-B2B2-AE6DB6AF4968}";
const std::wstring kSearches = L"{7D1D3A04-DEBB-4115-95CF-2F29DA2920DA}";

CString UsedPath(LPCWSTR userName = L"") {
    return Profiles::GetUserProfilePath(kSid.c_str(), userName);
}

CString LocalPath() {
    return Profiles::GetLocalProfilePath(kSid.c_str());
}

Folders Read(bool verbose = false) {
    return {kSid.c_str(), L"DOMAIN\\ann", verbose};
}

// The values that are set, in order, as "name=text|".
template <class Work>
std::wstring WrittenBy(Work work) {
    std::wstring writes;
    const SeenCall<RegSetValueExW> setting(LoadedModule(L"RegistryRulesFramework.dll"), "RegSetValueExW",
                                           [&](HKEY, LPCWSTR name, DWORD, DWORD type, const BYTE* data, DWORD bytes) {
                                               const auto text = reinterpret_cast<const wchar_t*>(data);
                                               EXPECT_EQ(std::pair(type, size_t{bytes}),
                                                         std::pair(DWORD{REG_SZ}, (wcslen(text) + 1) * sizeof(*text)));
                                               writes += name + L"="s + text + L"|";
                                           });
    work();
    return writes;
}

// The values are set in both keys of the user's Explorer, which were not there before.
template <class Work>
void ExpectWrittenTwice(const std::wstring& sid, Work work, const std::vector<std::wstring>& values) {
    const ScopedRegistryKey hive(HKEY_USERS, sid);
    std::wstring expected;
    for (const std::wstring& value : values) expected += value + L"|";
    EXPECT_EQ(WrittenBy(work), expected + expected);
    for (const wchar_t* name : {L"User Shell Folders", L"Shell Folders"}) {
        DWORD count = 0, longest = 0;
        CRegistryHelper(HKEY_USERS, (sid + kExplorer + name).c_str(), KEY_READ).GetValueInfo(count, longest, longest);
        EXPECT_EQ(count, values.size());
    }
}

}  // namespace

TEST(UserProfiles, AListedUserIsLocalUntilThereIsACentralCopyAndNoPolicyAgainstIt) {
    ScopedRegistryKey profile(HKEY_LOCAL_MACHINE, kProfileList + L"\\" + kSid);
    EXPECT_EQ(UsedPath(L"DOMAIN\\ann") + LocalPath(), L"") << "a listed user without paths has none";
    profile.SetText(L"ProfileImagePath", L"%SystemDrive%\\p\\ann", REG_EXPAND_SZ);
    profile.SetText(L"CentralProfile", L"");
    EXPECT_EQ(UsedPath(), L"C:\\p\\ann");

    ScopedRegistryKey userFolders(HKEY_USERS, kSid + kExplorer + L"User Shell Folders");
    ScopedRegistryKey folders(HKEY_USERS, kSid + kExplorer + L"Shell Folders");
    for (const wchar_t* name : {L"Desktop", L"Local AppData"})
        userFolders.SetText(name, L"%USERPROFILE%\\"s + name, REG_EXPAND_SZ);
    userFolders.SetText(L"Cache", L"%USERPROFILE%\\Local AppData\\Cache", REG_EXPAND_SZ);
    folders.SetText(L"Desktop", L"C:\\not this");
    folders.SetText(L"Programs", L"C:\\p\\ann\\Programs");
    const LogCapture log;
    Folders ann = Read(true);
    EXPECT_EQ(ann.GetDesktop(), L"C:\\p\\ann\\Desktop");
    EXPECT_EQ(ann.GetPrograms(), L"C:\\p\\ann\\Programs") << "from the second key";
    EXPECT_EQ(ann.GetPersonal(), L"") << "in neither key of a user who has a hive";
    EXPECT_TRUE(log.Contains(LogLevel::Trace, L"_isProfileRoaming:  false"));
    EXPECT_TRUE(log.Contains(LogLevel::Verbose,
                             L"Read the shell folder path '%USERPROFILE%\\Desktop' from the value 'Desktop' under the "
                             L"key '" +
                                 userFolders.Path() + L"'"));
    // What is empty is asked for again, what is known is not. Nothing stops a text that is cut or of another type.
    userFolders.SetText(L"Personal", L"%USERPROFILE%\\%USERPROFILE");
    userFolders.SetData(L"", L"Desktop", REG_EXPAND_SZ, "D\0:\0\\", 5);
    CStringList list;
    for (int again = 0; again < 2; ++again) ann.GetFolderList(list);
    ASSERT_EQ(list.GetCount(), 11);
    EXPECT_EQ(list.GetAt(list.FindIndex(2)), L"C:\\p\\ann\\Desktop");
    EXPECT_EQ(list.GetAt(list.FindIndex(3)), L"C:\\p\\ann\\%USERPROFILE");
    EXPECT_EQ(ann.GetShellFolderPath(L"Desktop"), L"D:\\");

    profile.SetText(L"CentralProfile", L"\\\\srv\\%OS%");
    EXPECT_EQ(UsedPath(), L"\\\\srv\\Windows_NT") << "no policy key; texts of any type are expanded";
    ScopedRegistryKey policies(HKEY_LOCAL_MACHINE, L"SOFTWARE\\" + kPolicies);
    EXPECT_EQ(UsedPath(), L"\\\\srv\\Windows_NT") << "no policy value";
    policies.SetNumber(L"LocalProfile", 1);
    EXPECT_EQ(UsedPath(), L"C:\\p\\ann");
    policies.SetNumber(L"LocalProfile", 0);
    EXPECT_EQ(UsedPath() + LocalPath(), L"\\\\srv\\Windows_NTC:\\p\\ann");
    userFolders.SetText(L"Desktop", L"%USERPROFILE%\\Desktop");
    ann = Read();
    EXPECT_EQ(ann.GetDesktop(), L"\\\\srv\\Windows_NT\\Desktop");
    EXPECT_EQ(ann.GetPrograms(), L"\\\\srv\\Windows_NT\\Programs");
    EXPECT_EQ(ann.GetCache(), L"C:\\p\\ann\\Local AppData\\Cache");
    EXPECT_EQ(ann.GetShellFolderPath(L"LOCAL APPDATA"), L"C:\\p\\ann\\Local AppData") << "a name in any case";
    EXPECT_TRUE(log.Contains(LogLevel::Trace, L"_isProfileRoaming:  true"));
    profile.SetText(L"CentralProfile", L"c:\\P\\ANN");
    EXPECT_EQ(Read().GetDesktop(), L"C:\\p\\ann\\Desktop") << "the same folder in other letters is no roaming";
    profile.SetText(L"ProfileImagePath", L"");
    EXPECT_EQ(Read().GetDesktop(), L"c:\\P\\ANN\\Desktop") << "with the central copy alone, neither";

    // A folder that is not known is not written, nor what is derived from it.
    folders.Remove(L"Programs");
    userFolders.Remove(L"Personal");
    const Folders noPrograms = Read();
    const ScopedRegistryKey other(HKEY_USERS, kSid + L"\\Other");
    EXPECT_EQ(WrittenBy([&] { noPrograms.WriteShellFolderValuesToRegistry(other.Path().c_str()); }),
              L"Desktop=c:\\P\\ANN\\Desktop|");
    EXPECT_TRUE(log.Contains(LogLevel::Verbose, L"Value Programs is empty"));
    const CString impossible = CString(L'x', 300);
    EXPECT_NE(StatusThrownBy([&] { noPrograms.WriteShellFolderValuesToRegistry(impossible); }), 0u);
    EXPECT_NE(StatusThrownBy([&] { Folders::WriteVistaAndLaterShellFolders(impossible, L"C:"); }), 0u);

    userFolders.SetNumber(L"Desktop", 5);
    EXPECT_EQ(StatusThrownBy([] { Read(); }), 0x70Cu);
    policies.SetText(L"LocalProfile", L"1");
    EXPECT_EQ(StatusThrownBy([] { UsedPath(); }), 0x70Cu);
    wchar_t current[MAX_PATH] = {};
    GetEnvironmentVariableW(L"USERPROFILE", current, MAX_PATH);
    EXPECT_EQ(Profiles::GetCurrentProfilePath().CompareNoCase(current), 0);
}

TEST(UserProfiles, AUserWhoIsNotListedHasConfiguredPathsOrAGuess) {
    EXPECT_EQ(StatusThrownBy([] { LocalPath(); }), 2u);
    EXPECT_EQ(StatusThrownBy([] { Read(); }), 2u);
    EXPECT_EQ(UsedPath(), L"");
    EXPECT_EQ(UsedPath(L"DOMAIN\\ann"), L"C:\\users\\ann");
    EXPECT_EQ(UsedPath(L"ann"), L"C:\\users\\") << "without a domain there is no name";
    ScopedRegistryKey configured(HKEY_LOCAL_MACHINE, L"Software\\" + kConfigured + kSid);
    EXPECT_EQ(UsedPath(L"DOMAIN\\ann") + LocalPath(), L"");
    configured.SetText(L"Roaming", L"\\\\srv\\%OS%");
    configured.SetText(L"Local", L"D:\\%OS%", REG_EXPAND_SZ);
    EXPECT_EQ(UsedPath(L"DOMAIN\\ann") + LocalPath(), L"\\\\srv\\%OS%D:\\%OS%") << "they are meant as they stand";
}

TEST(UserProfiles, AUserWithoutAHiveHasTheDefaultUsersFoldersWhichAreWrittenAsKnown) {
    ScopedRegistryKey profile(HKEY_LOCAL_MACHINE, kProfileList + L"\\" + kSid);
    profile.SetText(L"ProfileImagePath", L"C:\\Users\\bob");
    Folders bob = Read();
    EXPECT_EQ(bob.GetRecent(), L"C:\\Users\\bob\\AppData\\Roaming\\Microsoft\\Windows\\Recent");
    bob.UpdatePathIfEmpty(L"my video", L"D:\\Video");  // not among the default user's
    bob.UpdatePathIfEmpty(L"desktop", L"D:\\not empty");
    const LogCapture log;
    const std::wstring home = L"=C:\\Users\\bob\\";
    const std::wstring menu = home + L"AppData\\Roaming\\Microsoft\\Windows\\Start Menu";
    ExpectWrittenTwice(
        kSid, [&] { bob.WriteRedirectedFolderValues(); },
        {L"AppData" + home + L"AppData\\Roaming", L"Desktop" + home + L"Desktop", L"My Pictures" + home + L"Pictures",
         L"Personal" + home + L"Documents", L"Programs" + menu + L"\\Programs", L"Start Menu" + menu,
         L"Startup" + menu + L"\\Programs\\StartUp", kContacts + home + L"Contacts",
         L"Administrative Tools" + menu + L"\\Programs\\Administrative Tools", kSearches + home + L"Searches",
         kLinks + home + L"Links", L"Favorites" + home + L"Favorites", L"My Music" + home + L"Music",
         L"My Video=D:\\Video"});
    EXPECT_TRUE(log.Contains(LogLevel::Verbose, L"Set value My Video to D:\\Video"));
    EXPECT_FALSE(log.Contains(LogLevel::Verbose, L"Read the shell folder path"));
    // The classic set, below a base.
    ExpectWrittenTwice(
        L"S-1-5-21-1-2-3-1003", [] { Folders::WriteVistaAndLaterShellFoldersAt(L"S-1-5-21-1-2-3-1003", L"D:"); },
        {kContacts + L"=D:\\Contacts", L"Administrative Tools=D:\\Start Menu\\Programs\\Administrative Tools",
         kSearches + L"=D:\\Searches", kLinks + L"=D:\\Links", L"AppData=D:\\Application Data", L"Desktop=D:\\Desktop",
         L"Favorites=D:\\Favorites", L"My Music=D:\\My Documents\\My Music",
         L"My Pictures=D:\\My Documents\\My Pictures", L"My Video=D:\\My Documents\\My Video",
         L"Personal=D:\\My Documents", L"Programs=D:\\Start Menu\\Programs", L"Start Menu=D:\\Start Menu",
         L"Startup=D:\\Start Menu\\Programs\\Startup"});
}

TEST(UserProfiles, AValueOfTheListThatIsNoTextGivesAStatus) {
    ScopedRegistryKey list(HKEY_LOCAL_MACHINE, kProfileList);
    const std::tuple<std::string, CString, DWORD, LONG> cases[] = {
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
    for (const auto& [bytes, expected, type, status] : cases) {
        list.SetData(L"", L"RrValue", type, bytes.data(), bytes.size());
        value = L"before";
        EXPECT_EQ(Profiles::GetRegistryValue(L"RrValue", value), status) << bytes;
        EXPECT_EQ(value, expected);
    }
    list.SetText(L"RrValue", L"C:\\old");
    {
        // It becomes longer, but not twice as long, once its size has been asked.
        const SeenCall<RegQueryValueExW> query(
            GetModuleHandleW(nullptr), "RegQueryValueExW", [](auto...) {},
            [&](auto...) { RegSetKeyValueW(list.Key(), L"", L"RrValue", REG_SZ, L"C:\\longer", 20); });
        EXPECT_EQ(Profiles::GetRegistryValue(L"RrValue", value), 0);
        EXPECT_EQ(value, L"C:\\longer");
    }
    list.Remove(L"RrValue");
    EXPECT_EQ(Profiles::GetRegistryValue(L"RrValue", value), 2);
    EXPECT_EQ(Profiles::GetRegistryValue(L"Public", value), 0);
    for (const wchar_t* line : {L"QueryStringValue returned 13 for ", L"QueryValue returned 2 for "})
        EXPECT_TRUE(log.Contains(LogLevel::Informational, line + kProfileList + L"\\RrValue"));
    EXPECT_TRUE(log.Contains(LogLevel::Trace,
                             L"Registry value for 80000002\\" + kProfileList + L"\\Public is C:\\users\\Public"));
}

TEST(UserProfiles, OnWindows8TheServiceHasASettingForTheSuffix) {
    EXPECT_IN_FRESH_PROCESS([] {
        const FakeVersion windows8(6, 2);
        EXPECT_EQ(Profiles::GetProfilePathExtension(), L".V2");
        ScopedRegistryKey service(HKEY_LOCAL_MACHINE, L"System\\CurrentControlset\\Services\\ProfSvc\\Parameters");
        EXPECT_EQ(Profiles::GetProfilePathExtension(), L".V2");
        service.SetNumber(L"UseProfilePathExtensionVersion", 1);
        CString path = L"\\\\srv\\p\\ann.V2";
        Profiles::ApplyProfilePathExtension(path);
        EXPECT_EQ(path, L"\\\\srv\\p\\ann.V3");
        EXPECT_EQ(Profiles::BuildProfilePath(L"\\\\srv\\p", L"ann"), path);
        EXPECT_EQ(Profiles::GetNetlogonDefaultUserPath(path), L"\\\\srv\\NETLOGON\\Default User.V3");
    });
}

TEST(OnARunningSystem, FoldersAreItsOwnAndVariablesAreExpandedOnce) {
    const CString big(L'x', 30000);
    const std::pair<const wchar_t*, const wchar_t*> variables[] = {
        {L"PvSelf", L"%PvSelf%\\a"}, {L"PvLong", big}, {L"PvValue", L"ours"}};
    for (const auto& [name, value] : variables) _wputenv_s(name, value);
    const std::pair<CString, CString> texts[] = {
        {Folders::GetSystemDirectoryPath(), L"C:\\windows\\System32"},
        {Folders::GetSysnativePath(), L""},
        {Folders::GetSystemDrive(), L"C:\\"},
        {Folders::GetCommonDesktop(), L"C:\\users\\Public\\Desktop"},
        {Folders::GetCommonTemplates(), L"C:\\ProgramData\\Microsoft\\Windows\\Templates"},
        {Folders::GetCommonAppData(), L"C:\\ProgramData"},
        {Folders::GetAllUsersPath(), L"C:\\users\\Public"},
        {Folders::GetProgramFilesPath(), L"C:\\Program Files"},
        {Folders::GetProgramFiles64Path(), L""},
        {ExpandPath(L"%PvSelf%\\b"), L"%PvSelf%\\a\\b"},  // a cycle ends at once
        {ExpandPath(L"%PVSELF%\\%PvNotSet%\\%"), L"%PvSelf%\\a\\%PvNotSet%\\%"},
        {ExpandPath(L"%PvLong%."), big + L"."},
        {ExpandPath(L"%PvLong%%PvLong%"), L"%PvLong%%PvLong%"},  // too long for the system, which would cut it
        {ExpandPath(L"%OS%" + CString(L'x', 40000)), L"%OS%" + CString(L'x', 40000)},
        {ExpandPath(L"%SYSTEMroot%"), L"C:\\windows"},  // off a boot image, any spelling
    };
    for (const auto& [found, expected] : texts) EXPECT_EQ(found, expected);
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
        HiveBuilder software, system, defaultUser;
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
        system.SetNumber(L"Select", L"Current", 2);
        system.SetText(L"ControlSet002\\Services\\ProfSvc\\Parameters", L"UseProfilePathExtensionVersion", L"text");
        defaultUser.SetText(L"Software\\" + folders, L"Cache", L"%USERPROFILE%\\Default Cache");
        // The hives are copied to a drive that no rule for drive C rewrites, as a boot image does.
        SetEnvironmentVariableW(L"TMP", machine.SystemFolder(L'E').c_str());
        machine.Install(L'D', L"SOFTWARE", software);
        machine.Install(L'D', L"SYSTEM", system);
        defaultUser.Save(L"D:\\Users\\Default\\NTUSER.DAT");
        const LogCapture log;
        // The very first question, which has the hives mounted before it asks their bitness.
        EXPECT_EQ(Folders::GetProgramFilesPath(), L"Q:\\P32");
        EXPECT_EQ(Profiles::GetDefaultUserProfilePath(), L"Q:\\Users\\Default");
        EXPECT_TRUE(
            log.Contains(LogLevel::Informational, L"Failed to read default user profile path, using default default"));
        EXPECT_TRUE(log.Contains(LogLevel::Verbose, L"KEY_WOW64_64KEY added to Key in PE"));
        EXPECT_EQ(UsedPath(), L"\\\\srv\\Q:\\Target");
        EXPECT_EQ(LocalPath(), L"Q:\\Users\\ann");
        EXPECT_EQ(Profiles::GetUserProfilePath(L"S-1-5-21-8", L"DOMAIN\\bob"), L"\\\\srv\\only 32");
        EXPECT_EQ(Profiles::GetUserProfilePath(L"S-1-5-21-9", L"DOMAIN\\bob"), L"Q:\\Users\\bob");
        EXPECT_EQ(StatusThrownBy([] { Profiles::GetProfilePathExtension(); }), 0x70Cu)
            << "the setting of the installed system's control set is read";
        EXPECT_EQ(ExpandPath(L"%SYSTEMDRIVE%\\x"), L"Q:\\x");
        EXPECT_EQ(ExpandPath(L"%SystemDrive%%OS%%SYSTEMroot%"), L"Q:Windows_NTC:\\windows")
            << "what is left, of the boot";
        EXPECT_EQ(Folders::GetProgramFiles64Path(), L"Q:\\P64");
        EXPECT_EQ(Folders::GetSystemDirectoryPath(), L"Q:\\Target\\SysWOW64");
        EXPECT_EQ(Folders::GetSysnativePath(), L"Q:\\Target\\Sysnative");
        EXPECT_EQ(Folders::GetAllUsersPath(), L"Q:\\");

        EXPECT_EQ(Profiles::GetPublicProfilePath(), L"");
        EXPECT_TRUE(Profiles::IsUnderPublicProfile(L"x")) << "what is not known is everywhere";
        ScopedRegistryKey mounted(HKEY_LOCAL_MACHINE, L"OS_SOFTWARE\\" + list);
        mounted.SetText(L"Default", L"D:\\too late");
        mounted.SetText(L"Public", L"Q:\\Users\\Public\\");
        EXPECT_EQ(Profiles::GetDefaultUserProfilePath(), L"Q:\\Users\\Default");
        EXPECT_EQ(Profiles::GetPublicProfilePath(), L"Q:\\Users\\Public\\");
        mounted.SetText(L"Public", L"D:\\too late");
        EXPECT_TRUE(Profiles::IsUnderPublicProfile(L"q:\\USERS\\public"));
        EXPECT_FALSE(Profiles::IsUnderPublicProfile(L"q:\\USERS\\publication"));
        EXPECT_TRUE(Profiles::IsUnderProfilesDirectory(L"d:\\backup\\q:\\users\\x"));
        EXPECT_FALSE(Profiles::IsUnderProfilesDirectory(L"d:\\users\\x"));
        Folders ann(kSid.c_str(), L"", false);
        EXPECT_EQ(ann.GetCache(), L"Q:\\Users\\ann\\Default Cache") << "a roaming user without Local AppData";
        EXPECT_EQ(ann.GetFavorites(), L"") << "the boot image's default user is not asked";
    });
}

TEST(OnAPreinstallationBoot, ATextThatCannotBeExpandedIsNotKept) {
    EXPECT_IN_FRESH_PROCESS([] {
        const ScopedPreinstallation machine;
        HiveBuilder software;
        software.SetNumber(kVersionKey, L"SystemRoot", 1);
        software.SetText(kVersionKey + L"\\ProfileList", L"Default", L"%SystemRoot%\\x", REG_EXPAND_SZ);
        RegLoadKeyW(HKEY_LOCAL_MACHINE, L"OS_SOFTWARE", machine.Install(L'D', L"SOFTWARE", software).c_str());
        for (int again = 0; again < 2; ++again)
            EXPECT_EQ(StatusThrownBy([] { Profiles::GetDefaultUserProfilePath(); }), 0x70Cu);
    });
}
