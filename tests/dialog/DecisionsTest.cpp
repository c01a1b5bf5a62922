// The dialog's decisions over numbers and texts: geometry, where a drop goes, where a rule's row stands.
#include <algorithm>
#include <gtest/gtest.h>
#include <random>

#include "dialog/DialogGeometry.h"
#include "dialog/DropPlan.h"
#include "dialog/RowOrder.h"
#include "dialog/RowPlacement.h"

using geometry::Box;

namespace {

// Rows as they are when one rule goes in after the other: a walk over all rows for each.
template <class Row, class IsSame>
void InsertByWalk(std::vector<Row>& rows, int row, const Row& added, IsSame isSame) {
    const auto isEqual = [&](int i) {
        return i < static_cast<int>(rows.size()) && isSame(rows[static_cast<std::size_t>(i)], added);
    };
    const int count = static_cast<int>(rows.size());
    row = DeleteEqualRows(count, std::min(row, count), isEqual, [&](int i) { rows.erase(rows.begin() + i); });
    rows.insert(rows.begin() + row, added);
}

// Small letters stand for the rule that their capital is.
std::wstring Inserted(std::wstring rows, int row, wchar_t added) {
    std::vector<wchar_t> letters(rows.begin(), rows.end());
    InsertByWalk(letters, row, added, [](wchar_t a, wchar_t b) { return (a | 0x20) == (b | 0x20); });
    return {letters.begin(), letters.end()};
}

std::vector<PlacedRule> RandomRules(unsigned seed, std::size_t count) {
    std::mt19937 random(seed);
    const std::size_t names = 1 + random() % (count < 20 ? 8 : 400);
    const unsigned habit = random() % 5;
    std::vector<std::size_t> identities(names, count);
    std::vector<PlacedRule> rules;
    for (std::size_t i = 0, known = 0; i < count; ++i) {
        std::size_t& identity = identities[random() % names];
        if (identity == count) identity = known++;
        const int positions[] = {0, 32767, i % 2 ? 0 : 32767, static_cast<int>(i),
                                 static_cast<int>(random() % 40) - 10};
        rules.push_back({identity, positions[habit]});
    }
    return rules;
}

}  // namespace

TEST(DialogDecisions, ABoxEndsBeforeItsRightAndBottomAndAHeadGrowsWithTheFontAlone) {
    const Box box{10, 20, 30, 40};
    EXPECT_TRUE(geometry::Contains(box, 10, 20) && geometry::Contains(box, 29, 39));
    EXPECT_FALSE(geometry::Contains(box, 30, 39) || geometry::Contains(box, 29, 40) || geometry::Contains(box, 9, 20));
    const struct {
        int spacing, fontHeight, frameBottom, labelTop, labelBottom;
    } cases[] = {
        {0, 13, 76, 56, 72},   // high enough already: only the label moves
        {2, 13, 80, 60, 76},   // 30 high; label at 6 + 4
        {2, 24, 102, 66, 90},  // the label becomes as high as its text
        {3, 9, 76, 60, 76},    // half of 9 is 4
    };
    for (const auto& c : cases) {
        const auto fitted = geometry::FitHeaderCell({{100, 50, 170, 76}, {105, 54, 145, 70}}, c.fontHeight,
                                                    geometry::MinFrameHeight(c.spacing, c.fontHeight),
                                                    geometry::LabelOffset(c.spacing, c.fontHeight));
        EXPECT_TRUE((fitted.frame == Box{100, 50, 170, c.frameBottom})) << c.fontHeight;
        EXPECT_TRUE((fitted.label == Box{105, c.labelTop, 145, c.labelBottom})) << c.fontHeight;
    }
    EXPECT_TRUE((geometry::SplitterBox({10, 300, 100, 40}, {90, 60, 500, 300}) == Box{90, 40, 100, 300})) << "swapped";
}

TEST(DialogDecisions, AValueLosesItsOwnNameFromThePath) {
    const struct {
        const wchar_t *path, *name, *key;
    } cases[] = {
        {L"HKCU\\Name\\Name", L"Name", L"HKCU\\Name"},
        {L"HKCU\\Software\\a\\b", L"a\\b", L"HKCU\\Software"},
        {L"HKCU\\Software\\\\", L"\\", L"HKCU\\Software"},
        {L"HKCU\\Name", L"Name", L"HKCU"},
        {L"HKCU\\Software", L"", L"HKCU\\Software"},  // a default value has no name to lose
        {L"HKCU\\", L"", L"HKCU"},
    };
    for (const auto& c : cases) EXPECT_EQ(PlanDrop(DraggedItem::Value, c.path, c.name, 0, 1).key, c.key) << c.path;
    EXPECT_EQ(PlanDrop(DraggedItem::Key, L"HKCU\\a", L"a", 0, 3).row, 0);
}

TEST(DialogDecisions, ANewRuleMovesTheEqualRowToWhereItWasAskedFor) {
    const struct {
        const wchar_t* rows;
        int row;
        wchar_t added;
        const wchar_t* expected;
    } cases[] = {
        // On its own row a rule counts as standing above it, so it goes up by one.
        {L"abcd", 0, L'x', L"xabcd"}, {L"abcd", 4, L'x', L"abcdx"},
        {L"abcd", 0, L'C', L"Cabd"},  {L"abcd", 3, L'a', L"bcad"},
        {L"abcd", 4, L'A', L"bcdA"},  {L"abcd", 1, L'b', L"bacd"},
        {L"abcd", 0, L'A', L"Abcd"},  {L"abcd", -7, L'b', L"bacd"},
        {L"abBcb", 5, L'b', L"aBcb"},  // of two equal neighbours the second stays
    };
    for (const auto& c : cases) EXPECT_EQ(Inserted(c.rows, c.row, c.added), c.expected) << c.rows << " " << c.row;
}

TEST(DialogDecisions, ThePlanOfAllRowsEqualsTheWalkForEach) {
    for (unsigned seed = 1; seed <= 4000; ++seed) {
        // Long ones go over the bounds of the order's blocks.
        const std::vector<PlacedRule> rules = RandomRules(seed, seed % 250 == 0 ? 700 : seed % 24);
        std::vector<std::size_t> rows;
        const auto isSame = [&](std::size_t a, std::size_t b) { return rules[a].identity == rules[b].identity; };
        for (std::size_t i = 0; i < rules.size(); ++i) InsertByWalk(rows, rules[i].position, i, isSame);
        ASSERT_EQ(PlanRows(rules), rows) << "seed " << seed;
    }
    // An order that was emptied takes elements again.
    RowOrder order(2);
    order.Insert(0, 1);
    EXPECT_EQ(order.Remove(1), 0u);
    order.Insert(0, 1);
    EXPECT_EQ(order.Elements(), std::vector<std::size_t>{1});
}
