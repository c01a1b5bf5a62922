#include "dialog/RuleSet.h"

#include <gtest/gtest.h>
#include <limits>

#include "dialog/Rule.h"
#include "support/Throws.h"

namespace {

// Counts its own destructions, to see who deletes records and that the real class's destructor runs.
class CCountedRule : public CKeyRule {
public:
    explicit CCountedRule(int& destroyed) : CKeyRule(L"HKCU\\a", 1, 0), m_destroyed(destroyed) {}
    ~CCountedRule() override { ++m_destroyed; }

private:
    int& m_destroyed;
};

TEST(RuleSet, TheTwoIndicesBehindTheEndRaiseAndThoseAfterThemGiveNull) {
    RuleSet<CKeyRule> set;
    for (int count = 0; count < 3; ++count) {
        for (const int index : {-1, std::numeric_limits<int>::min(), count, count + 1})
            EXPECT_TRUE(Throws<CInvalidArgException>([&] { set.At(index); })) << index << " of " << count;
        for (const int index : {count + 2, std::numeric_limits<int>::max()})
            EXPECT_EQ(set.At(index), nullptr) << index << " of " << count;
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
    EXPECT_TRUE(Throws<CInvalidArgException>([&] { set.At(0); }));
    CKeyRule* const rule = new CCountedRule(destroyed);
    set.Add(rule);
    EXPECT_EQ(set.At(0), rule);
    set.Clear();
}

}  // namespace
