// Links, another user and an installation on another drive.
#include <filesystem>
#include <gtest/gtest.h>

#include "carry/Apply.h"
#include "carry/Capture.h"
#include "support/FileBytes.h"
#include "support/ScopedPreinstallation.h"
#include "support/ScopedTestDir.h"

namespace {

std::string Utf16(const std::wstring& body) {
    const std::wstring text = L"\xFEFFWindows Registry Editor Version 5.00\r\n\r\n" + body;
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

class Target : public testing::Test {
protected:
    // What a rule captures, as the file's text behind its header.
    std::wstring Captured(const RegistryTarget& target, CarryKind kind, const std::wstring& key,
                          std::uint64_t notes = 0) {
        const CarryReport report = Capture(target, RuleSelection({{kind, key, L""}}, FoldKeyCase), m_file, {true, {}});
        EXPECT_EQ(report.noteCount, notes);
        const std::string bytes = BytesOf(m_file);
        const std::wstring text(reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / sizeof(wchar_t));
        return text.substr(std::min(text.find(L'['), text.size()));
    }
    void ApplyText(RegistryTarget& target, const std::wstring& body) {
        PutBytes(m_file, Utf16(body));
        Apply(target, m_file, {.undoFile = m_undo, .replaceFile = true});
    }

    const ScopedTestDir m_folder;
    const std::wstring m_file = m_folder.Path(L"file.reg");
    const std::wstring m_undo = m_folder.Path(L"undo.reg");
};

TEST_F(Target, LinksAreCarriedAndRemovedAsTheLinksTheyAre) {
    ScopedRegistryKey key(HKEY_LOCAL_MACHINE, REG_OPTION_NON_VOLATILE);
    key.SetText(L"target\\below", L"v", L"1");
    const std::wstring branch = L"HKEY_LOCAL_MACHINE\\" + key.Path();
    // To the key above it: whoever follows it comes to no end.
    const std::wstring goal = L"\\Registry\\Machine\\" + key.Path();
    HKEY link = nullptr;
    ASSERT_EQ(RegCreateKeyExW(key.Key(), L"link", 0, nullptr, REG_OPTION_CREATE_LINK, KEY_WRITE | KEY_CREATE_LINK,
                              nullptr, &link, nullptr),
              ERROR_SUCCESS);
    RegSetValueExW(link, L"SymbolicLinkValue", 0, REG_LINK, reinterpret_cast<const BYTE*>(goal.data()),
                   static_cast<DWORD>(goal.size() * sizeof(wchar_t)));
    RegCloseKey(link);
    const auto leadsToTarget = [&] {
        UniqueKey below;
        return OpenKey(key.Key(), L"link\\target\\below", KEY_READ, LinkMode::Follow, below) == ERROR_SUCCESS;
    };
    ASSERT_TRUE(leadsToTarget());

    RegistryTarget target;
    const std::wstring before = Captured(target, CarryKind::Branch, branch);
    EXPECT_TRUE(before.starts_with(L"[" + branch + L"]\r\n\r\n[" + branch +
                                   L"\\link]\r\n\"SymbolicLinkValue\"=hex(6):5c,00,52"));
    EXPECT_NE(before.find(L"\r\n\r\n[" + branch + L"\\target]"), before.npos);
    ApplyText(target, L"[-" + branch + L"\\link]\r\n");
    EXPECT_FALSE(leadsToTarget());
    UniqueKey below;
    EXPECT_EQ(OpenKey(key.Key(), L"target\\below", KEY_READ, LinkMode::Follow, below), ERROR_SUCCESS);
    below.reset();
    Apply(target, m_undo, {});
    EXPECT_TRUE(leadsToTarget());
    EXPECT_EQ(Captured(target, CarryKind::Branch, branch), before);
    RemoveBranch({HKEY_LOCAL_MACHINE, key.Path() + L"\\link"});
}

// Removes what it installs on drive D.
class Installation {
public:
    Installation() {
        HiveBuilder software;
        software.SetText(L"Example", L"v", L"of D");
        software.SetText(L"Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\S-1-5-21-7", L"ProfileImagePath",
                         L"%SystemDrive%\\Users\\ann", REG_EXPAND_SZ);
        HiveBuilder system;
        system.SetNumber(L"Select", L"Current", 3);
        system.SetText(L"ControlSet003\\Services", L"v", L"3");
        HiveBuilder user;
        user.SetText(L"Software\\Example", L"v", L"of ann");
        EnableHivePrivileges();
        std::filesystem::create_directories(L"D:\\Users\\ann");
        ScopedPreinstallation::Install(L'D', L"SOFTWARE", software);
        ScopedPreinstallation::Install(L'D', L"SYSTEM", system);
        user.Save(L"D:\\Users\\ann\\NTUSER.DAT");
    }
    ~Installation() {
        std::filesystem::remove_all(L"D:\\Windows");
        std::filesystem::remove_all(L"D:\\Users");
    }
    Installation(const Installation&) = delete;
    Installation& operator=(const Installation&) = delete;
};

std::vector<std::wstring> KeysOf(HKEY root) {
    std::vector<std::wstring> names;
    WCHAR name[256];
    for (DWORD length = 256; RegEnumKeyW(root, static_cast<DWORD>(names.size()), name, length) == ERROR_SUCCESS;) {
        names.emplace_back(name);
    }
    return names;
}

TEST_F(Target, AnInstallationAndItsUserAreReadChangedAndLeftWithNothingMounted) {
    const Installation installation;
    const auto machineBefore = KeysOf(HKEY_LOCAL_MACHINE);
    const auto usersBefore = KeysOf(HKEY_USERS);
    for (const wchar_t* who : {L"ann", L"S-1-5-21-7", L"D:\\Users\\ann"}) {
        RegistryTarget target({L'D', who});
        EXPECT_EQ(Captured(target, CarryKind::Branch, L"HKLM\\software\\Example"),
                  L"[HKEY_LOCAL_MACHINE\\software\\Example]\r\n\"v\"=\"of D\"\r\n\r\n");
        EXPECT_EQ(Captured(target, CarryKind::Branch, L"HKLM\\SYSTEM\\CurrentControlSet\\Services"),
                  L"[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services]\r\n\"v\"=\"3\"\r\n\r\n");
        EXPECT_EQ(Captured(target, CarryKind::Branch, L"HKCU\\Software\\Example"),
                  L"[HKEY_CURRENT_USER\\Software\\Example]\r\n\"v\"=\"of ann\"\r\n\r\n");
        Captured(target, CarryKind::Key, L"HKU\\S-1-5-21-7\\Software", 1);
    }
    {
        RegistryTarget target({L'D', L"ann"});
        ApplyText(target,
                  L"[HKEY_CURRENT_USER\\Software\\Example]\r\n\"v\"=-\r\n"
                  L"[HKEY_LOCAL_MACHINE\\SOFTWARE\\New]\r\n\"w\"=\"2\"\r\n");
    }
    {
        RegistryTarget target({L'D', L"ann"});
        EXPECT_EQ(Captured(target, CarryKind::Key, L"HKCU\\Software\\Example"),
                  L"[HKEY_CURRENT_USER\\Software\\Example]\r\n\r\n");
        EXPECT_EQ(Captured(target, CarryKind::Key, L"HKLM\\SOFTWARE\\New"),
                  L"[HKEY_LOCAL_MACHINE\\SOFTWARE\\New]\r\n\"w\"=\"2\"\r\n\r\n");
        Apply(target, m_undo, {});
    }
    {
        RegistryTarget target({L'D', L"ann"});
        EXPECT_EQ(Captured(target, CarryKind::Key, L"HKLM\\SOFTWARE\\New", 1), L"");
        PutBytes(m_file, Utf16(L"[HKEY_USERS\\S-1-5-21-7\\a]\r\n"));
        EXPECT_THROW(Apply(target, m_file, {}), CarryException);
    }
    EXPECT_THROW(RegistryTarget({L'D', L"bob"}), CarryException);
    EXPECT_THROW(RegistryTarget({L'E', L""}), CarryException);
    const HANDLE reader =
        CreateFileW(L"D:\\Users\\ann\\NTUSER.DAT", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_THROW(RegistryTarget({L'D', L"ann"}), CarryException);
    CloseHandle(reader);
    PutBytes(L"D:\\Users\\ann\\NTUSER.DAT", "no hive");
    EXPECT_THROW(RegistryTarget({0, L"D:\\Users\\ann"}), CarryException);
    EXPECT_EQ(KeysOf(HKEY_LOCAL_MACHINE), machineBefore);
    EXPECT_EQ(KeysOf(HKEY_USERS), usersBefore);
}

}  // namespace
