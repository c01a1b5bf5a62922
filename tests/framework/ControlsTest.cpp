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
    combo.GetWindowText(text);
    EXPECT_EQ(text, LongText(L'K'));
    combo.ResetContent();
    EXPECT_EQ(combo.GetCurSel(), CB_ERR);
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
    CClientDC context(&m_parent);
    const CSize small = context.GetTextExtent(L"Type");
    CFont* const before = context.SelectObject(&font);
    const CSize large = context.GetTextExtent(L"Type");
    EXPECT_GT(large.cy, small.cy);
    EXPECT_EQ(context.SelectObject(before)->m_hObject, font.m_hObject);
    EXPECT_EQ(context.GetTextExtent(L"Type"), small);
    EXPECT_EQ(context.GetTextExtent(L"").cx, 0);
}
