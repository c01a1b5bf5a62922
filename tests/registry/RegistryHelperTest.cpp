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

class RegistryHelper : public testing::Test {
protected:
    ~RegistryHelper() override { CRegistryHelper::SetUserHiveOverride(L""); }

    CString Path(LPCWSTR below = L"") const { return CString(m_key.Path().c_str()) + below; }
    static bool Exists(const CString& path) { return CRegistryHelper::KeyExists(HKEY_CURRENT_USER, path); }

    ScopedRegistryKey m_key;
};

// The masks that keys are opened and made with, "+" before those of making.
std::string s_masks;

LSTATUS WINAPI NoteCreate(HKEY key, LPCWSTR path, DWORD reserved, LPWSTR keyClass, DWORD options, REGSAM access,
                          const LPSECURITY_ATTRIBUTES security, PHKEY result, LPDWORD disposition) {
    char mask[20];
    std::snprintf(mask, sizeof(mask), "+%lx ", access);
    s_masks += mask;
    return RegCreateKeyExW(key, path, reserved, keyClass, options, access, security, result, disposition);
}

// What the transacted functions were asked for.
std::wstring s_asked;

LSTATUS WINAPI OpenTransacted(HKEY key, LPCWSTR path, DWORD options, REGSAM access, PHKEY result, HANDLE transaction,
                              PVOID extended) {
    EXPECT_EQ(extended, nullptr);
    s_asked += std::wstring(L"open ") + path + L" " + std::to_wstring(access) + (transaction ? L" in it;" : L";");
    return RegOpenKeyExW(key, path, options, access, result);
}

LSTATUS WINAPI CreateTransacted(HKEY key, LPCWSTR path, DWORD, LPWSTR keyClass, DWORD options, REGSAM access,
                                const LPSECURITY_ATTRIBUTES security, PHKEY result, LPDWORD disposition,
                                HANDLE transaction, PVOID extended) {
    EXPECT_EQ(extended, nullptr);
    s_asked += std::wstring(L"create ") + path + L" " + keyClass + (transaction ? L" in it;" : L";");
    return RegCreateKeyExW(key, path, 0, keyClass, options, access, security, result, disposition);
}

FARPROC WINAPI FindTransacted(HMODULE module, LPCSTR name) {
    EXPECT_EQ(module, GetModuleHandleW(L"advapi32.dll"));
    const std::string_view asked = name;
    void* const found = asked == "RegOpenKeyTransactedW"     ? reinterpret_cast<void*>(OpenTransacted)
                        : asked == "RegCreateKeyTransactedW" ? reinterpret_cast<void*>(CreateTransacted)
                                                             : nullptr;
    return reinterpret_cast<FARPROC>(found);
}

}  // namespace

TEST_F(RegistryHelper, OnlyAWritingMaskCreatesAndAFailedReopenKeepsTheOldKey) {
    const ScopedRegistryKey scope(HKEY_CURRENT_USER, REG_OPTION_NON_VOLATILE);
    const CString path = scope.Path().c_str();
    const struct {
        REGSAM access;
        LPCWSTR below;
        DWORD status;
    } cases[] = {{KEY_READ, L"\\a", 2},
                 {KEY_QUERY_VALUE | DELETE, L"\\a", 2},
                 {KEY_CREATE_SUB_KEY, L"\\a", 0},
                 {KEY_SET_VALUE, L"\\a\\b", 0},
                 {KEY_READ, L"\\a\\b", 0}};
    for (const auto& c : cases)
        EXPECT_EQ(StatusThrownBy([&] { CRegistryHelper(HKEY_CURRENT_USER, path + c.below, c.access); }), c.status);
    m_key.SetText(L"a", L"v", L"here");
    CRegistryHelper key;
    EXPECT_EQ(key.OpenRedirected(HKEY_CURRENT_USER, Path(L"\\a"), KEY_READ | KEY_WOW64_64KEY), 0);
    EXPECT_EQ(key.OpenRedirected(HKEY_CURRENT_USER, Path(L"\\no"), KEY_READ), 2);
    EXPECT_EQ(key.GetStringValue(L"v"), L"here");
    EXPECT_EQ(key.m_samWOW64, 0x100u);
    EXPECT_EQ(key.OpenRedirected(HKEY_CURRENT_USER, Path(), KEY_READ), 0);
    EXPECT_EQ(key.m_samWOW64, 0u);
    EXPECT_EQ(key.Open(key, L"a", KEY_READ | KEY_WOW64_32KEY), 0) << "the key may be its own parent";
    EXPECT_EQ(key.GetStringValue(L"v"), L"here");
    key.Close();
    EXPECT_EQ(std::pair(key.m_hKey, key.m_samWOW64), std::pair(HKEY{}, REGSAM{}));
}

TEST_F(RegistryHelper, AKeyMadeInOneViewIsReadBackThere) {
    const auto reads = [](LPCWSTR path, REGSAM view) {
        CRegKey key;
        return key.Open(HKEY_LOCAL_MACHINE, path, KEY_READ | view) == ERROR_SUCCESS;
    };
    const ScopedRegistryKey cleanup64(HKEY_LOCAL_MACHINE, L"Software\\RrViews64");
    const ScopedRegistryKey cleanup32(HKEY_LOCAL_MACHINE, L"Software\\Wow6432Node\\RrViews32");
    CRegistryHelper(HKEY_LOCAL_MACHINE, L"Software\\RrViews32\\new", KEY_WRITE | KEY_WOW64_32KEY);
    CRegistryHelper(HKEY_LOCAL_MACHINE, L"Software\\RrViews64\\new", KEY_WRITE | KEY_WOW64_64KEY);
    EXPECT_TRUE(reads(L"Software\\Wow6432Node\\RrViews32\\new", 0));
    EXPECT_TRUE(reads(L"Software\\RrViews32\\new", KEY_WOW64_32KEY));
    EXPECT_FALSE(reads(L"Software\\RrViews32\\new", KEY_WOW64_64KEY));
    EXPECT_TRUE(reads(L"Software\\RrViews64\\new", KEY_WOW64_64KEY));
    EXPECT_FALSE(reads(L"Software\\RrViews64\\new", KEY_WOW64_32KEY));
    // A 32-bit process gets the 64-bit view only by the mask.
    const ImportPatch<decltype(&NoteCreate)> patch(LoadedModule(L"framework.dll"), "RegCreateKeyExW", NoteCreate);
    CRegistryHelper::EnsureKeyAndChild(HKEY_CURRENT_USER, Path(L"\\x\\64"), L"c", nullptr, REG_OPTION_VOLATILE, true);
    CRegistryHelper::EnsureKeyAndChild(HKEY_CURRENT_USER, Path(L"\\x\\32"), L"c", nullptr, REG_OPTION_VOLATILE, false);
    CRegistryHelper::EnsureKeyAndChild(HKEY_CURRENT_USER, Path(L"\\x\\32"), L"c", nullptr, REG_OPTION_VOLATILE, false);
    EXPECT_EQ(s_masks, "+20106 +4 +20006 +4 +4 ") << "what is there is opened";
    EXPECT_TRUE(Exists(Path(L"\\x\\64\\c")) && Exists(Path(L"\\x\\32\\c")));
}

TEST_F(RegistryHelper, AnotherUserStandsForTheCurrentOne) {
    ScopedRegistryKey theirs(HKEY_USERS, L".DEFAULT\\Software\\RrTheirs");
    theirs.SetText(L"", L"v", L"theirs");
    const CString path = L"Software\\RrTheirs";
    EXPECT_FALSE(Exists(path));
    CRegistryHelper::SetUserHiveOverride(L".DEFAULT");
    EXPECT_EQ(CRegistryHelper::GetUserHiveOverride(), L".DEFAULT");
    CRegistryHelper key(HKEY_CURRENT_USER, path, KEY_READ);
    EXPECT_EQ(key.GetStringValue(L"v"), L"theirs");
    CRegistryHelper::CreateChildKey(HKEY_CURRENT_USER, path + L"\\child", nullptr, REG_OPTION_VOLATILE);
    EXPECT_TRUE(CRegistryHelper::KeyExists(HKEY_USERS, L".DEFAULT\\" + path + L"\\child"));
    EXPECT_TRUE(CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft")) << "other hives stay";
    EXPECT_EQ(key.Open(HKEY_CURRENT_USER, path, KEY_READ), 2) << "the plain operation rewrites nothing";
    HKEY hive = HKEY_CURRENT_USER;
    CString resolved = L"a\\b";
    for (int again = 0; again < 2; ++again) CRegistryHelper::ResolveUserHive(hive, resolved);
    EXPECT_EQ(hive, HKEY_USERS);
    EXPECT_EQ(resolved, L".DEFAULT\\a\\b");
    CRegistryHelper::SetUserHiveOverride(L"no such user");
    EXPECT_EQ(CRegistryHelper::OpenStream(HKEY_CURRENT_USER, Path(), L"v", STGM_READ), nullptr);
}

TEST_F(RegistryHelper, WholePathOperations) {
    CRegistryHelper::CreateChildKey(HKEY_CURRENT_USER, Path(L"\\a"), L"theClass", REG_OPTION_VOLATILE);
    CRegistryHelper key(HKEY_CURRENT_USER, Path(L"\\a"), KEY_ALL_ACCESS);
    WCHAR keyClass[20] = {};
    DWORD length = 20;
    RegQueryInfoKeyW(key, keyClass, &length, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                     nullptr);
    EXPECT_STREQ(keyClass, L"theClass");
    CRegistryHelper::CreateChildKey(key, L"b", nullptr, REG_OPTION_VOLATILE);
    EXPECT_TRUE(Exists(Path(L"\\a\\b"))) << "below an open key";
    m_key.SetData(L"", L"v", REG_BINARY, "123", 3);
    IStream* stream = CRegistryHelper::OpenStream(HKEY_CURRENT_USER, Path(), L"v", STGM_READ);
    ASSERT_NE(stream, nullptr);
    char read[8] = {};
    EXPECT_EQ(stream->Read(read, sizeof(read), nullptr), S_OK);
    stream->Release();
    EXPECT_STREQ(read, "123");

    HKEY hive = HKEY_LOCAL_MACHINE;
    CString subkey = L"kept";
    EXPECT_FALSE(CRegistryHelper::SplitRegistryPath(L"HKEY_USERS", hive, subkey));
    EXPECT_EQ(subkey, L"kept");
    EXPECT_TRUE(CRegistryHelper::SplitRegistryPath(L"HKCU\\x", hive, subkey));
    EXPECT_EQ(std::pair(subkey == L"x", hive), std::pair(true, HKEY_LOCAL_MACHINE)) << "the hive as it was";
    EXPECT_TRUE(CRegistryHelper::SplitRegistryPath(L"hkey_users\\a\\b", hive, subkey));
    EXPECT_EQ(std::pair(subkey == L"a\\b", hive), std::pair(true, HKEY_USERS));
}

// Every way to fail, many times over. What was opened on the way is closed, but for the parent of a deleted child.
TEST_F(RegistryHelper, FailuresLeaveNothingOpenAndADeletionItsParent) {
    m_key.SetText(L"", L"text", L"x");
    m_key.AddKey(L"full\\below");
    const CString missing = Path(L"\\missing");
    const CString bad = CString(L'x', 300);
    const ResourceCounter counter({GetModuleHandleW(nullptr), LoadedModule(L"framework.dll")});
    for (int i = 0; i < 100; ++i) {
        CRegistryHelper key(HKEY_CURRENT_USER, Path(), KEY_ALL_ACCESS);
        const std::vector<std::pair<DWORD, std::function<void()>>> failures = {
            {2, [&] { CRegistryHelper(HKEY_CURRENT_USER, missing, KEY_READ); }},
            {ERROR_INVALID_PARAMETER, [&] { CRegistryHelper(HKEY_CURRENT_USER, bad, KEY_ALL_ACCESS); }},
            {2, [&] { key.OpenOrCreate(HKEY_CURRENT_USER, missing, KEY_READ, 0); }},
            {0x70C, [&] { key.GetDwordValue(L"text"); }},
            {0x10DD, [&] { const CRegistryHelper copy(key); }},
            {0x10DD, [&] { key = CRegistryHelper(); }},
            {ERROR_INVALID_HANDLE, [] { CRegistryHelper::CreateChildKey(nullptr, L"c", nullptr, 0); }},
            {ERROR_CHILD_MUST_BE_VOLATILE, [&] { CRegistryHelper::CreateChildKey(key, L"c", nullptr, 0); }},
            {ERROR_CHILD_MUST_BE_VOLATILE,
             [&] { CRegistryHelper::EnsureKeyAndChild(HKEY_CURRENT_USER, missing, L"x", nullptr, 0, true); }},
            {ERROR_INVALID_PARAMETER,
             [&] { CRegistryHelper::EnsureKeyAndChild(HKEY_CURRENT_USER, Path(), bad, nullptr, 0, false); }},
            {2, [&] { CRegistryHelper::DeleteChildKey(HKEY_CURRENT_USER, missing, L"x"); }},
        };
        for (size_t n = 0; n < failures.size(); ++n)
            EXPECT_EQ(StatusThrownBy(failures[n].second), failures[n].first) << n;
        EXPECT_FALSE(Exists(missing) || CRegistryHelper::KeyExists(nullptr, L"SOFTWARE"));
    }
    EXPECT_GE(counter.Created("registry handle"), 100);
    EXPECT_EQ(counter.Report(), "");
    m_key.AddKey(L"a");
    CRegistryHelper::DeleteChildKey(HKEY_CURRENT_USER, Path(), L"a");
    EXPECT_FALSE(Exists(Path(L"\\a")));
    EXPECT_EQ(StatusThrownBy([&] { CRegistryHelper::DeleteChildKey(HKEY_CURRENT_USER, Path(), L"a"); }), 2u);
    EXPECT_EQ(StatusThrownBy([&] { CRegistryHelper::DeleteChildKey(HKEY_CURRENT_USER, Path(), L"full"); }), 5u);
    EXPECT_EQ(counter.Alive("registry handle"), 3);
}

TEST_F(RegistryHelper, ATransactionGoesToTheSystemAndWithoutAHandleTheFallBackDecides) {
    const ImportPatch<decltype(&GetProcAddress)> find(LoadedModule(L"framework.dll"), "GetProcAddress", FindTransacted);
    // Any handle will do: the system's transactions are out of reach here.
    CRegistryTransaction transaction(CreateEventW(nullptr, TRUE, FALSE, nullptr), FALSE);
    CRegistryTransaction allowed(nullptr, TRUE);
    CRegistryTransaction refused(nullptr, FALSE);
    CRegistryHelper key;
    WCHAR keyClass[] = L"class";
    for (CRegistryTransaction* each : {&transaction, &allowed, &refused}) {
        key.m_pTM = each;
        const LONG expected = each == &refused ? 1 : 0;
        EXPECT_EQ(key.OpenRedirected(HKEY_CURRENT_USER, Path(), KEY_READ | KEY_WOW64_32KEY), expected);
        EXPECT_EQ(key.Create(HKEY_CURRENT_USER, Path(L"\\new"), keyClass, REG_OPTION_VOLATILE, KEY_WRITE), expected);
    }
    const std::wstring path = m_key.Path();
    EXPECT_EQ(s_asked, L"open " + path + L" 131609 in it;create " + path + L"\\new class in it;");
}

TEST(RegistryException, GivesTheSystemsText) {
    const CRegistryException problem(ERROR_ACCESS_DENIED);
    WCHAR text[300];
    UINT context = 77;
    ASSERT_TRUE(problem.GetErrorMessage(text, 300, &context));
    EXPECT_EQ(context, 77u);
    EXPECT_TRUE(std::wstring_view(text).ends_with(L"\r\n"));
    EXPECT_EQ(FormatRegistryError(problem), CString(L"[0x5] ") + text);
    EXPECT_EQ(FormatRegistryError(CRegistryException(0x70C)).Left(8), L"[0x70c] ");
    EXPECT_TRUE(FormatRegistryError(CRegistryException(ERROR_BAD_EXE_FORMAT)).IsEmpty()) << "a text with a %1";
    EXPECT_FALSE(problem.GetErrorMessage(text, 4));
    EXPECT_EQ(text[3], L'\0') << "too small, and terminated all the same";
    EXPECT_FALSE(CRegistryException(0x2FFFFFFF).GetErrorMessage(text, 300));
    EXPECT_EQ(std::wstring(text, 300), std::wstring(300, L'\0'));
}
