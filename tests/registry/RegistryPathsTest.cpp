// The whole-path operations on a running system, and the user override.
#include <objidl.h>

#include <gtest/gtest.h>

#include "registry/HiveRedirection.h"
#include "registry/RegistryHelper.h"
#include "registry/Thrown.h"
#include "support/ResourceCounter.h"
#include "support/ScopedRegistryKey.h"

namespace {

class RegistryPaths : public testing::Test {
protected:
    ~RegistryPaths() override { CRegistryHelper::SetUserHiveOverride(L""); }

    CString Path(LPCWSTR below = L"") const { return CString(m_key.Path().c_str()) + below; }
    static bool Exists(const CString& path) { return CRegistryHelper::KeyExists(HKEY_CURRENT_USER, path); }

    ScopedRegistryKey m_key;
};

class AnotherUser : public RegistryPaths {
protected:
    AnotherUser() : m_users(OpenUsers()), m_theirs(m_users) {}
    ~AnotherUser() override { RegCloseKey(m_users); }

    static HKEY OpenUsers() {
        HKEY key = nullptr;
        RegCreateKeyExW(HKEY_USERS, L".DEFAULT", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
        return key;
    }

    HKEY m_users;
    ScopedRegistryKey m_theirs;
};

}  // namespace

TEST_F(RegistryPaths, ARunningSystemRewritesNothing) {
    CString path = L"SOFTWARE\\CurrentControlSet";
    RedirectToOfflineHive(path, KEY_READ, 0);
    EXPECT_EQ(path, L"SOFTWARE\\CurrentControlSet");
    EXPECT_TRUE(CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft"));
    EXPECT_FALSE(CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\no such key"));
    EXPECT_FALSE(CRegistryHelper::KeyExists(nullptr, L"SOFTWARE"));
}

TEST_F(AnotherUser, StandsForTheCurrentOne) {
    m_theirs.SetText(L"", L"v", L"theirs");
    const CString path = m_theirs.Path().c_str();
    EXPECT_FALSE(Exists(path));
    CRegistryHelper::SetUserHiveOverride(L".DEFAULT");
    EXPECT_EQ(CRegistryHelper::GetUserHiveOverride(), L".DEFAULT");
    EXPECT_TRUE(Exists(path));
    CRegistryHelper key(HKEY_CURRENT_USER, path, KEY_READ);
    EXPECT_EQ(key.GetStringValue(L"v"), L"theirs");
    CRegistryHelper::CreateChildKey(HKEY_CURRENT_USER, path + L"\\child", nullptr, REG_OPTION_VOLATILE);
    EXPECT_TRUE(CRegistryHelper::KeyExists(HKEY_USERS, L".DEFAULT\\" + path + L"\\child"));
    EXPECT_TRUE(CRegistryHelper::KeyExists(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft")) << "other hives stay";
    EXPECT_EQ(key.Open(HKEY_CURRENT_USER, path, KEY_READ), 2) << "the plain operation rewrites nothing";

    HKEY hive = HKEY_CURRENT_USER;
    CString resolved = L"a\\b";
    CRegistryHelper::ResolveUserHive(hive, resolved);
    EXPECT_EQ(hive, HKEY_USERS);
    EXPECT_EQ(resolved, L".DEFAULT\\a\\b");
    CRegistryHelper::ResolveUserHive(hive, resolved);
    EXPECT_EQ(resolved, L".DEFAULT\\a\\b");
}

TEST_F(RegistryPaths, CreatesAChildWithClassAndOptions) {
    CRegistryHelper::CreateChildKey(HKEY_CURRENT_USER, Path(L"\\a"), L"theClass", REG_OPTION_VOLATILE);
    CRegistryHelper key(HKEY_CURRENT_USER, Path(L"\\a"), KEY_READ);
    WCHAR keyClass[20] = {};
    DWORD length = 20;
    RegQueryInfoKeyW(key, keyClass, &length, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                     nullptr);
    EXPECT_STREQ(keyClass, L"theClass");
    CRegistryHelper::CreateChildKey(HKEY_CURRENT_USER, Path(L"\\a"), nullptr, REG_OPTION_VOLATILE);
    CRegistryHelper parent(HKEY_CURRENT_USER, Path(), KEY_ALL_ACCESS);
    CRegistryHelper::CreateChildKey(parent, L"b", nullptr, REG_OPTION_VOLATILE);
    EXPECT_TRUE(Exists(Path(L"\\b")));
    EXPECT_EQ(StatusThrownBy([&] { CRegistryHelper::CreateChildKey(parent, L"c", nullptr, 0); }),
              DWORD{ERROR_CHILD_MUST_BE_VOLATILE});
    EXPECT_EQ(StatusThrownBy([] { CRegistryHelper::CreateChildKey(nullptr, L"c", nullptr, 0); }),
              DWORD{ERROR_INVALID_HANDLE});
}

TEST_F(RegistryPaths, EnsuresAKeyAndItsChild) {
    for (const bool view64 : {false, true}) {
        const CString path = Path(view64 ? L"\\x\\64" : L"\\x\\32");
        for (int again = 0; again < 2; ++again) {
            CRegistryHelper::EnsureKeyAndChild(HKEY_CURRENT_USER, path, L"child", L"c", REG_OPTION_VOLATILE, view64);
            EXPECT_TRUE(Exists(path + L"\\child"));
        }
    }
    EXPECT_EQ(StatusThrownBy([&] {
                  CRegistryHelper::EnsureKeyAndChild(HKEY_CURRENT_USER, Path(L"\\y"), L"child", nullptr, 0, false);
              }),
              DWORD{ERROR_CHILD_MUST_BE_VOLATILE});
    EXPECT_FALSE(Exists(Path(L"\\y")));
}

TEST_F(RegistryPaths, DeletesAChildAndLeavesTheParentOpen) {
    m_key.AddKey(L"a");
    m_key.AddKey(L"full\\below");
    ResourceCounter counter({GetModuleHandleW(nullptr), LoadedModule(L"framework.dll")});
    CRegistryHelper::DeleteChildKey(HKEY_CURRENT_USER, Path(), L"a");
    EXPECT_EQ(counter.Alive("registry handle"), 1);
    EXPECT_EQ(StatusThrownBy([&] { CRegistryHelper::DeleteChildKey(HKEY_CURRENT_USER, Path(), L"a"); }), 2u);
    EXPECT_EQ(counter.Alive("registry handle"), 2);
    EXPECT_EQ(StatusThrownBy([&] { CRegistryHelper::DeleteChildKey(HKEY_CURRENT_USER, Path(), L"full"); }),
              DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(StatusThrownBy([&] { CRegistryHelper::DeleteChildKey(HKEY_CURRENT_USER, Path(L"\\no"), L"a"); }), 2u);
    EXPECT_EQ(counter.Alive("registry handle"), 3) << "a parent that does not open leaves nothing";
    EXPECT_FALSE(Exists(Path(L"\\a")));
}

TEST_F(RegistryPaths, OpensAValueAsAStream) {
    const BYTE data[] = {1, 2, 3};
    m_key.SetData(L"", L"v", REG_BINARY, data, sizeof(data));
    IStream* stream = CRegistryHelper::OpenStream(HKEY_CURRENT_USER, Path(), L"v", STGM_READ);
    ASSERT_NE(stream, nullptr);
    BYTE read[8] = {};
    ULONG count = 0;
    EXPECT_EQ(stream->Read(read, sizeof(read), &count), S_OK);
    stream->Release();
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(read[2], 3);
    CRegistryHelper::SetUserHiveOverride(L"no such user");
    EXPECT_EQ(CRegistryHelper::OpenStream(HKEY_CURRENT_USER, Path(), L"v", STGM_READ), nullptr);
}

TEST(SplitRegistryPath, GivesTheHandleOfAKnownHive) {
    HKEY hive = HKEY_LOCAL_MACHINE;
    CString subkey = L"kept";
    EXPECT_FALSE(CRegistryHelper::SplitRegistryPath(L"HKEY_USERS", hive, subkey));
    EXPECT_EQ(subkey, L"kept");
    EXPECT_TRUE(CRegistryHelper::SplitRegistryPath(L"HKCU\\x", hive, subkey));
    EXPECT_EQ(subkey, L"x");
    EXPECT_EQ(hive, HKEY_LOCAL_MACHINE) << "as it was";
    EXPECT_TRUE(CRegistryHelper::SplitRegistryPath(L"hkey_users\\a\\b", hive, subkey));
    EXPECT_EQ(hive, HKEY_USERS);
    EXPECT_EQ(subkey, L"a\\b");
}

// Every way to fail, many times over: what was opened on the way is closed.
TEST_F(RegistryPaths, FailuresLeaveNothingOpen) {
    m_key.SetText(L"", L"text", L"x");
    m_key.SetData(L"", L"number", REG_DWORD, "\1\0\0\0", 4);
    const CString missing = Path(L"\\missing");
    const CString bad = CString(L'x', 300);
    ResourceCounter counter({GetModuleHandleW(nullptr), LoadedModule(L"framework.dll")});
    for (int i = 0; i < 100; ++i) {
        CRegistryHelper key(HKEY_CURRENT_USER, Path(), KEY_ALL_ACCESS);
        CStringList names;
        CString name;
        DWORD number = 0;
        int failures = 0;
        const auto fails = [&](auto call) { failures += StatusThrownBy(call) != ERROR_SUCCESS ? 1 : 0; };
        fails([&] { CRegistryHelper(HKEY_CURRENT_USER, missing, KEY_READ); });
        fails([&] { CRegistryHelper(HKEY_CURRENT_USER, bad, KEY_ALL_ACCESS); });
        fails([&] { key.OpenOrCreate(HKEY_CURRENT_USER, missing, KEY_READ, 0); });
        fails([&] { key.GetStringValue(L"number"); });
        fails([&] { key.GetDwordValue(L"text"); });
        fails([&] { key.GetBoolValue(L"text"); });
        fails([&] { key.GetInt64Value(L"text"); });
        fails([&] { key.GetBinaryValue(L"text", &number); });
        fails([&] { key.EnumValue(5, 10, name, number); });
        fails([&] { const CRegistryHelper copy(key); });
        fails([&] { CRegistryHelper::CreateChildKey(key, bad, nullptr, 0); });
        fails([&] { CRegistryHelper::EnsureKeyAndChild(HKEY_CURRENT_USER, Path(), bad, nullptr, 0, false); });
        fails([&] { CRegistryHelper::EnsureKeyAndChild(HKEY_CURRENT_USER, missing, L"x", nullptr, 0, true); });
        fails([&] { CRegistryHelper::DeleteChildKey(HKEY_CURRENT_USER, missing, L"x"); });
        EXPECT_FALSE(Exists(missing));
        EXPECT_EQ(key.OpenRedirected(HKEY_CURRENT_USER, missing, KEY_READ), 2);
        EXPECT_EQ(failures, 14);
        EXPECT_EQ(key.OpenRedirected(HKEY_CURRENT_USER, Path(), KEY_READ), 0) << "this closes the earlier one";
    }
    EXPECT_GE(counter.Created("registry handle"), 100);
    EXPECT_EQ(counter.Report(), "");
}
