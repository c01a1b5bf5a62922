#include "dialog/RowPlacement.h"

#include <gtest/gtest.h>
#include <random>
#include <string>

#include "dialog/InsertByWalk.h"
#include "dialog/RowOrder.h"

namespace {
// Small letters stand for the rule that their capital is.
std::wstring Inserted(std::wstring rows, int row, wchar_t added) {
    std::vector<wchar_t> letters(rows.begin(), rows.end());
    InsertByWalk(letters, row, added, [](wchar_t a, wchar_t b) { return (a | 0x20) == (b | 0x20); });
    return {letters.begin(), letters.end()};
}

int Position(unsigned habit, std::size_t i, unsigned random) {
    const int positions[] = {0, 32767, i % 2 ? 0 : 32767, static_cast<int>(i), static_cast<int>(random % 40) - 10};
    return positions[habit];
}

std::vector<PlacedRule> RandomRules(unsigned seed, std::size_t count) {
    std::mt19937 random(seed);
    const std::size_t names = 1 + random() % (count < 20 ? 8 : 400);
    const unsigned habit = random() % 5;
    std::vector<std::size_t> identities(names, count);
    std::vector<PlacedRule> rules;
    std::size_t known = 0;
    for (std::size_t i = 0; i < count; ++i) {
        std::size_t& identity = identities[random() % names];
        if (identity == count) identity = known++;
        rules.push_back({identity, Position(habit, i, static_cast<unsigned>(random()))});
    }
    return rules;
}

std::vector<std::size_t> WalkOf(const std::vector<PlacedRule>& rules) {
    std::vector<std::size_t> rows;
    const auto isSame = [&](std::size_t a, std::size_t b) { return rules[a].identity == rules[b].identity; };
    for (std::size_t i = 0; i < rules.size(); ++i) InsertByWalk(rows, rules[i].position, i, isSame);
    return rows;
}
}  // namespace

TEST(RowPlacement, ANewRuleMovesTheEqualRowToWhereItWasAskedFor) {
    const struct {
        const wchar_t* rows;
        int row;
        wchar_t added;
        const wchar_t* expected;
    } cases[] = {
        // On its own row a rule counts as standing above it, so it goes up by one.
        {L"abcd", 0, L'x', L"xabcd"},
        {L"abcd", 2, L'x', L"abxcd"},
        {L"abcd", 4, L'x', L"abcdx"},
        {L"abcd", 0, L'C', L"Cabd"},
        {L"abcd", 3, L'a', L"bcad"},
        {L"abcd", 4, L'A', L"bcdA"},
        {L"abcd", 1, L'b', L"bacd"},
        {L"abcd", 0, L'A', L"Abcd"},
        {L"abcd", 1, L'd', L"adbc"},
        {L"abcd", -1, L'x', L"xabcd"},
        {L"abcd", -7, L'b', L"bacd"},
        // Of two equal neighbours the second stays.
        {L"abBcb", 5, L'b', L"aBcb"},
    };
    for (const auto& c : cases) EXPECT_EQ(Inserted(c.rows, c.row, c.added), c.expected) << c.rows << " " << c.row;
}

TEST(RowPlacement, ThePlanEqualsTheWalkOnRandomRuleSets) {
    for (unsigned seed = 1; seed <= 4000; ++seed) {
        const std::vector<PlacedRule> rules = RandomRules(seed, seed % 24);
        ASSERT_EQ(PlanRows(rules), WalkOf(rules)) << "seed " << seed;
    }
    for (unsigned seed = 1; seed <= 15; ++seed) {
        const std::vector<PlacedRule> rules = RandomRules(seed, 700);
        ASSERT_EQ(PlanRows(rules), WalkOf(rules)) << "long, seed " << seed;
    }
}

TEST(RowOrder, InsertingAndRemovingKeepsIndexesOverBlockBounds) {
    constexpr std::size_t count = 5000;
    std::mt19937 random(7);
    RowOrder order(count);
    std::vector<std::size_t> expected;
    for (std::size_t element = 0; element < count; ++element) {
        const std::size_t index = random() % (expected.size() + 1);
        order.Insert(index, element);
        expected.insert(expected.begin() + static_cast<std::ptrdiff_t>(index), element);
        if (random() % 3) continue;
        const std::size_t gone = random() % expected.size();
        ASSERT_EQ(order.Remove(expected[gone]), gone);
        expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(gone));
    }
    EXPECT_EQ(order.Elements(), expected);
    for (; !expected.empty(); expected.pop_back()) ASSERT_EQ(order.Remove(expected.back()), expected.size() - 1);
    order.Insert(0, 3);
    EXPECT_EQ(order.Elements(), std::vector<std::size_t>{3});
}
