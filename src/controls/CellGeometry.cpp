#include "controls/CellGeometry.h"

#include <numeric>

int ColumnAt(std::span<const int> widths, int left, int x) {
    for (std::size_t column = 0; column < widths.size(); ++column) {
        if (left <= x && x <= left + widths[column]) {
            return static_cast<int>(column);
        }
        left += widths[column];
    }
    return -1;
}

CellPlacement PlaceCell(std::span<const int> widths, int column, int rowLeft, int clientLeft, int clientRight) {
    const auto index = static_cast<std::size_t>(column);
    const int before = std::accumulate(widths.begin(), widths.begin() + column, 0);
    const int width = widths[index];
    const int x = rowLeft + before;

    int scroll = x;
    if (clientLeft <= x && x <= clientRight) {
        scroll = x + width > clientRight ? x + width - clientRight : 0;
    }
    return {scroll, x - scroll, x - scroll + width};
}

int DropDownRows(int items) {
    // A list of nine gets more room than one of twenty: the rule falls back to a fixed height from ten entries on.
    constexpr int kManyItems = 10;
    constexpr int kRowsForMany = 11;
    return items < kManyItems ? items + kManyItems : kRowsForMany;
}
