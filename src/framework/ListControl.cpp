#include "framework/ListControl.h"

#include "framework/GrowingText.h"
#include "framework/WindowThread.h"

IMPLEMENT_DYNAMIC(CHeaderCtrl, CWnd)
IMPLEMENT_DYNAMIC(CListCtrl, CWnd)

int CListCtrl::InsertColumn(int column, LPCWSTR heading, int format, int width, int subItem) {
    LVCOLUMNW description{};
    description.mask = LVCF_TEXT | LVCF_FMT;
    description.pszText = const_cast<LPWSTR>(heading);
    description.fmt = format;
    if (width != -1) {
        description.mask |= LVCF_WIDTH;
        description.cx = width;
    }
    if (subItem != -1) {
        description.mask |= LVCF_SUBITEM;
        description.iSubItem = subItem;
    }
    return Ask(LVM_INSERTCOLUMNW, column, reinterpret_cast<LPARAM>(&description));
}

CHeaderCtrl* CListCtrl::GetHeaderCtrl() const {
    return afx::WindowAs<CHeaderCtrl>(reinterpret_cast<HWND>(SendMessage(LVM_GETHEADER)));
}

int CListCtrl::InsertItem(UINT mask, int row, LPCWSTR text, UINT state, UINT stateMask, int image, LPARAM data) {
    LVITEMW item{};
    item.mask = mask;
    item.iItem = row;
    item.pszText = const_cast<LPWSTR>(text);
    item.state = state;
    item.stateMask = stateMask;
    item.iImage = image;
    item.lParam = data;
    return Ask(LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
}

CString CListCtrl::GetItemText(int row, int column) const {
    return afx::GrowingText([&](wchar_t* buffer, int chars) {
        LVITEMW item{};
        item.iSubItem = column;
        item.pszText = buffer;
        item.cchTextMax = chars;
        return Ask(LVM_GETITEMTEXTW, row, reinterpret_cast<LPARAM>(&item));
    });
}

BOOL CListCtrl::SetItemText(int row, int column, LPCWSTR text) {
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = const_cast<LPWSTR>(text);
    return Ask(LVM_SETITEMTEXTW, row, reinterpret_cast<LPARAM>(&item));
}

BOOL CListCtrl::SetItemState(int row, UINT state, UINT mask) {
    LVITEMW item{};
    item.state = state;
    item.stateMask = mask;
    return Ask(LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&item));
}

int CListCtrl::HitTest(CPoint point, UINT* flags) const {
    LVHITTESTINFO hit{};
    hit.pt = point;
    const int row = Ask(LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    if (flags != nullptr) *flags = hit.flags;
    return row;
}

BOOL CListCtrl::GetItemRect(int row, RECT* rect, UINT area) const {
    rect->left = static_cast<LONG>(area);
    return Ask(LVM_GETITEMRECT, row, reinterpret_cast<LPARAM>(rect));
}
