// Where a rule's row goes in the rules list, and which equal row it replaces.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

// The walk before an insertion at `row`: deletes the equal row and returns the index at which the new row goes in.
// isEqual(i) says whether the row that now stands at index i is the same rule (an index past the end is not), and
// deleteRow(i) deletes it. The walk keeps its first count and goes on behind a deletion, so of two equal neighbours
// (which only an edited cell makes) the second stays.
template <typename IsEqual, typename DeleteRow>
int DeleteEqualRows(int count, int row, IsEqual isEqual, DeleteRow deleteRow) {
    for (int i = 0; i < count; ++i) {
        if (!isEqual(i)) continue;
        deleteRow(i);
        if (row >= i) --row;
    }
    // The list view refuses a negative index, and the rule would be lost: one that replaces the top row at the top, or
    // one that its host put before the first, goes to the top.
    return std::max(row, 0);
}

// One rule of the sets on its way into the list. Rules with the same number are one rule: the kind is the same exactly,
// key and value without letter case, which is for the caller to tell. Numbers go from 0 and stay below the count of
// rules.
struct PlacedRule {
    std::size_t identity = 0;
    int position = 0;  // the index at which it asks to stand; above the rows there are, it goes to the end
};

// The rows after all rules have gone in, one after the other, each by the walk above: indices into `rules`, top row
// first. The work grows nearly linearly, where the walk itself would read every row for every rule.
std::vector<std::size_t> PlanRows(std::span<const PlacedRule> rules);
