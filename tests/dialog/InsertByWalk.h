// Rows as the dialog makes them when one rule goes in after the other: a walk over all rows for each.
#pragma once

#include <algorithm>
#include <vector>

#include "dialog/RowPlacement.h"

// Inserts at `row`, or at the end where there are fewer rows. isSame tells which rows are one rule.
template <class Row, class IsSame>
void InsertByWalk(std::vector<Row>& rows, int row, const Row& added, IsSame isSame) {
    const auto isEqual = [&](int i) {
        return i < static_cast<int>(rows.size()) && isSame(rows[static_cast<std::size_t>(i)], added);
    };
    const int count = static_cast<int>(rows.size());
    row = DeleteEqualRows(count, std::min(row, count), isEqual, [&](int i) { rows.erase(rows.begin() + i); });
    rows.insert(rows.begin() + row, added);
}
