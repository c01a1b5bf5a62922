// A list view of the dialog: what stands in it, and steps on its cells.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <string>
#include <vector>

class Dialog;

class ListSteps {
public:
    ListSteps(Dialog& dialog, HWND list) : m_dialog(dialog), m_list(list) {}

    HWND Window() const { return m_list; }
    int RowCount() const;
    int ColumnCount() const;
    std::wstring Text(int row, int column) const;
    std::vector<std::wstring> Row(int row) const;
    // Every row with the texts of its columns.
    std::vector<std::vector<std::wstring>> Rows() const;
    // The first row that has all the bits of state (LVIS_SELECTED, LVIS_FOCUSED, LVIS_DROPHILITED), or -1.
    int RowWithState(UINT state) const;
    int SelectedRow() const { return RowWithState(LVIS_SELECTED); }

    // The cell's middle on the screen, and its rectangle; the row is scrolled into view first.
    POINT Centre(int row, int column) const;
    RECT CellRect(int row, int column) const;
    // A place on the screen inside the list, behind the last row.
    POINT BehindRows() const;
    void Click(int row, int column);
    void DoubleClick(int row, int column);

private:
    Dialog& m_dialog;
    HWND m_list;
};
