// The list of rules: a report view whose cells are edited in place, by an edit or by a drop-down laid over the cell.
// It holds no rules; what the user does to it goes to its parent as a private message (entry/PrivateMessages.h).
#pragma once

#include <afxcmn.h>
#include <afxcoll.h>

#include <vector>

#include "controls/ColumnSet.h"

class CInPlaceCombo;

class CComboListCtrl : public CListCtrl {
public:
    CComboListCtrl() = default;
    // Deletes the in-place editors, which all lists of the process share.
    ~CComboListCtrl() override;
    CComboListCtrl(const CComboListCtrl&) = delete;
    CComboListCtrl& operator=(const CComboListCtrl&) = delete;

    // Adds the column to, or takes it from, those that are edited with a drop-down.
    void SetComboColumns(int column, bool combo);
    // The same for the columns on which no edit may be opened. A column in both sets gets its drop-down.
    void SetReadOnlyColumns(int column, bool readOnly);
    bool IsCombo(int column) const;
    bool IsReadOnly(int column) const;
    // The characters that a cell's edit takes; empty takes all.
    void SetValidEditCtrlCharacters(const CString& characters);
    // With false no editor opens until it is called with true again.
    void EnableCellEdit(bool enabled);

    // The cell at a point in client coordinates. False, with row and column as the search left them, outside the cells,
    // in any view but the report, or with a null pointer.
    bool HitTestEx(CPoint point, int* row, int* column) const;
    // Scrolls the cell into view and gives the place where it then stands, in client coordinates. False, and the
    // rectangle as it was, for a cell that does not exist.
    bool CalculateCellRect(int column, int row, CRect& rect);
    // Scrolls sideways until the column is in view, and narrows `rect`, the bounds of a row, to it. Nothing happens for
    // a column that does not exist.
    void ScrollToView(int column, CRect& rect);

    // Opens the editor of a cell: a drop-down or an edit. Nothing happens while another edit is open, for a row that
    // does not have the focus, for a read-only column, and for a cell that does not exist.
    void EditCell(int row, int column);
    // Takes the focus from an editor that is open, which ends it. False when one is left open that holds a refused key.
    bool EndOpenEdit();
    void ShowInPlaceEdit(int row, int column, const CString& text);
    // Null, and nothing on the screen, for a cell that does not exist or is too narrow for a drop-down. The combo box
    // belongs to its class, not to the caller.
    CInPlaceCombo* ShowInPlaceCombo(int row, int column, const CStringList& items, const CString& text, int selection);

protected:
    afx_msg void OnHScroll(UINT code, UINT position, CScrollBar* bar);
    afx_msg void OnVScroll(UINT code, UINT position, CScrollBar* bar);
    afx_msg LRESULT OnWheel(WPARAM wParam, LPARAM lParam);
    afx_msg void OnLButtonDown(UINT flags, CPoint point);
    afx_msg void OnLButtonDblClk(UINT flags, CPoint point);
    afx_msg void OnKeyDown(UINT key, UINT repeat, UINT flags);
    afx_msg void OnKeyUp(UINT key, UINT repeat, UINT flags);
    afx_msg void OnBeginLabelEdit(NMHDR* header, LRESULT* result);
    afx_msg void OnEndLabelEdit(NMHDR* header, LRESULT* result);
    afx_msg void OnInsertItem(NMHDR* header, LRESULT* result);
    afx_msg void OnHeaderClick(NMHDR* header, LRESULT* result);
    DECLARE_MESSAGE_MAP()

private:
    int ColumnCount() const;
    bool HasColumn(int column) const;
    std::vector<int> ColumnWidths() const;
    LRESULT TellParent(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
    void TakeFocus();
    // By the header of its column.
    void NameEditor(HWND editor, int column) const;

    ColumnSet m_ComboColumns;
    ColumnSet m_ReadOnlyColumns;
    CString m_strValidEditCtrlChars;
    DWORD m_dwEditCtrlStyle = ES_AUTOVSCROLL | ES_AUTOHSCROLL | ES_NOHIDESEL;
    DWORD m_dwDropDownCtrlStyle =
        WS_VISIBLE | WS_CHILD | CBS_DROPDOWNLIST | CBS_AUTOHSCROLL | CBS_OEMCONVERT | CBS_DISABLENOSCROLL;
    INT64 m_nLastSelected = 0;
    BOOL m_bEnabled = TRUE;
};
