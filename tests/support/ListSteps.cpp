#include "support/ListSteps.h"

#include "support/Dialog.h"

namespace {

std::string CellName(int row, int column) {
    return "cell " + std::to_string(row) + "," + std::to_string(column) + " of the list";
}

}  // namespace

int ListSteps::RowCount() const {
    return ListView_GetItemCount(m_list);
}

int ListSteps::ColumnCount() const {
    return Header_GetItemCount(ListView_GetHeader(m_list));
}

std::wstring ListSteps::Text(int row, int column) const {
    for (std::wstring text(256, L'\0');; text.resize(text.size() * 4)) {
        LVITEMW item{};
        item.iSubItem = column;
        item.pszText = text.data();
        item.cchTextMax = static_cast<int>(text.size());
        const auto length = static_cast<size_t>(
            SendMessageW(m_list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item)));
        if (length + 1 < text.size()) return text.substr(0, length);
    }
}

std::vector<std::wstring> ListSteps::Row(int row) const {
    std::vector<std::wstring> texts;
    for (int column = 0; column < ColumnCount(); ++column) texts.push_back(Text(row, column));
    return texts;
}

std::vector<std::vector<std::wstring>> ListSteps::Rows() const {
    std::vector<std::vector<std::wstring>> rows;
    for (int row = 0; row < RowCount(); ++row) rows.push_back(Row(row));
    return rows;
}

int ListSteps::RowWithState(UINT state) const {
    for (int row = 0; row < RowCount(); ++row) {
        if (ListView_GetItemState(m_list, row, state) == state) return row;
    }
    return -1;
}

RECT ListSteps::CellRect(int row, int column) const {
    if (row < 0 || row >= RowCount()) m_dialog.Fail("no " + CellName(row, column));
    ListView_EnsureVisible(m_list, row, FALSE);
    m_dialog.Settle();
    RECT area{};
    area.left = LVIR_BOUNDS;
    area.top = column;
    if (!SendMessageW(m_list, LVM_GETSUBITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&area))) {
        m_dialog.Fail("no " + CellName(row, column));
    }
    // The system gives the whole row for the first column.
    if (column == 0) area.right = area.left + ListView_GetColumnWidth(m_list, 0);
    MapWindowPoints(m_list, nullptr, reinterpret_cast<POINT*>(&area), 2);
    return area;
}

POINT ListSteps::Centre(int row, int column) const {
    const RECT area = CellRect(row, column);
    return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

POINT ListSteps::BehindRows() const {
    RECT area{};
    GetClientRect(m_list, &area);
    POINT place{area.right / 2, area.bottom - 2};
    LVHITTESTINFO hit{};
    hit.pt = place;
    if (SendMessageW(m_list, LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)) != -1) {
        m_dialog.Fail("no room behind the rows of the list");
    }
    ClientToScreen(m_list, &place);
    return place;
}

void ListSteps::Click(int row, int column) {
    m_dialog.Click(Centre(row, column));
}

void ListSteps::DoubleClick(int row, int column) {
    m_dialog.DoubleClick(Centre(row, column));
}
