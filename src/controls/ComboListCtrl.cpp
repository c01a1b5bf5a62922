#include "controls/ComboListCtrl.h"

#include <algorithm>
#include <vector>

#include "controls/AccessibleName.h"
#include "controls/CellGeometry.h"
#include "entry/InPlaceCombo.h"
#include "entry/InPlaceEdit.h"
#include "entry/PrivateMessages.h"

namespace {

constexpr int kNarrowestDropDown = 10;

bool IsDown(int key) {
    constexpr SHORT kDown = 0x80;
    return (GetKeyState(key) & kDown) != 0;
}

}  // namespace

BEGIN_MESSAGE_MAP(CComboListCtrl, CListCtrl)
ON_WM_HSCROLL()
ON_WM_VSCROLL()
ON_MESSAGE(WM_MOUSEWHEEL, &CComboListCtrl::OnWheel)
ON_MESSAGE(WM_MOUSEHWHEEL, &CComboListCtrl::OnWheel)
ON_WM_LBUTTONDOWN()
ON_WM_LBUTTONDBLCLK()
ON_WM_KEYDOWN()
ON_WM_KEYUP()
ON_NOTIFY_REFLECT(LVN_BEGINLABELEDITW, &CComboListCtrl::OnBeginLabelEdit)
ON_NOTIFY_REFLECT(LVN_ENDLABELEDITW, &CComboListCtrl::OnEndLabelEdit)
ON_NOTIFY_REFLECT(LVN_INSERTITEM, &CComboListCtrl::OnInsertItem)
ON_NOTIFY_REFLECT(HDN_ITEMCLICKW, &CComboListCtrl::OnHeaderClick)
END_MESSAGE_MAP()

CComboListCtrl::~CComboListCtrl() {
    CInPlaceEdit::DeleteInstance();
    CInPlaceCombo::DeleteInstance();
}

void CComboListCtrl::SetComboColumns(int column, bool combo) {
    m_ComboColumns.Set(column, combo);
}
void CComboListCtrl::SetReadOnlyColumns(int column, bool readOnly) {
    m_ReadOnlyColumns.Set(column, readOnly);
}
bool CComboListCtrl::IsCombo(int column) const {
    return m_ComboColumns.Contains(column);
}
bool CComboListCtrl::IsReadOnly(int column) const {
    return m_ReadOnlyColumns.Contains(column);
}
void CComboListCtrl::SetValidEditCtrlCharacters(const CString& characters) {
    m_strValidEditCtrlChars = characters;
}
void CComboListCtrl::EnableCellEdit(bool enabled) {
    m_bEnabled = enabled ? TRUE : FALSE;
}

LRESULT CComboListCtrl::TellParent(UINT message, WPARAM wParam, LPARAM lParam) const {
    return ::SendMessageW(::GetParent(m_hWnd), message, wParam, lParam);
}

int CComboListCtrl::ColumnCount() const {
    const CHeaderCtrl* header = GetHeaderCtrl();
    return header != nullptr ? header->GetItemCount() : 0;
}

bool CComboListCtrl::HasColumn(int column) const {
    return column >= 0 && column < ColumnCount();
}

std::vector<int> CComboListCtrl::ColumnWidths() const {
    std::vector<int> widths(static_cast<size_t>(std::max(ColumnCount(), 0)));
    for (size_t column = 0; column < widths.size(); ++column) {
        widths[column] = GetColumnWidth(static_cast<int>(column));
    }
    return widths;
}

bool CComboListCtrl::HitTestEx(CPoint point, int* row, int* column) const {
    if (row == nullptr || column == nullptr) {
        return false;
    }
    *row = HitTest(point);
    *column = 0;
    if ((GetStyle() & LVS_TYPEMASK) != LVS_REPORT) {
        return false;
    }
    CRect bounds;
    if (*row == -1 || !GetItemRect(*row, &bounds, LVIR_BOUNDS) || !bounds.PtInRect(point)) {
        return false;
    }
    const int hit = ColumnAt(ColumnWidths(), bounds.left, point.x);
    if (hit < 0) {
        return false;
    }
    *column = hit;
    return true;
}

bool CComboListCtrl::CalculateCellRect(int column, int row, CRect& rect) {
    CRect bounds;
    // The system may give bounds for rows that do not exist.
    if (!HasColumn(column) || row < 0 || row >= GetItemCount() || !GetItemRect(row, &bounds, LVIR_BOUNDS)) {
        return false;
    }
    CRect client;
    GetClientRect(&client);
    if (client.right < bounds.right) {
        bounds.right = client.right;
    }
    ScrollToView(column, bounds);
    rect = bounds;
    return true;
}

void CComboListCtrl::ScrollToView(int column, CRect& rect) {
    if (!HasColumn(column)) {
        return;
    }
    CRect client;
    GetClientRect(&client);
    const CellPlacement placed = PlaceCell(ColumnWidths(), column, rect.left, client.left, client.right);
    Scroll(CSize(placed.scroll, 0));
    rect.left = placed.left;
    rect.right = placed.right;
}

void CComboListCtrl::EditCell(int row, int column) {
    if (CInPlaceEdit::IsActive() || !m_bEnabled || row == -1) {
        return;
    }
    const CString text = GetItemText(row, column);
    if (GetItemState(row, LVIS_FOCUSED) == 0 || (GetStyle() & LVS_EDITLABELS) == 0) {
        return;
    }
    if (IsCombo(column)) {
        CStringList items(10);
        TellParent(RRM_FILL_COMBO, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&items));
        if (CInPlaceCombo* combo = ShowInPlaceCombo(row, column, items, text, -1)) {
            combo->SelectString(-1, text);
        }
    } else if (!IsReadOnly(column)) {
        ShowInPlaceEdit(row, column, text);
    }
}

void CComboListCtrl::ShowInPlaceEdit(int row, int column, const CString& text) {
    CRect rect;
    if (!CalculateCellRect(column, row, rect)) {
        return;
    }
    --rect.bottom;
    CInPlaceEdit::GetInstance()->ShowEditCtrl(m_dwEditCtrlStyle, rect, this, 0, row, column, m_strValidEditCtrlChars,
                                              text);
    NameEditor(CInPlaceEdit::GetInstance()->m_hWnd, column);
}

CInPlaceCombo* CComboListCtrl::ShowInPlaceCombo(int row, int column, const CStringList& items, const CString& text,
                                                int selection) {
    CRect rect;
    if (!EnsureVisible(row, TRUE) || !HasColumn(column) || GetColumnWidth(column) < kNarrowestDropDown ||
        !CalculateCellRect(column, row, rect)) {
        return nullptr;
    }
    rect.bottom += rect.Height() * DropDownRows(static_cast<int>(items.GetCount()));
    CInPlaceCombo* combo = CInPlaceCombo::GetInstance();
    const BOOL shown = combo->ShowComboCtrl(m_dwDropDownCtrlStyle, rect, this, 0, row, column, items, text, selection);
    if (!shown) return nullptr;
    NameEditor(combo->m_hWnd, column);
    return combo;
}

void CComboListCtrl::NameEditor(HWND editor, int column) const {
    WCHAR header[80] = {};
    LVCOLUMNW asked{};
    asked.mask = LVCF_TEXT;
    asked.pszText = header;
    asked.cchTextMax = static_cast<int>(std::size(header));
    if (ListView_GetColumn(m_hWnd, column, &asked)) SetAccessibleName(editor, header);
}

bool CComboListCtrl::EndOpenEdit() {
    // The end of one may open another: a Type that became Value asks for the name.
    for (HWND editor = ::GetFocus(); ::IsChild(m_hWnd, editor); editor = ::GetFocus()) {
        SetFocus();
        if (::GetFocus() == editor) {
            return false;
        }
    }
    return true;
}

void CComboListCtrl::TakeFocus() {
    if (GetFocus() != this) {
        SetFocus();
    }
}

void CComboListCtrl::OnHScroll(UINT code, UINT position, CScrollBar* bar) {
    TakeFocus();
    CListCtrl::OnHScroll(code, position, bar);
}

void CComboListCtrl::OnVScroll(UINT code, UINT position, CScrollBar* bar) {
    TakeFocus();
    CListCtrl::OnVScroll(code, position, bar);
}

// The rows must not move under an open editor.
LRESULT CComboListCtrl::OnWheel(WPARAM, LPARAM) {
    return EndOpenEdit() ? Default() : 0;
}

void CComboListCtrl::OnLButtonDown(UINT flags, CPoint point) {
    int row = -1;
    int column = 0;
    // A click beside the rows is not even passed on, so that selection and focus stay.
    if (!HitTestEx(point, &row, &column)) {
        return;
    }
    CListCtrl::OnLButtonDown(flags, point);
    // Wine 8.0 leaves the focus on another row when the clicked one was selected already; Windows moves it.
    SetItemState(row, LVIS_FOCUSED, LVIS_FOCUSED);
    if (IsDown(VK_SHIFT) || IsDown(VK_CONTROL)) {
        return;
    }
    const INT64 selected = GetNextItem(-1, LVNI_SELECTED) + 1;
    if (selected == m_nLastSelected) {
        EditCell(row, column);
    }
    m_nLastSelected = selected;
    TellParent(RRM_ENABLE_CELL_EDIT);
}

void CComboListCtrl::OnLButtonDblClk(UINT flags, CPoint point) {
    TellParent(RRM_ENABLE_CELL_EDIT);
    int row = -1;
    int column = 0;
    if (HitTestEx(point, &row, &column)) {
        CListCtrl::OnLButtonDblClk(flags, point);
        EditCell(row, column);
    }
}

void CComboListCtrl::OnKeyDown(UINT key, UINT repeat, UINT flags) {
    if (key == VK_DELETE) {
        TellParent(RRM_LIST_DELETE);
    }
    CListCtrl::OnKeyDown(key, repeat, flags);
}

void CComboListCtrl::OnKeyUp(UINT key, UINT repeat, UINT flags) {
    TellParent(RRM_LIST_KEY_UP);
    CListCtrl::OnKeyUp(key, repeat, flags);
}

void CComboListCtrl::OnBeginLabelEdit(NMHDR* header, LRESULT* result) {
    const auto& info = *reinterpret_cast<const NMLVDISPINFOW*>(header);
    *result = IsReadOnly(info.item.iSubItem) ? TRUE : FALSE;
}

void CComboListCtrl::OnEndLabelEdit(NMHDR* header, LRESULT* result) {
    *result = 0;
    const LVITEMW& edited = reinterpret_cast<const NMLVDISPINFOW*>(header)->item;
    // The system's own label edit gives no text when it was cancelled.
    if (edited.pszText != nullptr) {
        SetItemText(edited.iItem, edited.iSubItem, edited.pszText);
    }
    const auto id = static_cast<UINT_PTR>(GetDlgCtrlID());
    NMLVDISPINFOW changed{};
    changed.hdr = {::GetParent(m_hWnd), id, RRM_CELL_CHANGED};
    changed.item.mask = LVIF_TEXT;
    changed.item.iItem = edited.iItem;
    changed.item.iSubItem = edited.iSubItem;
    TellParent(RRM_CELL_CHANGED, id, reinterpret_cast<LPARAM>(&changed));
    TellParent(RRM_MARK_DIRTY);
}

void CComboListCtrl::OnInsertItem(NMHDR*, LRESULT* result) {
    TellParent(RRM_MARK_DIRTY);
    *result = 0;
}

// The header does not sort.
void CComboListCtrl::OnHeaderClick(NMHDR*, LRESULT* result) {
    *result = 0;
}
