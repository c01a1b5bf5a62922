#include "rules/RuleSet.h"

#include <gtest/gtest.h>
#include <memory>

#include "rules/Rule.h"

namespace {

// Counts its own destructions, to see who deletes records and that the real class's destructor runs.
class CCountedRule : public CKeyRule {
public:
    explicit CCountedRule(int& destroyed) : CKeyRule(L"HKCU\\a", 1, 0), m_destroyed(destroyed) {}
    ~CCountedRule() override { ++m_destroyed; }

private:
    int& m_destroyed;
};

bool RaisesInvalidArgument(const RuleSet<CKeyRule>& set, int index) {
    try {
        set.At(index);
    } catch (CInvalidArgException* problem) {
        problem->Delete();
        return true;
    }
    return false;
}

TEST(Rule, KeepsWhatItWasGivenUnchecked) {
    const CString text(L'k', 32000);
    const CKeyRule key(text, -7, -2147483647 - 1);
    EXPECT_EQ(key.GetKey(), text);
    EXPECT_EQ(key.IsBranch(), -7);
    EXPECT_EQ(key.GetPosition(), -2147483647 - 1);
    const CValueRule value(L"", L"(dEFAULT)", 0);
    EXPECT_TRUE(value.GetKey().IsEmpty());
    EXPECT_STREQ(value.GetValue(), L"(dEFAULT)");
}

TEST(RuleSet, EqualRecordsStandSideBySideInTheOrderOfInsertion) {
    RuleSet<CKeyRule> set;
    CKeyRule* rules[] = {new CKeyRule(L"b", 1, 0), new CKeyRule(L"a", 0, 0), new CKeyRule(L"b", 1, 0)};
    for (CKeyRule* rule : rules) EXPECT_EQ(set.Add(rule), 1);
    EXPECT_EQ(set.Add(nullptr), 0);
    ASSERT_EQ(set.Count(), 3);
    for (const int index : {0, 1, 2, 1, 2, 0, 2}) EXPECT_EQ(set.At(index), rules[index]) << index;
    set.Clear();
}

TEST(RuleSet, TheTwoIndicesBehindTheEndRaiseAndThoseAfterThemGiveNull) {
    RuleSet<CKeyRule> set;
    for (int count = 0; count < 3; ++count) {
        SCOPED_TRACE(count);
        EXPECT_TRUE(RaisesInvalidArgument(set, -1));
        EXPECT_TRUE(RaisesInvalidArgument(set, -2147483647 - 1));
        EXPECT_TRUE(RaisesInvalidArgument(set, count));
        EXPECT_TRUE(RaisesInvalidArgument(set, count + 1));
        EXPECT_EQ(set.At(count + 2), nullptr);
        EXPECT_EQ(set.At(2147483647), nullptr);
        set.Add(new CKeyRule(L"HKCU\\a", 1, count));
    }
    set.Clear();
}

TEST(RuleSet, ClearDeletesEachRecordOnceAndTheSetServesOn) {
    int destroyed = 0;
    RuleSet<CKeyRule> set;
    set.Clear();
    set.Add(new CCountedRule(destroyed));
    set.Add(new CCountedRule(destroyed));
    set.At(1);
    set.Clear();
    set.Clear();
    EXPECT_EQ(destroyed, 2);
    EXPECT_EQ(set.Count(), 0);
    EXPECT_TRUE(RaisesInvalidArgument(set, 0));
    CKeyRule* const rule = new CCountedRule(destroyed);
    set.Add(rule);
    EXPECT_EQ(set.At(0), rule);
    set.Clear();
}

TEST(Rule, DeletingThroughTheBaseRunsTheRealDestructor) {
    int destroyed = 0;
    std::unique_ptr<CRule>(new CCountedRule(destroyed)).reset();
    EXPECT_EQ(destroyed, 1);
}

}  // namespace
