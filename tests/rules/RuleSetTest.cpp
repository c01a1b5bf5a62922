#include "rules/RuleSet.h"

#include <gtest/gtest.h>

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

}  // namespace
