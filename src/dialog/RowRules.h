// What the cells of a row mean, and what follows from a change or a deletion.
#pragma once

#include <string>
#include <string_view>

enum class RuleKind { Branch, Key, Value, Unknown };

// The order of the choices in every combo box of kinds: index 0, 1 and 2.
inline constexpr int branchIndex = 0;
inline constexpr int keyIndex = 1;
inline constexpr int valueIndex = 2;

// The columns of the rules list.
inline constexpr int typeColumn = 0;
inline constexpr int keyColumn = 1;
inline constexpr int valueColumn = 2;

// The texts that stand for the kinds, from the string table.
struct KindTexts {
    std::wstring_view branch;
    std::wstring_view key;
    std::wstring_view value;
};

// The kind that a Type cell says; texts are compared exactly. A row of unknown kind makes no rule.
RuleKind KindOfCell(std::wstring_view typeCell, const KindTexts& texts);

// What must be written after an edit of a cell, so that Type and Value stay in step.
struct CellFollowUp {
    int column = -1;  // -1: nothing is written
    std::wstring_view text;
    bool edit = false;  // the written cell is opened for editing at once
};

// `column` was edited; typeCell and valueCell are the texts after it.
CellFollowUp FollowCellChange(int column, std::wstring_view typeCell, std::wstring_view valueCell,
                              const KindTexts& texts, std::wstring_view defaultValueText);

// The row that is selected after a deletion, -1 when no row is left. `from` is the row that was deleted, or the count
// before when none was.
int RowAfterDeletion(int from, int countAfter);
