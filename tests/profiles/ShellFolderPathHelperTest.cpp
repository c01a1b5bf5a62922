// Shell folders over real hives: a local and a roaming user, one without a hive, a preinstallation boot. What is
// written is read back with the system's own reg program.
#include "profiles/ShellFolderPathHelper.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <set>

#include "profiles/ProfileKeys.h"
#include "registry/Thrown.h"
#include "support/FreshProcess.h"
#include "support/ImportPatch.h"
#include "support/LogCapture.h"
#include "support/Narrow.h"
#include "support/ScopedPreinstallation.h"
#include "support/ScopedRegistryPlace.h"

namespace {

const std::wstring kSid = L"S-1-5-21-1-2-3-1002";
const std::wstring kExplorer = L"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer";
const std::wstring kUserFolders = kExplorer + L"\\User Shell Folders";
const std::wstring kFolders = kExplorer + L"\\Shell Folders";
constexpr wchar_t kContacts[] = L"{56784854-C6CB-462B-8169-88E350ACB882}";
constexpr wchar_t kLinks[] = L"{BFB9D5E0-C6A9-404C-B2B2-AE6DB6AF4968}";
constexpr wchar_t kSearches[] = L"{7D1D3A04-DEBB-4115-95CF-2F29DA2920DA}";

class ShellFolderPaths : public testing::Test {
protected:
    ShellFolderPaths() { m_profile.SetText(L"ProfileImagePath", L"C:\\Users\\ann"); }

    static CShellFolderPathHelper Ann(bool verbose = false) {
        return CShellFolderPathHelper(kSid.c_str(), L"DOMAIN\\ann", verbose);
    }

    ScopedRegistryPlace m_profile{HKEY_LOCAL_MACHINE, kProfileList + L"\\" + kSid};
};

class WithHive : public ShellFolderPaths {
protected:
    WithHive() {
        m_userFolders.SetText(L"Desktop", L"%USERPROFILE%\\Desktop", REG_EXPAND_SZ);
        m_userFolders.SetText(L"Local AppData", L"%USERPROFILE%\\AppData\\Local", REG_EXPAND_SZ);
        m_userFolders.SetText(L"Cache", L"%USERPROFILE%\\AppData\\Local\\Cache", REG_EXPAND_SZ);
        m_folders.SetText(L"Desktop", L"C:\\not this");
        m_folders.SetText(L"Programs", L"C:\\Users\\ann\\Programs");
    }

    ScopedRegistryPlace m_userFolders{HKEY_USERS, kSid + kUserFolders};
    ScopedRegistryPlace m_folders{HKEY_USERS, kSid + kFolders};
};

using Values = std::vector<std::pair<std::wstring, std::wstring>>;

// The lines on values that "reg query" prints for a key under HKEY_USERS.
std::set<std::string> RegQuery(const std::wstring& path) {
    std::set<std::string> lines;
    std::FILE* output = _wpopen((L"reg query \"HKU\\" + path + L"\"").c_str(), L"rt");
    char line[2000];
    while (output != nullptr && std::fgets(line, sizeof(line), output) != nullptr) {
        const std::string text = line;
        if (text.starts_with("    ")) lines.insert(text.substr(4, text.find_last_not_of("\r\n") - 3));
    }
    if (output != nullptr) _pclose(output);
    return lines;
}

std::set<std::string> LinesOf(const Values& values) {
    std::set<std::string> lines;
    for (const auto& [name, text] : values) lines.insert(Narrow(name + L"    REG_SZ    " + text));
    return lines;
}

// Both keys of the user must hold exactly these values, and they were set in this order.
void ExpectWritten(const Values& expected, const std::vector<std::wstring>& order) {
    EXPECT_EQ(RegQuery(kSid + kUserFolders), LinesOf(expected));
    EXPECT_EQ(RegQuery(kSid + kFolders), LinesOf(expected));
    ASSERT_EQ(order.size(), 2 * expected.size());
    for (size_t i = 0; i < order.size(); ++i) EXPECT_EQ(order[i], expected[i % expected.size()].first) << i;
}

// The names of the values that are set, in order.
class WriteWatch {
public:
    WriteWatch() : m_patch(LoadedModule(L"framework.dll"), "RegSetValueExW", Set) { s_names.clear(); }
    static const std::vector<std::wstring>& Names() { return s_names; }

private:
    static LSTATUS WINAPI Set(HKEY key, LPCWSTR name, DWORD zero, DWORD type, const BYTE* data, DWORD bytes) {
        s_names.emplace_back(name);
        return RegSetValueExW(key, name, zero, type, data, bytes);
    }

    static inline std::vector<std::wstring> s_names;
    ImportPatch<decltype(&RegSetValueExW)> m_patch;
};

}  // namespace

TEST_F(WithHive, ALocalUsersFoldersLieInTheLocalProfile) {
    const LogCapture log;
    CShellFolderPathHelper ann = Ann(true);
    EXPECT_EQ(ann.GetDesktop(), L"C:\\Users\\ann\\Desktop");
    EXPECT_EQ(ann.GetPrograms(), L"C:\\Users\\ann\\Programs") << "from the second key";
    EXPECT_EQ(ann.GetLocalAppData(), L"C:\\Users\\ann\\AppData\\Local");
    EXPECT_EQ(ann.GetPersonal(), L"") << "in neither key of a user who has a hive";
    EXPECT_EQ(ann.GetShellFolderPathFromRegistry(L"User Shell Folders", L"Desktop"), L"%USERPROFILE%\\Desktop");
    EXPECT_TRUE(log.Contains(LogLevel::Trace, L"_isProfileRoaming:  false"));
    EXPECT_TRUE(log.Contains(LogLevel::Verbose,
                             L"Read the shell folder path '%USERPROFILE%\\Desktop' from the value "
                             L"'Desktop' under the key '" +
                                 kSid + kUserFolders + L"'"));

    m_userFolders.SetText(L"Personal", L"%USERPROFILE%\\Documents");
    m_userFolders.SetText(L"Desktop", L"D:\\moved");
    EXPECT_EQ(ann.GetPersonal(), L"C:\\Users\\ann\\Documents") << "an empty one is asked for again";
    EXPECT_EQ(ann.GetDesktop(), L"C:\\Users\\ann\\Desktop") << "a known one is not";
    EXPECT_EQ(ann.GetShellFolderPath(L"Desktop"), L"D:\\moved");

    CStringList list;
    ann.GetFolderList(list);
    ASSERT_EQ(list.GetCount(), 11);
    EXPECT_EQ(list.GetAt(list.FindIndex(2)), L"C:\\Users\\ann\\Desktop");
    EXPECT_EQ(list.GetAt(list.FindIndex(3)), L"C:\\Users\\ann\\Documents");
    ann.GetFolderList(list);
    EXPECT_EQ(list.GetCount(), 11);
}

TEST_F(WithHive, ARoamingUsersFoldersMoveExceptThoseInLocalAppData) {
    m_profile.SetText(L"CentralProfile", L"\\\\srv\\p\\ann");
    const LogCapture log;
    CShellFolderPathHelper ann = Ann();
    EXPECT_EQ(ann.GetDesktop(), L"\\\\srv\\p\\ann\\Desktop");
    EXPECT_EQ(ann.GetPrograms(), L"\\\\srv\\p\\ann\\Programs");
    EXPECT_EQ(ann.GetCache(), L"C:\\Users\\ann\\AppData\\Local\\Cache");
    EXPECT_EQ(ann.GetLocalAppData(), L"C:\\Users\\ann\\AppData\\Local");
    EXPECT_TRUE(log.Contains(LogLevel::Trace, L"_isProfileRoaming:  true"));
    EXPECT_FALSE(log.Contains(LogLevel::Verbose, L"Read the shell folder path"));
    EXPECT_EQ(ann.GetShellFolderPath(L"LOCAL APPDATA"), L"C:\\Users\\ann\\AppData\\Local") << "a name in any case";
    m_profile.SetText(L"CentralProfile", L"c:\\USERS\\ANN");
    EXPECT_EQ(Ann().GetDesktop(), L"C:\\Users\\ann\\Desktop") << "the same folder in other letters is no roaming";
    m_profile.SetText(L"ProfileImagePath", L"");
    EXPECT_EQ(Ann().GetDesktop(), L"c:\\USERS\\ANN\\Desktop") << "with the central copy alone, neither";
}

TEST_F(ShellFolderPaths, AUserWithoutAHiveHasTheDefaultUsersFolders) {
    CShellFolderPathHelper ann = Ann();
    EXPECT_EQ(ann.GetFavorites(), L"C:\\Users\\ann\\Favorites");
    EXPECT_EQ(ann.GetRecent(), L"C:\\Users\\ann\\AppData\\Roaming\\Microsoft\\Windows\\Recent");
    EXPECT_EQ(ann.GetSearches(), L"C:\\Users\\ann\\Searches");
    EXPECT_EQ(StatusThrownBy([] { CShellFolderPathHelper(L"S-1-5-21-9", L"DOMAIN\\ann", false); }),
              DWORD{ERROR_FILE_NOT_FOUND})
        << "nobody knows a local profile of this user";
}

TEST_F(WithHive, HostileFolderValues) {
    const BYTE halfText[] = {'D', 0, ':', 0, '\\'};
    m_userFolders.SetData(L"Desktop", REG_EXPAND_SZ, halfText, sizeof(halfText));
    m_userFolders.SetText(L"Cookies", L"%COOKIES%\\%USERPROFILE");
    CShellFolderPathHelper ann = Ann();
    EXPECT_EQ(ann.GetDesktop(), L"D:\\");
    EXPECT_EQ(ann.GetCookies(), L"%COOKIES%\\%USERPROFILE");
    m_userFolders.SetNumber(L"Desktop", 5);
    EXPECT_EQ(StatusThrownBy([] { Ann(); }), DWORD{ERROR_INVALID_DATATYPE});
    EXPECT_EQ(ann.GetDesktop(), L"D:\\");
}

TEST_F(ShellFolderPaths, WritesTheClassicSetBelowABase) {
    const ScopedRegistryPlace user(HKEY_USERS, kSid);
    const WriteWatch watch;
    CShellFolderPathHelper::WriteVistaAndLaterShellFoldersAt(kSid.c_str(), L"D:\\Base");
    ExpectWritten(
        {
            {kContacts, L"D:\\Base\\Contacts"},
            {L"Administrative Tools", L"D:\\Base\\Start Menu\\Programs\\Administrative Tools"},
            {kSearches, L"D:\\Base\\Searches"},
            {kLinks, L"D:\\Base\\Links"},
            {L"AppData", L"D:\\Base\\Application Data"},
            {L"Desktop", L"D:\\Base\\Desktop"},
            {L"Favorites", L"D:\\Base\\Favorites"},
            {L"My Music", L"D:\\Base\\My Documents\\My Music"},
            {L"My Pictures", L"D:\\Base\\My Documents\\My Pictures"},
            {L"My Video", L"D:\\Base\\My Documents\\My Video"},
            {L"Personal", L"D:\\Base\\My Documents"},
            {L"Programs", L"D:\\Base\\Start Menu\\Programs"},
            {L"Start Menu", L"D:\\Base\\Start Menu"},
            {L"Startup", L"D:\\Base\\Start Menu\\Programs\\Startup"},
        },
        watch.Names());
}

TEST_F(ShellFolderPaths, WritesARedirectedUsersKnownFolders) {
    CShellFolderPathHelper ann = Ann();
    const ScopedRegistryPlace user(HKEY_USERS, kSid);
    ann.UpdatePathIfEmpty(L"my video", L"D:\\Video");  // not among the default user's
    ann.UpdatePathIfEmpty(L"desktop", L"D:\\not empty");
    const LogCapture log;
    const WriteWatch watch;
    ann.WriteRedirectedFolderValues();
    const std::wstring profile = L"C:\\Users\\ann\\";
    const std::wstring menu = profile + L"AppData\\Roaming\\Microsoft\\Windows\\Start Menu";
    ExpectWritten(
        {
            {L"AppData", profile + L"AppData\\Roaming"},
            {L"Desktop", profile + L"Desktop"},
            {L"My Pictures", profile + L"Pictures"},
            {L"Personal", profile + L"Documents"},
            {L"Programs", menu + L"\\Programs"},
            {L"Start Menu", menu},
            {L"Startup", menu + L"\\Programs\\StartUp"},
            {kContacts, profile + L"Contacts"},
            {L"Administrative Tools", menu + L"\\Programs\\Administrative Tools"},
            {kSearches, profile + L"Searches"},
            {kLinks, profile + L"Links"},
            {L"Favorites", profile + L"Favorites"},
            {L"My Music", profile + L"Music"},
            {L"My Video", L"D:\\Video"},
        },
        watch.Names());
    EXPECT_TRUE(log.Contains(LogLevel::Verbose, L"Set value My Video to D:\\Video"));
}

TEST_F(WithHive, AFolderThatIsNotKnownIsNotWritten) {
    m_folders.Remove(L"Programs");
    const CShellFolderPathHelper ann = Ann();
    const LogCapture log;
    ann.WriteShellFolderValuesToRegistry((kSid + L"\\Other").c_str());
    EXPECT_EQ(RegQuery(kSid + L"\\Other"), LinesOf({{L"Desktop", L"C:\\Users\\ann\\Desktop"}}));
    EXPECT_TRUE(log.Contains(LogLevel::Verbose, L"Value Programs is empty"));
    EXPECT_FALSE(log.Contains(LogLevel::Verbose, L"Value Administrative Tools is empty"));
    RegDeleteKeyW(HKEY_USERS, (kSid + L"\\Other").c_str());
    const CString impossible = CString(L'x', 300);
    EXPECT_NE(StatusThrownBy([&] { ann.WriteShellFolderValuesToRegistry(impossible); }), 0u);
    EXPECT_NE(StatusThrownBy([&] { CShellFolderPathHelper::WriteVistaAndLaterShellFolders(impossible, L"C:"); }), 0u);
}

TEST(SystemFolders, OnARunningSystem) {
    EXPECT_EQ(CShellFolderPathHelper::GetSystemDirectoryPath(), L"C:\\windows\\System32");
    EXPECT_EQ(CShellFolderPathHelper::GetSysnativePath(), L"");
    EXPECT_EQ(CShellFolderPathHelper::GetSystemDrive(), L"C:\\");
    EXPECT_EQ(CShellFolderPathHelper::GetCommonDesktop(), L"C:\\users\\Public\\Desktop");
    EXPECT_EQ(CShellFolderPathHelper::GetCommonTemplates(), L"C:\\ProgramData\\Microsoft\\Windows\\Templates");
    EXPECT_EQ(CShellFolderPathHelper::GetCommonAppData(), L"C:\\ProgramData");
    EXPECT_EQ(CShellFolderPathHelper::GetAllUsersPath(), L"C:\\users\\Public");
    EXPECT_EQ(CShellFolderPathHelper::GetProgramFilesPath(), L"C:\\Program Files");
    EXPECT_EQ(CShellFolderPathHelper::GetProgramFiles64Path(), L"");
}

TEST(ShellFoldersOnAPreinstallationBoot, AreTheInstalledSystems) {
    EXPECT_IN_FRESH_PROCESS([] {
        const ScopedPreinstallation machine;
        HiveBuilder software;
        const std::wstring current = L"Microsoft\\Windows\\CurrentVersion";
        software.SetText(L"Microsoft\\Windows NT\\CurrentVersion", L"SystemRoot", L"Q:\\Target");
        software.SetText(L"Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\" + kSid, L"ProfileImagePath",
                         L"Q:\\ann");
        software.SetText(current, L"ProgramFilesDir (x86)", L"Q:\\P32");
        software.SetText(current, L"ProgramW6432Dir", L"Q:\\P64");
        software.SetText(current + L"\\Explorer\\Shell Folders", L"Common Desktop", L"Q:\\Desktop");
        software.SetText(L"Wow6432Node\\" + current, L"ProgramFilesDir (x86)", L"Q:\\not this");
        machine.Mount(L"OS_SOFTWARE", machine.Install(L'D', L"SOFTWARE", software));
        HiveBuilder defaultUser;
        defaultUser.SetText(kUserFolders.substr(1), L"Desktop", L"%USERPROFILE%\\Default Desktop");
        machine.Mount(L"OS_DEFAULT", machine.Install(L'D', L"DEFAULT", defaultUser), HKEY_USERS);

        EXPECT_EQ(CShellFolderPathHelper::GetProgramFiles64Path(), L"Q:\\P64");
        EXPECT_EQ(CShellFolderPathHelper::GetProgramFilesPath(), L"Q:\\P32");
        EXPECT_EQ(CShellFolderPathHelper::GetSystemDirectoryPath(), L"Q:\\Target\\SysWOW64");
        EXPECT_EQ(CShellFolderPathHelper::GetSysnativePath(), L"Q:\\Target\\Sysnative");
        EXPECT_EQ(CShellFolderPathHelper::GetSystemDrive(), L"Q:\\");
        EXPECT_EQ(CShellFolderPathHelper::GetAllUsersPath(), L"Q:\\");
        CShellFolderPathHelper ann(kSid.c_str(), L"", false);
        EXPECT_EQ(ann.GetDesktop(), L"Q:\\ann\\Default Desktop");
        EXPECT_EQ(ann.GetFavorites(), L"") << "the boot image's default user is not asked";
    });
}
