// The user list: who stays, who goes, and who is deleted how often.
#include "profiles/EngineContext.h"

#include <gtest/gtest.h>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "crypto/Encryptor.h"
#include "support/LogCapture.h"

namespace {

// How often the user of each mark was deleted.
std::map<int, int> s_deleted;

struct TestUser : CBvUserProfileBase {
    TestUser(int itsMark, LPCWSTR domain, LPCWSTR name, LPCWSTR path, bool hasHive = true, bool requiresLoad = false)
        : mark(itsMark), m_hasHive(hasHive), m_requiresLoad(requiresLoad) {
        m_domain = domain;
        m_userName = name;
        m_profilePath = path;
    }
    ~TestUser() noexcept(false) override {
        ++s_deleted[mark];
        if (throws) throws();
    }
    bool HasProfileHive() override { return m_hasHive; }
    bool RequiresHiveLoad() override { return m_requiresLoad; }

    int mark;
    void (*throws)() = nullptr;

private:
    bool m_hasHive;
    bool m_requiresLoad;
};

using Marks = std::vector<int>;

Marks MarksOf(const CEngineContext& context) {
    Marks marks;
    for (INT_PTR i = 0; i < context.m_users.GetCount(); ++i) {
        marks.push_back(static_cast<TestUser*>(context.m_users.GetAt(i))->mark);
    }
    return marks;
}

class UserList : public testing::Test {
protected:
    UserList() { s_deleted.clear(); }
    ~UserList() override { m_context.ClearUserList(); }

    CEngineContext m_context;
};

}  // namespace

// The list holds 1 = CORP\Ann and 2 = CORP\Bob; 3 is CORP\Ann again.
TEST_F(UserList, ADuplicateStaysGoesOrBecomesSubordinate) {
    struct Hive {
        bool has;
        bool requiresLoad;
    };
    constexpr Hive kLoaded{true, false};
    constexpr Hive kUnloaded{true, true};
    constexpr Hive kNone{false, false};
    const struct {
        Hive existing;
        Hive added;
        LPCWSTR path;
        LONGLONG precedence;  // of the added one; the existing one has 5
        Marks list;
        Marks deleted;
        int subordinateOf1, subordinateOf3;
        LPCWSTR message;
    } cases[] = {
        {kLoaded,
         kUnloaded,
         L"C:\\b",
         9,
         {1, 2},
         {3},
         0,
         0,
         L"Skipping duplicate profile that requires hive to be loaded: corp\\ANN"},
        {kUnloaded,
         kNone,
         L"C:\\a",
         1,
         {2, 3},
         {1},
         0,
         0,
         L"Replacing duplicate profile with one that doesn't require hive to be loaded: corp\\ANN"},
        {kLoaded,
         kLoaded,
         L"c:\\A",
         9,
         {1, 2},
         {3},
         0,
         0,
         L"Skipping duplicate profile 'corp\\ANN' with duplicate profile path: 'c:\\A'"},
        {kNone,
         kUnloaded,
         L"C:\\b",
         6,
         {2, 3},
         {},
         0,
         1,
         L"Making existing profile subordinate to new profile 'corp\\ANN'"},
        {kUnloaded,
         kLoaded,
         L"C:\\b",
         5,
         {1, 2},
         {},
         3,
         0,
         L"Making new profile subordinate to existing duplicate 'corp\\ANN'"},
    };
    for (const auto& each : cases) {
        s_deleted.clear();
        CEngineContext context;
        const LogCapture log;
        auto* ann = new TestUser(1, L"CORP", L"Ann", L"C:\\a", each.existing.has, each.existing.requiresLoad);
        ann->m_precedence = 5;
        context.AddUserToUserList(ann);
        context.AddUserToUserList(new TestUser(2, L"CORP", L"Bob", L"C:\\a"));
        auto* again = new TestUser(3, L"corp", L"ANN", each.path, each.added.has, each.added.requiresLoad);
        again->m_precedence = each.precedence;
        context.AddUserToUserList(again);

        const auto lines = log.GetLines();
        EXPECT_EQ(lines[1].message, L"Adding user:Ann domain:CORP profile path C:\\a");
        EXPECT_EQ(lines[lines.size() - 2], (LogCapture::Line{LogLevel::Informational, each.message}));
        EXPECT_EQ(MarksOf(context), each.list);
        Marks deleted;
        for (const auto& [mark, times] : s_deleted) deleted.insert(deleted.end(), static_cast<size_t>(times), mark);
        EXPECT_EQ(deleted, each.deleted);
        CBvUserProfileBase* const subordinateOf1 = s_deleted[1] == 0 ? ann->m_subordinate : nullptr;
        CBvUserProfileBase* const subordinateOf3 = s_deleted[3] == 0 ? again->m_subordinate : nullptr;
        EXPECT_EQ(subordinateOf1, each.subordinateOf1 == 0 ? nullptr : again);
        EXPECT_EQ(subordinateOf3, each.subordinateOf3 == 0 ? nullptr : ann);
        // Subordinates are the host's.
        context.ClearUserList();
        EXPECT_EQ(context.m_users.GetCount(), 0);
        delete subordinateOf1;
        delete subordinateOf3;
        EXPECT_EQ(s_deleted, (std::map<int, int>{{1, 1}, {2, 1}, {3, 1}}));
    }
}

TEST_F(UserList, DomainAndNameTogetherMakeADuplicate) {
    m_context.ClearUserList();
    const LPCWSTR names[][2] = {
        {L"CORP", L"Ann"}, {L"OTHER", L"Ann"}, {L"CORPA", L"nn"}, {L"CORP", L"\xC4nn"}, {L"", L""}};
    for (const auto& name : names) m_context.AddUserToUserList(new TestUser(1, name[0], name[1], L"p"));
    EXPECT_EQ(m_context.m_users.GetCount(), 5);
    m_context.AddUserToUserList(new TestUser(9, L"corp", L"\xE4NN", L"P"));
    m_context.AddUserToUserList(m_context.m_users.GetAt(0));
    m_context.AddUserToUserList(nullptr);
    EXPECT_EQ(m_context.m_users.GetCount(), 5);
    EXPECT_EQ(s_deleted, (std::map<int, int>{{9, 1}})) << "one that is in the list does not go";
}

TEST_F(UserList, TheThirdProfileOverwritesTheSubordinate) {
    TestUser* users[3] = {};
    for (int i = 0; i < 3; ++i) {
        users[i] = new TestUser(i, L"d", L"u", std::to_wstring(i).c_str());
        m_context.AddUserToUserList(users[i]);
    }
    EXPECT_EQ(MarksOf(m_context), (Marks{0}));
    EXPECT_EQ(users[0]->m_subordinate, users[2]);
    EXPECT_TRUE(s_deleted.empty());
    delete users[1];
    delete users[2];
}

TEST_F(UserList, AThrowingDestructorStopsNothing) {
    void (*const throwing[])() = {[] { throw std::runtime_error("x"); }, nullptr, AfxThrowUserException,
                                  [] { throw 5; }};
    for (int i = 0; i < 4; ++i) {
        auto* user = new TestUser(i, std::to_wstring(i).c_str(), L"u", L"p");
        user->throws = throwing[i];
        m_context.AddUserToUserList(user);
    }
    m_context.m_users.Add(nullptr);
    const LogCapture log;
    m_context.ClearUserList();
    EXPECT_EQ(m_context.m_users.GetCount(), 0);
    EXPECT_EQ(s_deleted, (std::map<int, int>{{0, 1}, {1, 1}, {2, 1}, {3, 1}}));
    const LogCapture::Line warning{LogLevel::Warning,
                                   L"[CEngineContext::ClearUserList] Exception thrown while deleting user object"};
    EXPECT_EQ(log.GetLines(), (std::vector<LogCapture::Line>{warning, warning, warning}));
}

TEST_F(UserList, TheContextLeavesItsUsersAlone) {
    auto* user = new TestUser(1, L"d", L"u", L"p");
    { CEngineContext().AddUserToUserList(user); }
    EXPECT_TRUE(s_deleted.empty());
    delete user;
}

TEST(EngineContext, StringsAreUniqueByExactComparison) {
    CEngineContext context;
    for (const LPCWSTR text : {L"a", L"A", L"a", L"", L""}) context.AddUniqueString(text);
    EXPECT_EQ(context.m_stringList.GetCount(), 3);
    CStringList other;
    CEngineContext::AddUniqueString(L"a", other);
    EXPECT_EQ(other.GetCount(), 1);
}

TEST(EngineContext, TheSecretIsWhatTheEncryptorMakesOfTheText) {
    CEngineContext context;
    context.SetSecret(L"abc", kEncryptorAes256);
    // SHA-512 of "abc", as published.
    constexpr BYTE kStart[] = {0xDD, 0xAF, 0x35, 0xA1, 0x93, 0x61, 0x7A, 0xBA};
    ASSERT_EQ(context.m_secretSize, 64u);
    EXPECT_EQ(std::vector<BYTE>(context.m_secretData.get(), context.m_secretData.get() + 8),
              std::vector<BYTE>(kStart, kStart + 8));
    EXPECT_EQ(context.m_secretKind, kEncryptorAes256);
    context.SetSecret(L"other", 99);
    EXPECT_EQ(context.m_secretSize, 64u) << "no such encryptor";
    // From its own buffer, which must not be gone before it is read.
    context.SetSecretBlob(context.m_secretData.get() + 1, 7, 3);
    EXPECT_EQ(std::vector<BYTE>(context.m_secretData.get(), context.m_secretData.get() + 7),
              std::vector<BYTE>(kStart + 1, kStart + 8));
    EXPECT_EQ(context.m_secretKind, 3);
    context.SetSecretBlob(nullptr, 0, 4);
    EXPECT_EQ(context.m_secretData, nullptr);
    EXPECT_EQ(context.m_secretSize, 0u);
}
