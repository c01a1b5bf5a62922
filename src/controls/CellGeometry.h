// Where a cell of a report list stands: from column widths and rectangles alone. All numbers are pixels in the list's
// client coordinates.
#pragma once

#include <span>

// A cell laid out for an editor: by how much the list has to scroll to the right first (negative: to the left), and the
// cell's left and right edge after that.
struct CellPlacement {
    int scroll;
    int left;
    int right;
};

// The column that holds x in a row whose first column begins at `left`, or -1 past the last one or left of the first.
// Both edges belong to a column, so a point on a divider lies in the column on its left.
int ColumnAt(std::span<const int> widths, int left, int x);

// Places the cell of `column` (an index into `widths`) in a row that begins at `rowLeft`, in a list whose client area
// reaches from `clientLeft` to `clientRight`. A cell that begins outside is brought to the left edge; one that begins
// inside is scrolled just far enough to show its right edge, even if that hides its left one.
CellPlacement PlaceCell(std::span<const int> widths, int column, int rowLeft, int clientLeft, int clientRight);

// By how many times its own height a cell's rectangle grows downwards to hold a drop-down of `items` entries.
int DropDownRows(int items);
