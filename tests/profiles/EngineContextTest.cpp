// The user list: who stays, who goes, and who is deleted how often.
#include "profiles/EngineContext.h"

#include <gtest/gtest.h>
#include <map>
#include <stdexcept>
#include <string>

#include "crypto/Encryptor.h"
#include "support/LogCapture.h"
#include "support/Narrow.h"

namespace {

// How often the user of each mark was deleted.
std::map<int, int> s_deleted;

enum class Hive { None, Loaded, ToBeLoaded };

struct TestUser : CBvUserProfileBase {
    TestUser(int itsMark, LPCWSTR domain, LPCWSTR name, LPCWSTR path, Hive itsHive = Hive::Loaded, int precedence = 0)
        : mark(itsMark), hive(itsHive) {
        m_domain = domain;
        m_userName = name;
        m_profilePath = path;
        m_precedence = precedence;
    }
    ~TestUser() noexcept(false) override {
        ++s_deleted[mark];
        if (throws) throws();
    }
    bool HasProfileHive() override { return hive != Hive::None; }
    bool RequiresHiveLoad() override { return hive == Hive::ToBeLoaded; }

    int mark;
    Hive hive;
    void (*throws)() = nullptr;
};

class UserList : public testing::Test {
protected:
    UserList() { s_deleted.clear(); }
    ~UserList() override { m_context.ClearUserList(); }

    TestUser* At(INT_PTR index) { return static_cast<TestUser*>(m_context.m_users.GetAt(index)); }

    CEngineContext m_context;
};

}  // namespace

// The list holds 1 = CORP\Ann with precedence 5 and 2 = CORP\Bob; 3 is CORP\Ann again. Told are the message, and the
// list with "<" before a subordinate, which is the host's to delete. All combinations of hives are the decision's test.
TEST_F(UserList, ADuplicateStaysGoesOrBecomesSubordinate) {
    const std::tuple<Hive, Hive, LPCWSTR, int, const char*> cases[] = {
        {Hive::Loaded, Hive::ToBeLoaded, L"C:\\b", 9,
         "Skipping duplicate profile that requires hive to be loaded: corp\\ANN | 1 2"},
        {Hive::ToBeLoaded, Hive::None, L"C:\\a", 1,
         "Replacing duplicate profile with one that doesn't require hive to be loaded: corp\\ANN | 2 3"},
        {Hive::Loaded, Hive::Loaded, L"c:\\A", 9,
         "Skipping duplicate profile 'corp\\ANN' with duplicate profile path: 'c:\\A' | 1 2"},
        {Hive::ToBeLoaded, Hive::ToBeLoaded, L"C:\\b", 6,
         "Making existing profile subordinate to new profile 'corp\\ANN' | 2 3<1"},
        {Hive::ToBeLoaded, Hive::Loaded, L"C:\\b", 5,
         "Making new profile subordinate to existing duplicate 'corp\\ANN' | 1<3 2"},
    };
    for (const auto& [existing, added, path, precedence, expected] : cases) {
        s_deleted.clear();
        const LogCapture log;
        m_context.AddUserToUserList(new TestUser(1, L"CORP", L"Ann", L"C:\\a", existing, 5));
        m_context.AddUserToUserList(new TestUser(2, L"CORP", L"Bob", L"C:\\a"));
        m_context.AddUserToUserList(new TestUser(3, L"corp", L"ANN", path, added, precedence));
        EXPECT_EQ(log.GetLines()[1].message, L"Adding user:Ann domain:CORP profile path C:\\a");
        std::string told = Narrow(log.Messages(LogLevel::Informational).at(0)) + " |";
        const CBvUserProfileBase* subordinate = nullptr;
        for (INT_PTR i = 0; i < m_context.m_users.GetCount(); ++i) {
            told += " " + std::to_string(At(i)->mark);
            if (At(i)->m_subordinate == nullptr) continue;
            subordinate = At(i)->m_subordinate;
            told += "<" + std::to_string(static_cast<const TestUser*>(subordinate)->mark);
        }
        EXPECT_EQ(told, expected);
        EXPECT_EQ(s_deleted.size(), subordinate ? 0u : 1u);
        m_context.ClearUserList();
        delete subordinate;
        EXPECT_EQ(s_deleted, (std::map<int, int>{{1, 1}, {2, 1}, {3, 1}}));
    }
}

TEST_F(UserList, DomainAndNameTogetherMakeADuplicateAndAThrowingDestructorStopsNothing) {
    const LPCWSTR names[][2] = {{L"CORP", L"\xC4nn"}, {L"OTHER", L"\xC4nn"}, {L"CORP\xC4", L"nn"}, {L"", L""}};
    for (const auto& name : names) m_context.AddUserToUserList(new TestUser(1, name[0], name[1], L"p"));
    m_context.AddUserToUserList(new TestUser(9, L"corp", L"\xE4NN", L"P"));
    m_context.AddUserToUserList(At(0));
    m_context.AddUserToUserList(nullptr);
    EXPECT_EQ(m_context.m_users.GetCount(), 4);
    EXPECT_EQ(s_deleted, (std::map<int, int>{{9, 1}})) << "one that is in the list does not go";
    At(0)->throws = [] { throw std::runtime_error("x"); };
    At(2)->throws = AfxThrowUserException;
    At(3)->throws = [] { throw 5; };
    m_context.m_users.Add(nullptr);
    const LogCapture log;
    m_context.ClearUserList();
    EXPECT_EQ(m_context.m_users.GetCount(), 0);
    EXPECT_EQ(s_deleted, (std::map<int, int>{{1, 4}, {9, 1}}));
    EXPECT_EQ(
        log.Messages(LogLevel::Warning),
        std::vector<std::wstring>(3, L"[CEngineContext::ClearUserList] Exception thrown while deleting user object"));
}

TEST(EngineContext, KeepsUniqueStringsAndWhatTheEncryptorMakesOfASecret) {
    CEngineContext context;
    // How much, its start, its kind.
    const auto secret = [&context] {
        const BYTE* const data = context.m_secretData.get();
        return std::tuple(context.m_secretSize, data ? std::string(data, data + 7) : "none", context.m_secretKind);
    };
    context.SetSecret(L"abc", kEncryptorAes256);
    const std::tuple published(DWORD{64}, std::string("\xDD\xAF\x35\xA1\x93\x61\x7A"), kEncryptorAes256);  // SHA-512
    EXPECT_EQ(secret(), published);
    context.SetSecret(L"other", 99);
    EXPECT_EQ(secret(), published) << "no such encryptor";
    // From its own buffer, which must not be gone before it is read.
    context.SetSecretBlob(context.m_secretData.get() + 1, 7, 3);
    EXPECT_EQ(secret(), std::tuple(DWORD{7}, std::string("\xAF\x35\xA1\x93\x61\x7A\xBA"), 3));
    context.SetSecretBlob(nullptr, 0, 4);
    EXPECT_EQ(secret(), std::tuple(DWORD{0}, std::string("none"), 4));
    for (const LPCWSTR text : {L"a", L"A", L"a", L"", L""}) context.AddUniqueString(text);
    EXPECT_EQ(context.m_stringList.GetCount(), 3);
}
