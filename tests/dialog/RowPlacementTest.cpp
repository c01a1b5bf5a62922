#include "dialog/RowPlacement.h"

#include <cwctype>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>

#include "dialog/RowOrder.h"

namespace {
struct Row {
    std::wstring kind, key, value;
    std::size_t rule = 0;
    std::wstring folded;
};

std::wstring Folded(std::wstring text) {
    for (wchar_t& c : text) c = static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(c)));
    return text;
}

bool IsSameRule(const Row& a, const Row& b) {
    return a.folded == b.folded;
}

Row MakeRow(const wchar_t* kind, std::wstring key, std::wstring value, std::size_t rule = 0) {
    std::wstring folded = kind + (L"|" + Folded(key)) + L"|" + Folded(value);
    return {kind, std::move(key), std::move(value), rule, std::move(folded)};
}

// The rows as the dialog makes them one by one: a walk over all rows for each insertion.
void InsertByWalk(std::vector<Row>& rows, int row, const Row& added) {
    const int count = static_cast<int>(rows.size());
    row = DeleteEqualRows(
        count, row,
        [&](int i) {
            return i < static_cast<int>(rows.size()) && IsSameRule(rows[static_cast<std::size_t>(i)], added);
        },
        [&](int i) { rows.erase(rows.begin() + i); });
    rows.insert(rows.begin() + std::min(row, static_cast<int>(rows.size())), added);
}

std::vector<std::size_t> RulesOf(const std::vector<Row>& rows) {
    std::vector<std::size_t> rules;
    for (const Row& row : rows) rules.push_back(row.rule);
    return rules;
}

std::wstring KeysOf(const std::vector<Row>& rows) {
    std::wstring keys;
    for (const Row& row : rows) keys += row.key;
    return keys;
}

struct RandomRules {
    std::vector<Row> rows;
    std::vector<int> positions;

    RandomRules(unsigned seed, std::size_t count) {
        std::mt19937 random(seed);
        const unsigned names = 1 + random() % (count < 20 ? 8 : 400);
        const unsigned habit = random() % 5;
        for (std::size_t i = 0; i < count; ++i) {
            const wchar_t* const kinds[] = {L"Branch", L"Key", L"Value", L"branch"};
            std::wstring key = (random() % 2 ? L"HKCU\\k" : L"hkcu\\K") + std::to_wstring(random() % names);
            std::wstring value = random() % 3 ? L"" : (random() % 2 ? L"Name" : L"NAME");
            rows.push_back(MakeRow(kinds[random() % 4], std::move(key), std::move(value), i));
            positions.push_back(Position(habit, i, static_cast<unsigned>(random())));
        }
    }

    static int Position(unsigned habit, std::size_t i, unsigned random) {
        switch (habit) {
            case 0:
                return 0;
            case 1:
                return 32767;
            case 2:
                return i % 2 ? 0 : 32767;
            case 3:
                return static_cast<int>(i);
            default:
                return static_cast<int>(random % 40) - 10;
        }
    }
};

std::vector<std::size_t> PlanOf(const RandomRules& rules) {
    std::map<std::wstring, std::size_t> identities;
    std::vector<PlacedRule> placed;
    for (std::size_t i = 0; i < rules.rows.size(); ++i)
        placed.push_back({identities.try_emplace(rules.rows[i].folded, i).first->second, rules.positions[i]});
    return PlanRows(placed);
}

std::vector<std::size_t> WalkOf(const RandomRules& rules) {
    std::vector<Row> rows;
    for (std::size_t i = 0; i < rules.rows.size(); ++i)
        InsertByWalk(rows, std::min(rules.positions[i], static_cast<int>(rows.size())), rules.rows[i]);
    return RulesOf(rows);
}
}  // namespace

TEST(RowPlacement, ANewRuleMovesTheEqualRowToWhereItWasAskedFor) {
    const struct {
        int row;
        const wchar_t* key;
        const wchar_t* expected;
    } cases[] = {
        // On its own row a rule counts as standing above it, so it goes up by one.
        {0, L"x", L"xabcd"}, {2, L"x", L"abxcd"}, {4, L"x", L"abcdx"},  {0, L"C", L"Cabd"},
        {3, L"a", L"bcad"},  {4, L"A", L"bcdA"},  {1, L"b", L"bacd"},   {0, L"a", L"abcd"},
        {0, L"A", L"Abcd"},  {1, L"d", L"adbc"},  {-1, L"x", L"xabcd"}, {-7, L"b", L"bacd"},
    };
    for (const auto& c : cases) {
        std::vector<Row> rows;
        for (const wchar_t* key : {L"a", L"b", L"c", L"d"}) rows.push_back(MakeRow(L"Key", key, L""));
        InsertByWalk(rows, c.row, MakeRow(L"Key", c.key, L""));
        EXPECT_EQ(KeysOf(rows), c.expected) << "row " << c.row;
    }
}

TEST(RowPlacement, KindIsComparedExactlyKeyAndValueWithoutCase) {
    std::vector<Row> rows{MakeRow(L"Key", L"a", L"v")};
    InsertByWalk(rows, 1, MakeRow(L"Branch", L"a", L"v"));
    InsertByWalk(rows, 2, MakeRow(L"key", L"a", L"v"));
    InsertByWalk(rows, 3, MakeRow(L"Key", L"a", L"w"));
    EXPECT_EQ(rows.size(), 4u);
    InsertByWalk(rows, 4, MakeRow(L"Key", L"A", L"V"));
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows.back().key, L"A");
}

TEST(RowPlacement, OfTwoEqualNeighboursTheSecondStays) {
    std::vector<Row> rows;
    for (const wchar_t* key : {L"a", L"b", L"B", L"c", L"b"}) rows.push_back(MakeRow(L"Key", key, L""));
    InsertByWalk(rows, 5, MakeRow(L"Key", L"b", L"new"));
    EXPECT_EQ(KeysOf(rows), L"abBcbb") << "another value is another rule";
    rows.pop_back();
    InsertByWalk(rows, 5, MakeRow(L"Key", L"b", L""));
    EXPECT_EQ(KeysOf(rows), L"aBcb");
}

TEST(RowPlacement, AlternatingKindsComeBackInTheirOldOrder) {
    // Key rules go in first, value rules after them, each at the position it had.
    const PlacedRule rules[] = {{0, 0}, {1, 2}, {2, 1}, {3, 3}};
    EXPECT_EQ(PlanRows(rules), (std::vector<std::size_t>{0, 2, 1, 3}));
}

TEST(RowPlacement, ThePlanEqualsTheWalkOnRandomRuleSets) {
    for (unsigned seed = 1; seed <= 4000; ++seed) {
        const RandomRules rules(seed, seed % 24);
        ASSERT_EQ(PlanOf(rules), WalkOf(rules)) << "seed " << seed;
    }
    for (unsigned seed = 1; seed <= 15; ++seed) {
        const RandomRules rules(seed, 700);
        ASSERT_EQ(PlanOf(rules), WalkOf(rules)) << "long, seed " << seed;
    }
}

TEST(RowOrder, InsertingAndRemovingKeepsIndexesOverBlockBounds) {
    std::mt19937 random(7);
    RowOrder order(5000);
    std::vector<std::size_t> expected;
    for (std::size_t element = 0; element < 5000; ++element) {
        const std::size_t index = random() % (expected.size() + 1);
        order.Insert(index, element);
        expected.insert(expected.begin() + static_cast<std::ptrdiff_t>(index), element);
        if (random() % 3) continue;
        const std::size_t gone = random() % expected.size();
        ASSERT_EQ(order.Remove(expected[gone]), gone);
        expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(gone));
    }
    EXPECT_EQ(order.Count(), expected.size());
    EXPECT_EQ(order.Elements(), expected);
    while (!expected.empty()) {
        ASSERT_EQ(order.Remove(expected.back()), expected.size() - 1);
        expected.pop_back();
    }
    order.Insert(0, 3);
    EXPECT_EQ(order.Elements(), std::vector<std::size_t>{3});
}
