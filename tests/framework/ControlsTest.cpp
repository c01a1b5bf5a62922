#include <afxcmn.h>
#include <afxwin.h>

#include <gtest/gtest.h>
#include <memory>

namespace {

CString LongText(wchar_t character) {
    return CString(character, 32000);
}

class Controls : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_parent.CreateEx(0, nullptr, L"", WS_POPUP, CRect(0, 0, 400, 300), nullptr, 0));
        ASSERT_TRUE(m_list.Create(WS_CHILD | WS_VISIBLE | LVS_REPORT, CRect(0, 0, 200, 200), &m_parent, 1));
        ASSERT_TRUE(m_tree.Create(WS_CHILD | WS_VISIBLE | TVS_HASBUTTONS, CRect(200, 0, 400, 200), &m_parent, 2));
    }

    CWnd m_parent;
    CListCtrl m_list;
    CTreeCtrl m_tree;
};

}  // namespace

TEST_F(Controls, ListCellsHoldTextsOfAnyLength) {
    m_list.InsertColumn(0, L"First", LVCFMT_LEFT, 60);
    m_list.InsertColumn(1, L"Second", LVCFMT_LEFT, 80, 1);
    ASSERT_EQ(m_list.InsertItem(0, LongText(L'a')), 0);
    // 255 and 256 lie at the edge of the first buffer.
    for (const int length : {0, 1, 254, 255, 256, 1023, 1024, 32000}) {
        const CString text(L'b', length);
        ASSERT_TRUE(m_list.SetItemText(0, 1, text));
        EXPECT_EQ(m_list.GetItemText(0, 1), text) << length;
    }
    EXPECT_EQ(m_list.GetItemText(0, 0), LongText(L'a'));
    EXPECT_EQ(m_list.GetItemText(5, 0), L"");
    EXPECT_EQ(m_list.GetItemText(0, 9), L"");
}

TEST_F(Controls, ListRowsKeepDataAndState) {
    m_list.InsertColumn(0, L"First", LVCFMT_CENTER, 61);
    EXPECT_EQ(m_list.InsertItem(LVIF_TEXT | LVIF_IMAGE, 0, L"one", 0, 0, 0, 0), 0);
    EXPECT_EQ(m_list.InsertItem(1, L"two"), 1);
    EXPECT_EQ(m_list.InsertItem(LVIF_TEXT | LVIF_PARAM, 99, L"three", 0, 0, 0, -7), 2);
    EXPECT_EQ(m_list.GetItemData(2), static_cast<DWORD_PTR>(-7));
    EXPECT_TRUE(m_list.SetItemData(0, 0x123456789A));
    EXPECT_EQ(m_list.GetItemData(0), 0x123456789Au);
    EXPECT_EQ(m_list.GetItemData(3), 0u);

    EXPECT_TRUE(m_list.SetItemState(1, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED));
    EXPECT_EQ(m_list.GetItemState(1, LVIS_SELECTED), static_cast<UINT>(LVIS_SELECTED));
    EXPECT_EQ(m_list.GetSelectedCount(), 1u);
    EXPECT_EQ(m_list.GetNextItem(-1, LVNI_SELECTED), 1);
    EXPECT_EQ(m_list.GetNextItem(1, LVNI_SELECTED), -1);
    EXPECT_TRUE(m_list.SetItemState(-1, LVIS_DROPHILITED, LVIS_DROPHILITED));
    EXPECT_EQ(m_list.GetItemState(2, LVIS_DROPHILITED), static_cast<UINT>(LVIS_DROPHILITED));

    EXPECT_TRUE(m_list.DeleteItem(1));
    EXPECT_EQ(m_list.GetItemCount(), 2);
    EXPECT_EQ(m_list.GetItemText(1, 0), L"three");
    EXPECT_TRUE(m_list.DeleteAllItems());
    EXPECT_EQ(m_list.GetItemCount(), 0);
}

TEST_F(Controls, ListGeometry) {
    m_list.InsertColumn(0, L"First", LVCFMT_LEFT, 60);
    m_list.InsertColumn(1, L"Second", LVCFMT_LEFT, 300);
    for (int i = 0; i < 50; ++i) m_list.InsertItem(i, L"row");
    CHeaderCtrl* const header = m_list.GetHeaderCtrl();
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(header->GetItemCount(), 2);
    EXPECT_EQ(m_list.GetHeaderCtrl(), header);
    EXPECT_EQ(m_list.GetColumnWidth(1), 300);

    CRect rect;
    ASSERT_TRUE(m_list.GetItemRect(3, rect, LVIR_BOUNDS));
    EXPECT_EQ(rect.Width(), 360);
    UINT flags = 0;
    EXPECT_EQ(m_list.HitTest(CPoint(10, rect.CenterPoint().y), &flags), 3);
    EXPECT_NE(flags & LVHT_ONITEM, 0u);
    EXPECT_EQ(m_list.HitTest(CPoint(10, 10000)), -1);

    EXPECT_TRUE(m_list.Scroll(CSize(25, 0)));
    CRect scrolled;
    m_list.GetItemRect(3, scrolled, LVIR_BOUNDS);
    EXPECT_EQ(scrolled.left, rect.left - 25);
    EXPECT_TRUE(m_list.EnsureVisible(49, FALSE));
    m_list.GetItemRect(49, rect, LVIR_BOUNDS);
    EXPECT_LE(rect.bottom, 200);

    EXPECT_EQ(m_list.SetExtendedStyle(LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT), 0u);
    EXPECT_EQ(m_list.GetExtendedStyle(), static_cast<DWORD>(LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT));
}

TEST_F(Controls, TreeItemsAndTheirRelatives) {
    const HTREEITEM root = m_tree.InsertItem(LongText(L'r'));
    const HTREEITEM first = m_tree.InsertItem(L"first", root, TVI_LAST);
    const HTREEITEM third = m_tree.InsertItem(L"third", 1, 2, root);
    const HTREEITEM second = m_tree.InsertItem(L"second", root, first);
    EXPECT_EQ(m_tree.GetItemText(root), LongText(L'r'));
    EXPECT_EQ(m_tree.GetItemText(nullptr), L"");
    EXPECT_EQ(m_tree.GetRootItem(), root);
    EXPECT_EQ(m_tree.GetChildItem(root), first);
    EXPECT_EQ(m_tree.GetNextSiblingItem(first), second);
    EXPECT_EQ(m_tree.GetNextSiblingItem(second), third);
    EXPECT_EQ(m_tree.GetNextSiblingItem(third), nullptr);
    EXPECT_EQ(m_tree.GetParentItem(third), root);
    EXPECT_EQ(m_tree.GetParentItem(root), nullptr);

    EXPECT_TRUE(m_tree.SetItemData(second, 0x123456789A));
    EXPECT_EQ(m_tree.GetItemData(second), 0x123456789Au);
    int image = -1;
    int selected = -1;
    EXPECT_TRUE(m_tree.GetItemImage(third, image, selected));
    EXPECT_EQ(image, 1);
    EXPECT_EQ(selected, 2);
    EXPECT_TRUE(m_tree.SetItemImage(third, 3, 4));
    m_tree.GetItemImage(third, image, selected);
    EXPECT_EQ(selected, 4);

    EXPECT_TRUE(m_tree.Expand(root, TVE_EXPAND));
    EXPECT_NE(m_tree.GetItemState(root, TVIS_EXPANDED), 0u);
    EXPECT_TRUE(m_tree.SelectItem(second));
    EXPECT_NE(m_tree.GetItemState(second, TVIS_SELECTED), 0u);
    CRect rect;
    ASSERT_TRUE(m_tree.GetItemRect(second, rect, TRUE));
    EXPECT_EQ(m_tree.HitTest(rect.CenterPoint()), second);
    EXPECT_TRUE(m_tree.DeleteItem(first));
    EXPECT_EQ(m_tree.GetChildItem(root), second);
    EXPECT_EQ(m_tree.GetCount(), 3u);
}

TEST_F(Controls, TreeSortsByTheCallersOrder) {
    for (const DWORD_PTR number : {2, 3, 1}) {
        CString text;
        text.Format(L"%u", static_cast<unsigned>(number));
        m_tree.SetItemData(m_tree.InsertItem(text), number);
    }
    TVSORTCB sort{};
    sort.hParent = TVI_ROOT;
    sort.lpfnCompare = [](LPARAM first, LPARAM second, LPARAM) { return static_cast<int>(second - first); };
    EXPECT_TRUE(m_tree.SortChildrenCB(&sort));
    CString order;
    for (HTREEITEM item = m_tree.GetRootItem(); item != nullptr; item = m_tree.GetNextSiblingItem(item))
        order += m_tree.GetItemText(item);
    EXPECT_EQ(order, L"321");
}

TEST_F(Controls, TreeDragImagesNeedAnImageList) {
    const HTREEITEM item = m_tree.InsertItem(L"item");
    EXPECT_EQ(std::unique_ptr<CImageList>(m_tree.CreateDragImage(item)), nullptr);
    CImageList images;
    ASSERT_TRUE(images.Create(16, 16, ILC_COLOR32, 1, 1));
    EXPECT_FALSE(images.Create(16, 16, ILC_COLOR32, 1, 1));
    EXPECT_EQ(m_tree.SetImageList(&images, TVSIL_NORMAL), nullptr);
    const CImageList* const before = m_tree.SetImageList(&images, TVSIL_NORMAL);
    ASSERT_NE(before, nullptr);
    EXPECT_EQ(before->m_hImageList, images.m_hImageList);
    EXPECT_NE(std::unique_ptr<CImageList>(m_tree.CreateDragImage(item)), nullptr);
    m_tree.SetImageList(nullptr, TVSIL_NORMAL);
}

TEST_F(Controls, ImageListsTakeIconsAndMaskedBitmapsAndFloatThem) {
    CImageList images;
    ASSERT_TRUE(images.Create(16, 16, ILC_COLOR24 | ILC_MASK, 1, 1));
    EXPECT_EQ(images.Add(::LoadIconW(nullptr, IDI_WARNING)), 0);
    CClientDC screen(nullptr);
    CBitmap bitmap;
    ASSERT_TRUE(bitmap.CreateCompatibleBitmap(&screen, 16, 16));
    EXPECT_EQ(images.Add(&bitmap, RGB(0, 0, 0)), 1);
    EXPECT_EQ(images.GetImageCount(), 2);
    EXPECT_TRUE(images.BeginDrag(0, CPoint(10, 10)));
    EXPECT_TRUE(CImageList::DragEnter(nullptr, CPoint(50, 50)));
    POINT at{};
    EXPECT_NE(::ImageList_GetDragImage(&at, nullptr), nullptr);
    EXPECT_EQ(CPoint(at), CPoint(50, 50));
    EXPECT_TRUE(CImageList::DragMove(CPoint(60, 70)));
    EXPECT_TRUE(CImageList::DragShowNolock(FALSE));
    ::ImageList_GetDragImage(&at, nullptr);
    EXPECT_EQ(CPoint(at), CPoint(60, 70));
    EXPECT_TRUE(CImageList::DragLeave(nullptr));
    CImageList::EndDrag();
    EXPECT_TRUE(images.DeleteImageList());
    EXPECT_FALSE(images.DeleteImageList());
}

TEST_F(Controls, ComboBoxSelectsByBeginningAndGivesLongTexts) {
    CComboBox combo;
    ASSERT_TRUE(combo.Create(WS_CHILD | CBS_DROPDOWNLIST, CRect(0, 200, 100, 300), &m_parent, 3));
    EXPECT_EQ(combo.AddString(L"Branch"), 0);
    EXPECT_EQ(combo.AddString(LongText(L'K')), 1);
    EXPECT_EQ(combo.SelectString(-1, L"bran"), 0);
    EXPECT_EQ(combo.SelectString(-1, L"none"), CB_ERR);
    EXPECT_EQ(combo.GetCurSel(), 0);
    EXPECT_EQ(combo.SetCurSel(1), 1);
    CString text;
    combo.GetLBText(1, text);
    EXPECT_EQ(text, LongText(L'K'));
    combo.ResetContent();
    EXPECT_EQ(combo.GetCount(), 0);
    EXPECT_EQ(combo.GetCurSel(), CB_ERR);
}

TEST_F(Controls, EditSelectsAndRefusesInput) {
    CEdit edit;
    ASSERT_TRUE(edit.Create(WS_CHILD, CRect(0, 200, 100, 220), &m_parent, 4));
    edit.SetWindowText(L"abcdef");
    edit.SetSel(0, -1);
    int start = -1;
    int end = -1;
    edit.GetSel(start, end);
    EXPECT_EQ(start, 0);
    EXPECT_EQ(end, 6);
    EXPECT_TRUE(edit.SetReadOnly());
    EXPECT_NE(edit.GetStyle() & ES_READONLY, 0u);
    EXPECT_TRUE(edit.SetReadOnly(FALSE));
    edit.LimitText(7);
    edit.SetSel(6, 6);
    for (int i = 0; i < 3; ++i) edit.SendMessage(WM_CHAR, L'x', 1);
    EXPECT_EQ(edit.GetWindowTextLength(), 7);
}

TEST_F(Controls, DrawingObjectsOwnTheirHandles) {
    HGDIOBJ handle = nullptr;
    {
        CBrush brush(RGB(1, 2, 3));
        handle = brush.m_hObject;
        EXPECT_EQ(::GetObjectType(handle), static_cast<DWORD>(OBJ_BRUSH));
        EXPECT_FALSE(brush.CreateSolidBrush(RGB(0, 0, 0)));  // one at a time
        EXPECT_EQ(brush.m_hObject, handle);
    }
    EXPECT_EQ(::GetObjectType(handle), 0u);

    LOGFONTW description{};
    description.lfHeight = -40;
    CFont font;
    ASSERT_TRUE(font.CreateFontIndirect(&description));
    m_parent.SetFont(&font);
    CClientDC context(&m_parent);
    const CSize small = context.GetTextExtent(L"Type");
    CFont* const before = context.SelectObject(&font);
    const CSize large = context.GetTextExtent(L"Type");
    EXPECT_GT(large.cy, small.cy);
    EXPECT_EQ(context.SelectObject(before)->m_hObject, font.m_hObject);
    EXPECT_EQ(context.GetTextExtent(L"Type"), small);
    EXPECT_EQ(context.GetTextExtent(L"").cx, 0);
}
