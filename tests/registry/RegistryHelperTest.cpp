// Opening, making and deleting keys, for the current user and another, in both views, in a transaction; and what is
// left open afterwards.
#include "registry/RegistryHelper.h"

#include <objidl.h>

#include <functional>
#include <gtest/gtest.h>
#include <string>

#include "registry/RegistryTransaction.h"
#include "registry/Thrown.h"
#include "support/ResourceCounter.h"
#include "support/ScopedRegistryKey.h"

namespace {

using Helper = CRegistryHelper;
const HKEY kUser = HKEY_CURRENT_USER;
const HKEY kMachine = HKEY_LOCAL_MACHINE;

class RegistryHelper : public testing::Test {
protected:
    ~RegistryHelper() override { Helper::SetUserHiveOverride(L""); }

    CString Path(LPCWSTR below = L"") const { return CString(m_key.Path().c_str()) + below; }

    ScopedRegistryKey m_key;
};

// What was asked of the system.
std::wstring s_asked;

LSTATUS WINAPI OpenTransacted(HKEY, LPCWSTR path, DWORD, REGSAM access, PHKEY, HANDLE transaction, PVOID) {
    s_asked += std::wstring(L"open ") + path + L" " + std::to_wstring(access) + (transaction ? L" in it;" : L";");
    return 77;
}

LSTATUS WINAPI CreateTransacted(HKEY, LPCWSTR path, DWORD, LPWSTR keyClass, DWORD, REGSAM, const LPSECURITY_ATTRIBUTES,
                                PHKEY, LPDWORD, HANDLE transaction, PVOID) {
    s_asked += std::wstring(L"create ") + path + L" " + keyClass + (transaction ? L" in it;" : L";");
    return 77;
}

FARPROC WINAPI FindTransacted(HMODULE, LPCSTR name) {
    const bool opens = std::string_view(name) == "RegOpenKeyTransactedW";
    return reinterpret_cast<FARPROC>(opens ? reinterpret_cast<void*>(OpenTransacted)
                                           : reinterpret_cast<void*>(CreateTransacted));
}

}  // namespace

TEST_F(RegistryHelper, OnlyAWritingMaskCreatesAndAFailedReopenKeepsTheOldKey) {
    const auto open = [&](LPCWSTR below, REGSAM access) {
        return StatusThrownBy([&] { Helper(kUser, Path(below), access); });
    };
    EXPECT_EQ(open(L"\\a", KEY_READ), 2u);
    EXPECT_EQ(open(L"\\a", KEY_QUERY_VALUE | DELETE), 2u);
    EXPECT_EQ(open(L"\\a", KEY_CREATE_SUB_KEY), 0u);
    EXPECT_EQ(open(L"\\a\\b", KEY_SET_VALUE), 0u);
    EXPECT_EQ(open(L"\\a\\b", KEY_READ), 0u);
    m_key.SetText(L"a", L"v", L"here");
    Helper key;
    EXPECT_EQ(key.OpenRedirected(kUser, Path(L"\\a"), KEY_READ | KEY_WOW64_64KEY), 0);
    EXPECT_EQ(key.OpenRedirected(kUser, Path(L"\\no"), KEY_READ), 2);
    EXPECT_EQ(key.GetStringValue(L"v"), L"here");
    EXPECT_EQ(key.m_samWOW64, 0x100u);
    EXPECT_EQ(key.OpenRedirected(kUser, Path(), KEY_READ), 0);
    EXPECT_EQ(key.Open(key, L"a", KEY_READ | KEY_WOW64_32KEY), 0) << "the key may be its own parent";
    EXPECT_EQ(key.GetStringValue(L"v"), L"here");
    key.Close();
    EXPECT_EQ(std::pair(key.m_hKey, key.m_samWOW64), std::pair(HKEY{}, REGSAM{}));
}

TEST_F(RegistryHelper, AKeyMadeInOneViewIsReadBackThere) {
    const ScopedRegistryKey native(kMachine, L"Software\\RrViews");
    const ScopedRegistryKey emulated(kMachine, L"Software\\Wow6432Node\\RrViews");
    for (const auto& [view, path] : {std::pair(REGSAM{KEY_WOW64_64KEY}, L"Software\\RrViews\\64"),
                                     std::pair(REGSAM{KEY_WOW64_32KEY}, L"Software\\RrViews\\32")}) {
        Helper(kMachine, path, KEY_WRITE | view).SetStringValue(L"v", path);
        EXPECT_EQ(Helper(kMachine, path, KEY_READ | view).GetStringValue(L"v"), path);
        EXPECT_NE(Helper().OpenRedirected(kMachine, path, KEY_READ | (view ^ 0x300)), 0) << "in the other view";
    }
    EXPECT_EQ(Helper(native.Key(), L"64", KEY_READ).GetStringValue(L"v"), L"Software\\RrViews\\64");
    EXPECT_EQ(Helper(emulated.Key(), L"32", KEY_READ).GetStringValue(L"v"), L"Software\\RrViews\\32");
    // A 32-bit process gets the 64-bit view only by the mask.
    std::wstring made;  // mask and class
    const SeenCall<RegCreateKeyExW> creation(LoadedModule(L"RegistryRulesFramework.dll"), "RegCreateKeyExW",
                                             [&](HKEY, LPCWSTR, DWORD, LPWSTR keyClass, DWORD, REGSAM access, auto...) {
                                                 made += std::to_wstring(access) + (keyClass ? keyClass : L"") + L" ";
                                             });
    for (const bool view64 : {true, false, false})
        Helper::EnsureKeyAndChild(kUser, Path(view64 ? L"\\x\\64" : L"\\x\\32"), L"c", L"C", 0, view64);
    EXPECT_EQ(made, L"131334 4C 131078 4C 4C ") << "what is there is opened";
    EXPECT_TRUE(Helper::KeyExists(kUser, Path(L"\\x\\64\\c")) && Helper::KeyExists(kUser, Path(L"\\x\\32\\c")));
}

TEST_F(RegistryHelper, AnotherUserStandsForTheCurrentOne) {
    const CString path = L"Software\\RrTheirs";
    ScopedRegistryKey theirs(HKEY_USERS, L".DEFAULT\\Software\\RrTheirs");
    theirs.SetData(L"", L"v", REG_BINARY, "123", 3);
    EXPECT_FALSE(Helper::KeyExists(kUser, path));
    Helper::SetUserHiveOverride(L".DEFAULT");
    Helper(kUser, path + L"\\made", KEY_WRITE).SetStringValue(L"v", L"theirs");
    Helper::CreateChildKey(kUser, path + L"\\child", nullptr, 0);
    EXPECT_EQ(Helper(theirs.Key(), L"made", KEY_READ).GetStringValue(L"v"), L"theirs");
    EXPECT_EQ(Helper().OpenRedirected(theirs.Key(), L"child", KEY_READ), 0);
    EXPECT_EQ(StatusThrownBy([&] { Helper::DeleteChildKey(kUser, path, L"child"); }), 0u);
    EXPECT_FALSE(Helper::KeyExists(kUser, path + L"\\child"));
    EXPECT_TRUE(Helper::KeyExists(kMachine, L"SOFTWARE\\Microsoft")) << "other hives stay";
    EXPECT_EQ(Helper().Open(kUser, path, KEY_READ), 2) << "the plain operation rewrites nothing";
    IStream* stream = Helper::OpenStream(kUser, path, L"v", STGM_READ);
    ASSERT_NE(stream, nullptr);
    char read[8] = {};
    EXPECT_EQ(stream->Read(read, sizeof(read), nullptr), S_OK);
    stream->Release();
    EXPECT_STREQ(read, "123");
    HKEY hive = kUser;
    CString resolved = L"a\\b";
    for (int again = 0; again < 2; ++again) Helper::ResolveUserHive(hive, resolved);
    EXPECT_EQ(std::pair(hive, std::wstring(resolved)), std::pair(HKEY_USERS, std::wstring(L".DEFAULT\\a\\b")));
    Helper::SetUserHiveOverride(L"no such user");
    EXPECT_EQ(Helper::OpenStream(kUser, path, L"v", STGM_READ), nullptr);
    hive = kMachine;
    EXPECT_FALSE(Helper::SplitRegistryPath(L"HKEY_USERS", hive, resolved));
    EXPECT_TRUE(Helper::SplitRegistryPath(L"HKCU\\x", hive, resolved));
    EXPECT_EQ(std::pair(resolved == L"x", hive), std::pair(true, kMachine)) << "the hive as it was";
    EXPECT_TRUE(Helper::SplitRegistryPath(L"hkey_users\\a\\b", hive, resolved));
    EXPECT_EQ(std::pair(resolved == L"a\\b", hive), std::pair(true, HKEY_USERS));
}

// Every way to fail. What was opened on the way is closed, but for the parent of a deleted child.
TEST_F(RegistryHelper, FailuresLeaveNothingOpenAndADeletionItsParent) {
    m_key.SetText(L"text", L"x");
    m_key.AddKey(L"full\\below");
    const CString missing = Path(L"\\missing");
    const CString bad = CString(L'x', 300);
    const ResourceCounter counter({GetModuleHandleW(nullptr), LoadedModule(L"RegistryRulesFramework.dll")});
    Helper key(kUser, Path(), KEY_ALL_ACCESS);
    CRegKey brief;
    brief.Create(key, L"brief", nullptr, REG_OPTION_VOLATILE);
    Helper::CreateChildKey(key, L"a", nullptr, 0);
    const std::pair<DWORD, std::function<void()>> calls[] = {
        {2, [&] { Helper(kUser, missing, KEY_READ); }},
        {ERROR_INVALID_PARAMETER, [&] { Helper(kUser, bad, KEY_ALL_ACCESS); }},
        {2, [&] { key.OpenOrCreate(kUser, missing, KEY_READ, 0); }},
        {0x70C, [&] { key.GetDwordValue(L"text"); }},
        {0x10DD, [&] { Helper{key}; }},
        {0x10DD, [&] { key = Helper(); }},
        {ERROR_INVALID_HANDLE, [] { Helper::CreateChildKey(nullptr, L"c", nullptr, 0); }},
        {ERROR_CHILD_MUST_BE_VOLATILE, [&] { Helper::CreateChildKey(brief, L"c", nullptr, 0); }},
        {ERROR_CHILD_MUST_BE_VOLATILE,
         [&] { Helper::EnsureKeyAndChild(kUser, Path(L"\\brief\\x"), L"x", nullptr, 0, true); }},
        {ERROR_INVALID_PARAMETER, [&] { Helper::EnsureKeyAndChild(kUser, Path(), bad, nullptr, 0, false); }},
        {2, [&] { Helper::DeleteChildKey(kUser, missing, L"x"); }},
    };
    for (const auto& [status, call] : calls) EXPECT_EQ(StatusThrownBy(call), status);
    EXPECT_FALSE(Helper::KeyExists(kUser, missing) || Helper::KeyExists(nullptr, L"SOFTWARE"));
    EXPECT_GE(counter.Created("registry handle"), 5);
    EXPECT_EQ(counter.Alive("registry handle"), 2) << "the two keys here";
    for (const auto& [child, status] : {std::pair(L"a", 0u), std::pair(L"a", 2u), std::pair(L"full", 5u)})
        EXPECT_EQ(StatusThrownBy([&, name = child] { Helper::DeleteChildKey(kUser, Path(), name); }), status);
    EXPECT_FALSE(Helper::KeyExists(kUser, Path(L"\\a")));
    EXPECT_EQ(counter.Alive("registry handle"), 5);
}

TEST_F(RegistryHelper, ATransactionGoesToTheSystemAndWithoutAHandleTheFallBackDecides) {
    const ImportPatch<decltype(&GetProcAddress)> find(LoadedModule(L"RegistryRulesFramework.dll"), "GetProcAddress",
                                                      FindTransacted);
    // Any handle will do: the system's transactions are out of reach here.
    CRegistryTransaction transaction(CreateEventW(nullptr, TRUE, FALSE, nullptr), FALSE);
    CRegistryTransaction allowed(nullptr, TRUE);
    CRegistryTransaction refused(nullptr, FALSE);
    Helper key;
    WCHAR keyClass[] = L"class";
    for (const auto& [each, status] : {std::pair(&transaction, 77), {&allowed, 0}, {&refused, 1}}) {
        key.m_pTM = each;
        EXPECT_EQ(key.OpenRedirected(kUser, Path(), KEY_READ | KEY_WOW64_32KEY), status);
        EXPECT_EQ(key.Create(kUser, Path(L"\\new"), keyClass, REG_OPTION_VOLATILE, KEY_WRITE), status);
    }
    const std::wstring path = m_key.Path();
    EXPECT_EQ(s_asked, L"open " + path + L" 131609 in it;create " + path + L"\\new class in it;");
}

TEST(RegistryException, GivesTheSystemsText) {
    const CRegistryException problem(ERROR_ACCESS_DENIED);
    WCHAR text[300];
    ASSERT_TRUE(problem.GetErrorMessage(text, 300));
    EXPECT_TRUE(std::wstring_view(text).ends_with(L"\r\n"));
    EXPECT_EQ(FormatRegistryError(problem), CString(L"[0x5] ") + text);
    EXPECT_TRUE(FormatRegistryError(CRegistryException(ERROR_BAD_EXE_FORMAT)).IsEmpty()) << "a text with a %1";
    EXPECT_FALSE(problem.GetErrorMessage(text, 4));
    EXPECT_EQ(text[3], L'\0') << "too small, and terminated all the same";
    EXPECT_FALSE(CRegistryException(0x2FFFFFFF).GetErrorMessage(text, 300));
    EXPECT_EQ(std::wstring(text, 300), std::wstring(300, L'\0'));
}
