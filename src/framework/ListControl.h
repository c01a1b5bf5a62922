// The list view. Rows and columns count from 0; -1 stands for none.
#pragma once

#include "framework/HeaderControl.h"

class AFX_API CListCtrl : public CWnd {
    DECLARE_DYNAMIC(CListCtrl)

public:
    BOOL Create(DWORD style, const RECT& rect, CWnd* parent, UINT id) {
        return CWnd::Create(WC_LISTVIEWW, nullptr, style, rect, parent, id);
    }

    // Columns. The index of the new one, or -1; widths in pixels.
    int InsertColumn(int column, LPCWSTR heading, int format = LVCFMT_LEFT, int width = -1, int subItem = -1);
    int GetColumnWidth(int column) const { return Ask(LVM_GETCOLUMNWIDTH, column); }
    // Temporary, see CWnd::FromHandle; null if the list has no header.
    CHeaderCtrl* GetHeaderCtrl() const;

    // Rows. The index that the row got, or -1.
    int InsertItem(int row, LPCWSTR text) { return InsertItem(LVIF_TEXT, row, text, 0, 0, 0, 0); }
    int InsertItem(UINT mask, int row, LPCWSTR text, UINT state, UINT stateMask, int image, LPARAM data);
    BOOL DeleteItem(int row) { return Ask(LVM_DELETEITEM, row); }
    int GetItemCount() const { return Ask(LVM_GETITEMCOUNT); }

    // The text of a cell, of any length; empty for a cell that is not there.
    CString GetItemText(int row, int column) const;
    BOOL SetItemText(int row, int column, LPCWSTR text);
    UINT GetItemState(int row, UINT mask) const { return static_cast<UINT>(Ask(LVM_GETITEMSTATE, row, mask)); }
    // Row -1 means every row.
    BOOL SetItemState(int row, UINT state, UINT mask);
    UINT GetSelectedCount() const { return static_cast<UINT>(Ask(LVM_GETSELECTEDCOUNT)); }
    // The first row behind `row` with the properties LVNI_..., or -1.
    int GetNextItem(int row, int flags) const { return Ask(LVM_GETNEXTITEM, row, MAKELPARAM(flags, 0)); }

    // Client coordinates in pixels. HitTest gives -1 where there is no row; `flags` gets LVHT_... if given.
    int HitTest(CPoint point, UINT* flags = nullptr) const;
    // `area` is LVIR_...
    BOOL GetItemRect(int row, RECT* rect, UINT area) const;
    BOOL EnsureVisible(int row, BOOL partialIsEnough) {
        return Ask(LVM_ENSUREVISIBLE, row, MAKELPARAM(partialIsEnough, 0));
    }
    BOOL Scroll(CSize by) { return Ask(LVM_SCROLL, by.cx, by.cy); }
    BOOL RedrawItems(int first, int last) { return Ask(LVM_REDRAWITEMS, first, last); }

    DWORD GetExtendedStyle() const { return static_cast<DWORD>(Ask(LVM_GETEXTENDEDLISTVIEWSTYLE)); }
    // Returns the style that was.
    DWORD SetExtendedStyle(DWORD style) { return static_cast<DWORD>(Ask(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, style)); }

private:
    int Ask(UINT message, int first = 0, LPARAM second = 0) const {
        return static_cast<int>(SendMessage(message, static_cast<WPARAM>(first), second));
    }
};
