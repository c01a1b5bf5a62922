// What the drop of a tree item on the rules list makes.
#pragma once

#include <string>
#include <string_view>

#include "dialog/RowRules.h"

enum class DraggedItem { Hive, Key, Value };

struct DropPlan {
    bool refused = false;  // a hive: no row is made
    RuleKind kind = RuleKind::Unknown;
    std::wstring key;
    std::wstring value;
    int row = 0;
};

// `path` is the item's whole path with its hive, a value's own name last; `itemText` is what the tree shows for it,
// empty for the default value. `dropRow` is the row under the cursor, -1 for none, which means behind the last.
DropPlan PlanDrop(DraggedItem item, std::wstring_view path, std::wstring_view itemText, int dropRow, int rowCount);
