#include "siblings/uictrl/ShellImageList.h"

#include <gtest/gtest.h>

namespace {

constexpr int kBits = 32;
constexpr COLORREF kGround = RGB(0, 0, 255);

// How many pixels of the picture differ from the ground that it is drawn on.
int PixelsDrawn(CImageList& list, int index) {
    int width = 0;
    int height = 0;
    ::ImageList_GetIconSize(list.m_hImageList, &width, &height);
    CClientDC screen(nullptr);
    CDC memory;
    memory.CreateCompatibleDC(&screen);
    CBitmap bitmap;
    bitmap.CreateCompatibleBitmap(&screen, width, height);
    CBitmap* const before = memory.SelectObject(&bitmap);
    memory.FillSolidRect(CRect(0, 0, width, height), kGround);
    ::ImageList_Draw(list.m_hImageList, index, memory.m_hDC, 0, 0, ILD_NORMAL);
    int drawn = 0;
    for (int x = 0; x < width; ++x) {
        for (int y = 0; y < height; ++y) drawn += ::GetPixel(memory.m_hDC, x, y) != kGround;
    }
    memory.SelectObject(before);
    return drawn;
}

}  // namespace

TEST(ShellImageList, AlwaysHasAKeyPictureThatShowsSomethingAndLeavesACorner) {
    CShellImageList list;
    EXPECT_EQ(list.GetIconIndex(ShellIcons::ClosedFolder), -1);  // not initialised
    ASSERT_TRUE(list.Initialize(kBits));
    const int key = list.GetIconIndex(static_cast<ShellIcons::ShellIconId>(3));
    ASSERT_EQ(key, 0);
    EXPECT_EQ(list.GetIconIndex(ShellIcons::ClosedFolder), key);  // no second copy
    EXPECT_EQ(list.GetImageCount(), 1);
    EXPECT_EQ(list.GetIconIndex(static_cast<ShellIcons::ShellIconId>(77)), -1);
    const int pixels = ::GetSystemMetrics(SM_CXSMICON) * ::GetSystemMetrics(SM_CYSMICON);
    EXPECT_GT(PixelsDrawn(list, key), pixels / 4);
    EXPECT_LT(PixelsDrawn(list, key), pixels);

    EXPECT_EQ(list.Add(::LoadIconW(nullptr, IDI_WARNING)), 1);
    ASSERT_TRUE(list.Initialize(kBits));  // each dialog begins anew
    EXPECT_EQ(list.GetImageCount(), 0);
    EXPECT_EQ(list.GetIconIndex(ShellIcons::ClosedFolder), 0);
}
