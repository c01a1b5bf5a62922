// Shell folders over real hives: of a local and a roaming user, and of one without a hive; and what is written.
#include "profiles/ShellFolderPathHelper.h"

#include <atlbase.h>
#include <gtest/gtest.h>
#include <string>

#include "registry/Thrown.h"
#include "support/ImportPatch.h"
#include "support/LogCapture.h"
#include "support/ScopedRegistryPlace.h"

namespace {

const std::wstring kSid = L"S-1-5-21-1-2-3-1002";
const std::wstring kProfiles = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\";
const std::wstring kExplorer = kSid + L"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
const std::wstring kContacts = L"{56784854-C6CB-462B-8169-88E350ACB882}";
const std::wstring kLinks = L"{BFB9D5E0-C6A9-404C-B2B2-AE6DB6AF4968}";
const std::wstring kSearches = L"{7D1D3A04-DEBB-4115-95CF-2F29DA2920DA}";

// Values that are set, in order: "key\name=text" with the key's last element.
using Writes = std::vector<std::wstring>;

class ShellFolderPaths : public testing::Test {
protected:
    ShellFolderPaths() { m_profile.SetText(L"ProfileImagePath", L"C:\\Users\\ann"); }

    void MakeHive() {
        m_userFolders.SetText(L"Desktop", L"%USERPROFILE%\\Desktop", REG_EXPAND_SZ);
        m_userFolders.SetText(L"Local AppData", L"%USERPROFILE%\\AppData\\Local", REG_EXPAND_SZ);
        m_userFolders.SetText(L"Cache", L"%USERPROFILE%\\AppData\\Local\\Cache", REG_EXPAND_SZ);
        m_folders.SetText(L"Desktop", L"C:\\not this");
        m_folders.SetText(L"Programs", L"C:\\Users\\ann\\Programs");
    }
    static CShellFolderPathHelper Ann(bool verbose = false) {
        return CShellFolderPathHelper(kSid.c_str(), L"DOMAIN\\ann", verbose);
    }
    template <class Work>
    static Writes WrittenBy(Work work) {
        static Writes s_writes;
        s_writes.clear();
        const ImportPatch<decltype(&RegSetValueExW)> patch(
            LoadedModule(L"framework.dll"), "RegSetValueExW",
            [](HKEY key, LPCWSTR name, DWORD zero, DWORD type, const BYTE* data, DWORD bytes) {
                const auto text = reinterpret_cast<const wchar_t*>(data);
                EXPECT_EQ(std::pair(type, size_t{bytes}), std::pair(DWORD{REG_SZ}, (wcslen(text) + 1) * sizeof(*text)));
                s_writes.push_back(name + std::wstring(L"=") + text);
                return RegSetValueExW(key, name, zero, type, data, bytes);
            });
        work();
        return s_writes;
    }
    // The values were set in both keys of Explorer, in this order.
    static void ExpectWrittenTwice(const Writes& written, const Writes& expected, const std::wstring& explorer) {
        Writes twice = expected;
        twice.insert(twice.end(), expected.begin(), expected.end());
        EXPECT_EQ(written, twice);
        for (const wchar_t* name : {L"User Shell Folders", L"Shell Folders"}) {
            CRegKey key;
            EXPECT_EQ(key.Open(HKEY_USERS, (explorer + name).c_str(), KEY_READ), 0);
            DWORD count = 0;
            RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &count, nullptr, nullptr,
                             nullptr, nullptr);
            EXPECT_EQ(count, expected.size());
        }
    }

    ScopedRegistryPlace m_profile{HKEY_LOCAL_MACHINE, kProfiles + kSid};
    ScopedRegistryPlace m_userFolders{HKEY_USERS, kExplorer + L"User Shell Folders"};
    ScopedRegistryPlace m_folders{HKEY_USERS, kExplorer + L"Shell Folders"};
};

}  // namespace

TEST_F(ShellFolderPaths, ALocalUsersLieInTheLocalProfile) {
    MakeHive();
    const LogCapture log;
    CShellFolderPathHelper ann = Ann(true);
    EXPECT_EQ(ann.GetDesktop(), L"C:\\Users\\ann\\Desktop");
    EXPECT_EQ(ann.GetPrograms(), L"C:\\Users\\ann\\Programs") << "from the second key";
    EXPECT_EQ(ann.GetLocalAppData(), L"C:\\Users\\ann\\AppData\\Local");
    EXPECT_EQ(ann.GetPersonal(), L"") << "in neither key of a user who has a hive";
    EXPECT_TRUE(log.Contains(LogLevel::Trace, L"_isProfileRoaming:  false"));
    EXPECT_TRUE(log.Contains(LogLevel::Verbose,
                             L"Read the shell folder path '%USERPROFILE%\\Desktop' from the value 'Desktop' under the "
                             L"key '" +
                                 m_userFolders.Path() + L"'"));
    // What is empty is asked for again, what is known is not. Nothing stops a text that is cut or of another type.
    m_userFolders.SetText(L"Personal", L"%USERPROFILE%\\%USERPROFILE");
    m_userFolders.SetData(L"Desktop", REG_EXPAND_SZ, "D\0:\0\\", 5);
    EXPECT_EQ(ann.GetPersonal(), L"C:\\Users\\ann\\%USERPROFILE");
    EXPECT_EQ(ann.GetDesktop(), L"C:\\Users\\ann\\Desktop");
    EXPECT_EQ(ann.GetShellFolderPath(L"Desktop"), L"D:\\");
    CStringList list;
    for (int again = 0; again < 2; ++again) ann.GetFolderList(list);
    ASSERT_EQ(list.GetCount(), 11);
    EXPECT_EQ(list.GetAt(list.FindIndex(2)), L"C:\\Users\\ann\\Desktop");
    EXPECT_EQ(list.GetAt(list.FindIndex(3)), L"C:\\Users\\ann\\%USERPROFILE");
    m_userFolders.SetNumber(L"Desktop", 5);
    EXPECT_EQ(StatusThrownBy([] { Ann(); }), 0x70Cu);
}

TEST_F(ShellFolderPaths, ARoamingUsersMoveExceptThoseInLocalAppData) {
    MakeHive();
    m_profile.SetText(L"CentralProfile", L"\\\\srv\\p\\ann");
    const LogCapture log;
    CShellFolderPathHelper ann = Ann();
    EXPECT_EQ(ann.GetDesktop(), L"\\\\srv\\p\\ann\\Desktop");
    EXPECT_EQ(ann.GetPrograms(), L"\\\\srv\\p\\ann\\Programs");
    EXPECT_EQ(ann.GetCache(), L"C:\\Users\\ann\\AppData\\Local\\Cache");
    EXPECT_EQ(ann.GetShellFolderPath(L"LOCAL APPDATA"), L"C:\\Users\\ann\\AppData\\Local") << "a name in any case";
    EXPECT_TRUE(log.Contains(LogLevel::Trace, L"_isProfileRoaming:  true"));
    EXPECT_FALSE(log.Contains(LogLevel::Verbose, L"Read the shell folder path"));
    m_profile.SetText(L"CentralProfile", L"c:\\USERS\\ANN");
    EXPECT_EQ(Ann().GetDesktop(), L"C:\\Users\\ann\\Desktop") << "the same folder in other letters is no roaming";
    m_profile.SetText(L"ProfileImagePath", L"");
    EXPECT_EQ(Ann().GetDesktop(), L"c:\\USERS\\ANN\\Desktop") << "with the central copy alone, neither";
    EXPECT_EQ(StatusThrownBy([] { CShellFolderPathHelper(L"S-1-5-21-9", L"DOMAIN\\ann", false); }), 2u);
    // A folder that is not known is not written, nor what is derived from it.
    m_folders.Remove(L"Programs");
    const CShellFolderPathHelper noPrograms = Ann();
    const ScopedRegistryPlace other(HKEY_USERS, kSid + L"\\Other");
    EXPECT_EQ(WrittenBy([&] { noPrograms.WriteShellFolderValuesToRegistry(other.Path().c_str()); }),
              Writes{L"Desktop=c:\\USERS\\ANN\\Desktop"});
    EXPECT_TRUE(log.Contains(LogLevel::Verbose, L"Value Programs is empty"));
    const CString impossible = CString(L'x', 300);
    EXPECT_NE(StatusThrownBy([&] { noPrograms.WriteShellFolderValuesToRegistry(impossible); }), 0u);
    EXPECT_NE(StatusThrownBy([&] { CShellFolderPathHelper::WriteVistaAndLaterShellFolders(impossible, L"C:"); }), 0u);
}

TEST_F(ShellFolderPaths, TheClassicSetIsWrittenBelowABase) {
    ExpectWrittenTwice(
        WrittenBy([] { CShellFolderPathHelper::WriteVistaAndLaterShellFoldersAt(kSid.c_str(), L"D:"); }),
        {kContacts + L"=D:\\Contacts", L"Administrative Tools=D:\\Start Menu\\Programs\\Administrative Tools",
         kSearches + L"=D:\\Searches", kLinks + L"=D:\\Links", L"AppData=D:\\Application Data", L"Desktop=D:\\Desktop",
         L"Favorites=D:\\Favorites", L"My Music=D:\\My Documents\\My Music",
         L"My Pictures=D:\\My Documents\\My Pictures", L"My Video=D:\\My Documents\\My Video",
         L"Personal=D:\\My Documents", L"Programs=D:\\Start Menu\\Programs", L"Start Menu=D:\\Start Menu",
         L"Startup=D:\\Start Menu\\Programs\\Startup"},
        kExplorer);
}

TEST_F(ShellFolderPaths, AUserWithoutAHiveHasTheDefaultUsersWhichAreWrittenAsKnown) {
    const std::wstring sid = L"S-1-5-21-1-2-3-1003";
    ScopedRegistryPlace profile(HKEY_LOCAL_MACHINE, kProfiles + sid);
    profile.SetText(L"ProfileImagePath", L"C:\\Users\\bob");
    CShellFolderPathHelper bob(sid.c_str(), L"", false);
    const ScopedRegistryPlace hive(HKEY_USERS, sid);
    EXPECT_EQ(bob.GetRecent(), L"C:\\Users\\bob\\AppData\\Roaming\\Microsoft\\Windows\\Recent");
    bob.UpdatePathIfEmpty(L"my video", L"D:\\Video");  // not among the default user's
    bob.UpdatePathIfEmpty(L"desktop", L"D:\\not empty");
    const LogCapture log;
    const std::wstring home = L"=C:\\Users\\bob\\";
    const std::wstring menu = home + L"AppData\\Roaming\\Microsoft\\Windows\\Start Menu";
    ExpectWrittenTwice(
        WrittenBy([&] { bob.WriteRedirectedFolderValues(); }),
        {L"AppData" + home + L"AppData\\Roaming", L"Desktop" + home + L"Desktop", L"My Pictures" + home + L"Pictures",
         L"Personal" + home + L"Documents", L"Programs" + menu + L"\\Programs", L"Start Menu" + menu,
         L"Startup" + menu + L"\\Programs\\StartUp", kContacts + home + L"Contacts",
         L"Administrative Tools" + menu + L"\\Programs\\Administrative Tools", kSearches + home + L"Searches",
         kLinks + home + L"Links", L"Favorites" + home + L"Favorites", L"My Music" + home + L"Music",
         L"My Video=D:\\Video"},
        sid + kExplorer.substr(kSid.size()));
    EXPECT_TRUE(log.Contains(LogLevel::Verbose, L"Set value My Video to D:\\Video"));
}

TEST(SystemFolders, OnARunningSystem) {
    using Folders = CShellFolderPathHelper;
    const std::pair<CString, LPCWSTR> folders[] = {
        {Folders::GetSystemDirectoryPath(), L"C:\\windows\\System32"},
        {Folders::GetSysnativePath(), L""},
        {Folders::GetSystemDrive(), L"C:\\"},
        {Folders::GetCommonDesktop(), L"C:\\users\\Public\\Desktop"},
        {Folders::GetCommonTemplates(), L"C:\\ProgramData\\Microsoft\\Windows\\Templates"},
        {Folders::GetCommonAppData(), L"C:\\ProgramData"},
        {Folders::GetAllUsersPath(), L"C:\\users\\Public"},
        {Folders::GetProgramFilesPath(), L"C:\\Program Files"},
        {Folders::GetProgramFiles64Path(), L""}};
    for (const auto& [found, expected] : folders) EXPECT_EQ(found, expected);
}
