// The tree view. TVI_ROOT stands for the place above the top items; null for no item.
#pragma once

#include "framework/ImageList.h"

class AFX_API CTreeCtrl : public CWnd {
    DECLARE_DYNAMIC(CTreeCtrl)

public:
    BOOL Create(DWORD style, const RECT& rect, CWnd* parent, UINT id) {
        return CWnd::Create(WC_TREEVIEWW, nullptr, style, rect, parent, id);
    }

    // The new item, or null. `after` is a sibling, TVI_FIRST, TVI_LAST or TVI_SORT.
    HTREEITEM InsertItem(LPCWSTR text, HTREEITEM parent = TVI_ROOT, HTREEITEM after = TVI_LAST);
    BOOL DeleteItem(HTREEITEM item) { return Ask(TVM_DELETEITEM, 0, item); }

    // Relatives: null if there is none.
    HTREEITEM GetRootItem() const { return Relative(TVGN_ROOT, nullptr); }
    HTREEITEM GetParentItem(HTREEITEM item) const { return Relative(TVGN_PARENT, item); }
    HTREEITEM GetChildItem(HTREEITEM item) const { return Relative(TVGN_CHILD, item); }
    HTREEITEM GetNextSiblingItem(HTREEITEM item) const { return Relative(TVGN_NEXT, item); }
    BOOL SelectItem(HTREEITEM item) { return Ask(TVM_SELECTITEM, TVGN_CARET, item); }

    // The text of an item, of any length; empty for no item.
    CString GetItemText(HTREEITEM item) const;
    DWORD_PTR GetItemData(HTREEITEM item) const;
    BOOL SetItemData(HTREEITEM item, DWORD_PTR data);
    BOOL GetItemImage(HTREEITEM item, int& image, int& selectedImage) const;
    BOOL SetItemImage(HTREEITEM item, int image, int selectedImage);

    // `code` is TVE_...
    BOOL Expand(HTREEITEM item, UINT code) { return Ask(TVM_EXPAND, code, item); }
    BOOL SortChildrenCB(TVSORTCB* sort) {
        return static_cast<BOOL>(SendMessage(TVM_SORTCHILDRENCB, 0, reinterpret_cast<LPARAM>(sort)));
    }

    // The list stays the caller's. Returns what was set before, as a temporary object, or null; `kind` is TVSIL_...
    CImageList* SetImageList(CImageList* list, int kind);
    // A picture of the item for a drag: a new object that the caller deletes, or null if the tree has no image list.
    CImageList* CreateDragImage(HTREEITEM item);

private:
    int Ask(UINT message, WPARAM first, HTREEITEM item) const {
        return static_cast<int>(SendMessage(message, first, reinterpret_cast<LPARAM>(item)));
    }
    HTREEITEM Item(UINT message, WPARAM first, LPARAM second) const {
        return reinterpret_cast<HTREEITEM>(SendMessage(message, first, second));
    }
    HTREEITEM Relative(UINT relation, HTREEITEM item) const {
        return Item(TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(item));
    }
    BOOL GetItem(TVITEMW& item) const {
        return static_cast<BOOL>(SendMessage(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)));
    }
    BOOL SetItem(const TVITEMW& item) {
        return static_cast<BOOL>(SendMessage(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item)));
    }
};
