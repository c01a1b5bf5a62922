#include "framework/TreeControl.h"

#include "framework/GrowingText.h"

IMPLEMENT_DYNAMIC(CTreeCtrl, CWnd)

HTREEITEM CTreeCtrl::InsertItem(LPCWSTR text, HTREEITEM parent, HTREEITEM after) {
    TVINSERTSTRUCTW insert{};
    insert.hParent = parent;
    insert.hInsertAfter = after;
    insert.item.mask = TVIF_TEXT;
    insert.item.pszText = const_cast<LPWSTR>(text);
    return Item(TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert));
}

CString CTreeCtrl::GetItemText(HTREEITEM item) const {
    return afx::GrowingText([&](wchar_t* buffer, int chars) {
        buffer[0] = L'\0';
        TVITEMW request{};
        request.mask = TVIF_TEXT;
        request.hItem = item;
        request.pszText = buffer;
        request.cchTextMax = chars;
        return GetItem(request) ? ::lstrlenW(buffer) : 0;
    });
}

DWORD_PTR CTreeCtrl::GetItemData(HTREEITEM item) const {
    TVITEMW request{};
    request.mask = TVIF_PARAM;
    request.hItem = item;
    return GetItem(request) ? static_cast<DWORD_PTR>(request.lParam) : 0;
}

BOOL CTreeCtrl::SetItemData(HTREEITEM item, DWORD_PTR data) {
    TVITEMW change{};
    change.mask = TVIF_PARAM;
    change.hItem = item;
    change.lParam = static_cast<LPARAM>(data);
    return SetItem(change);
}

BOOL CTreeCtrl::GetItemImage(HTREEITEM item, int& image, int& selectedImage) const {
    TVITEMW request{};
    request.mask = TVIF_IMAGE | TVIF_SELECTEDIMAGE;
    request.hItem = item;
    const BOOL found = GetItem(request);
    image = request.iImage;
    selectedImage = request.iSelectedImage;
    return found;
}

BOOL CTreeCtrl::SetItemImage(HTREEITEM item, int image, int selectedImage) {
    TVITEMW change{};
    change.mask = TVIF_IMAGE | TVIF_SELECTEDIMAGE;
    change.hItem = item;
    change.iImage = image;
    change.iSelectedImage = selectedImage;
    return SetItem(change);
}

CImageList* CTreeCtrl::SetImageList(CImageList* list, int kind) {
    const LRESULT before = SendMessage(TVM_SETIMAGELIST, static_cast<WPARAM>(kind),
                                       reinterpret_cast<LPARAM>(list != nullptr ? list->m_hImageList : nullptr));
    return CImageList::FromHandle(reinterpret_cast<HIMAGELIST>(before));
}

CImageList* CTreeCtrl::CreateDragImage(HTREEITEM item) {
    const LRESULT picture = SendMessage(TVM_CREATEDRAGIMAGE, 0, reinterpret_cast<LPARAM>(item));
    if (picture == 0) return nullptr;
    auto* const list = new CImageList;
    list->Attach(reinterpret_cast<HIMAGELIST>(picture));
    return list;
}
