#include <windows.h>
#include <shellapi.h>

#include <gtest/gtest.h>

#include "siblings/uictrl/BvDialogBase.h"
#include "siblings/uictrl/ShellImageList.h"
#include "support/ImportPatch.h"

namespace {

class CFontDialog : public CBvDialogBase {
public:
    CFontDialog() : CBvDialogBase(300) {}

    HFONT m_labelFont = nullptr;
    using CBvDialogBase::m_font;

protected:
    BOOL OnInitDialog() override {
        CBvDialogBase::OnInitDialog();
        m_labelFont = *GetDlgItem(301)->GetFont();
        EndDialog(IDOK);
        return TRUE;
    }
};

// Whether the picture leaves its corner as it is and covers its middle.
bool ShowsSomethingInTheMiddle(const CImageList& list, int index) {
    constexpr COLORREF kGround = RGB(0, 0, 255);
    const CRect area(0, 0, ::GetSystemMetrics(SM_CXSMICON), ::GetSystemMetrics(SM_CYSMICON));
    CClientDC screen(nullptr);
    CDC memory;
    CBitmap bitmap;
    memory.CreateCompatibleDC(&screen);
    bitmap.CreateCompatibleBitmap(&screen, area.right, area.bottom);
    CBitmap* const before = memory.SelectObject(&bitmap);
    memory.FillSolidRect(area, kGround);
    ::ImageList_Draw(list.m_hImageList, index, memory.m_hDC, 0, 0, ILD_NORMAL);
    const bool shows = ::GetPixel(memory.m_hDC, 0, 0) == kGround &&
                       ::GetPixel(memory.m_hDC, area.right / 2, area.bottom / 2) != kGround;
    memory.SelectObject(before);
    return shows;
}

}  // namespace

TEST(BvDialogBase, GivesItsFontToTheControlsIfItHasOne) {
    CFontDialog dialog;
    LOGFONTW description{};
    description.lfHeight = -30;
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_NE(dialog.m_labelFont, nullptr);  // the template's
    dialog.m_font.CreateFontIndirect(&description);
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_EQ(dialog.m_labelFont, dialog.m_font.m_hObject);
}

// The shell is asked once in a process, so here it has no picture, and one is drawn; the tree's tests see the shell's.
TEST(ShellImageList, AlwaysHasAKeyPicture) {
    const ImportPatch<decltype(&SHGetFileInfoW)> patch(
        LoadedModule(L"ZmUiCtrl.dll"), "SHGetFileInfoW",
        [](LPCWSTR, DWORD, SHFILEINFOW*, UINT, UINT) -> DWORD_PTR { return 0; });
    CShellImageList list;
    EXPECT_EQ(list.GetIconIndex(ShellIcons::ClosedFolder), -1) << "not initialised";
    for (const int round : {1, 2}) {
        ASSERT_TRUE(list.Initialize(32)) << "each dialog begins anew";
        EXPECT_EQ(list.GetImageCount(), 0) << round;
        EXPECT_EQ(list.GetIconIndex(static_cast<ShellIcons::ShellIconId>(3)), 0);
        EXPECT_EQ(list.GetIconIndex(ShellIcons::ClosedFolder), 0);
        EXPECT_EQ(list.GetIconIndex(static_cast<ShellIcons::ShellIconId>(77)), -1);
        EXPECT_EQ(list.GetImageCount(), 1) << "no second copy";
        EXPECT_TRUE(ShowsSomethingInTheMiddle(list, 0));
    }
}
