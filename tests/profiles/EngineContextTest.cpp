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
    TestUser(int itsMark, LPCWSTR domain, LPCWSTR name, LPCWSTR path) : mark(itsMark) {
        m_domain = domain;
        m_userName = name;
        m_profilePath = path;
    }
    ~TestUser() noexcept(false) override {
        ++s_deleted[mark];
        if (throws) throws();
    }
    bool HasProfileHive() override { return hasHive; }
    bool RequiresHiveLoad() override { return requiresLoad; }

    int mark;
    bool hasHive = true;
    bool requiresLoad = false;
    void (*throws)() = nullptr;
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

// The list holds 1 = CORP\Ann with precedence 5 and 2 = CORP\Bob; 3 is CORP\Ann again. All combinations of hives are
// the decision's own test.
TEST_F(UserList, ADuplicateStaysGoesOrBecomesSubordinate) {
    const struct {
        bool existingRequiresLoad, hasHive, requiresLoad;
        LPCWSTR path;
        LONGLONG precedence;
        Marks list;
        std::map<int, int> deleted;
        int subordinateOf1, subordinateOf3;
        LPCWSTR message;
    } cases[] = {
        {false,
         true,
         true,
         L"C:\\b",
         9,
         {1, 2},
         {{3, 1}},
         0,
         0,
         L"Skipping duplicate profile that requires hive to be loaded: corp\\ANN"},
        {true,
         false,
         false,
         L"C:\\a",
         1,
         {2, 3},
         {{1, 1}},
         0,
         0,
         L"Replacing duplicate profile with one that doesn't require hive to be loaded: corp\\ANN"},
        {false,
         true,
         false,
         L"c:\\A",
         9,
         {1, 2},
         {{3, 1}},
         0,
         0,
         L"Skipping duplicate profile 'corp\\ANN' with duplicate profile path: 'c:\\A'"},
        {true,
         true,
         true,
         L"C:\\b",
         6,
         {2, 3},
         {},
         0,
         1,
         L"Making existing profile subordinate to new profile 'corp\\ANN'"},
        {true,
         true,
         false,
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
        const LogCapture log;
        auto* ann = new TestUser(1, L"CORP", L"Ann", L"C:\\a");
        ann->requiresLoad = each.existingRequiresLoad;
        ann->m_precedence = 5;
        m_context.AddUserToUserList(ann);
        m_context.AddUserToUserList(new TestUser(2, L"CORP", L"Bob", L"C:\\a"));
        auto* again = new TestUser(3, L"corp", L"ANN", each.path);
        again->hasHive = each.hasHive;
        again->requiresLoad = each.requiresLoad;
        again->m_precedence = each.precedence;
        m_context.AddUserToUserList(again);

        EXPECT_EQ(log.GetLines()[1].message, L"Adding user:Ann domain:CORP profile path C:\\a");
        EXPECT_EQ(log.Messages(LogLevel::Informational), std::vector<std::wstring>{each.message});
        EXPECT_EQ(MarksOf(m_context), each.list);
        EXPECT_EQ(s_deleted, each.deleted);
        CBvUserProfileBase* const below1 = each.deleted.contains(1) ? nullptr : ann->m_subordinate;
        CBvUserProfileBase* const below3 = each.deleted.contains(3) ? nullptr : again->m_subordinate;
        EXPECT_EQ(below1, each.subordinateOf1 == 0 ? nullptr : again);
        EXPECT_EQ(below3, each.subordinateOf3 == 0 ? nullptr : ann);
        // Subordinates are the host's.
        m_context.ClearUserList();
        delete below1;
        delete below3;
        EXPECT_EQ(s_deleted, (std::map<int, int>{{1, 1}, {2, 1}, {3, 1}}));
    }
}

TEST_F(UserList, DomainAndNameTogetherMakeADuplicate) {
    const LPCWSTR names[][2] = {{L"CORP", L"\xC4nn"}, {L"OTHER", L"\xC4nn"}, {L"CORP\xC4", L"nn"}, {L"", L""}};
    for (const auto& name : names) m_context.AddUserToUserList(new TestUser(1, name[0], name[1], L"p"));
    m_context.AddUserToUserList(new TestUser(9, L"corp", L"\xE4NN", L"P"));
    m_context.AddUserToUserList(m_context.m_users.GetAt(0));
    m_context.AddUserToUserList(nullptr);
    EXPECT_EQ(m_context.m_users.GetCount(), 4);
    EXPECT_EQ(s_deleted, (std::map<int, int>{{9, 1}})) << "one that is in the list does not go";
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
    EXPECT_EQ(
        log.Messages(LogLevel::Warning),
        std::vector<std::wstring>(3, L"[CEngineContext::ClearUserList] Exception thrown while deleting user object"));
}

TEST(EngineContext, KeepsUniqueStringsAndWhatTheEncryptorMakesOfASecret) {
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
    for (const LPCWSTR text : {L"a", L"A", L"a", L"", L""}) context.AddUniqueString(text);
    EXPECT_EQ(context.m_stringList.GetCount(), 3);
    context.SetSecretBlob(nullptr, 0, 4);
    EXPECT_EQ(context.m_secretData, nullptr);
    EXPECT_EQ(context.m_secretSize, 0u);
}
