#include <windows.h>
#include <shellapi.h>

#include <gtest/gtest.h>

#include "siblings/uictrl/BvDialogBase.h"
#include "siblings/uictrl/ShellImageList.h"
#include "support/ImportPatch.h"

namespace {

struct FontDialog : CBvDialogBase {
    FontDialog() : CBvDialogBase(300) {}
    BOOL OnInitDialog() override {
        CBvDialogBase::OnInitDialog();
        m_labelFont = *GetDlgItem(301)->GetFont();
        EndDialog(IDOK);
        return TRUE;
    }

    HGDIOBJ m_labelFont = nullptr;
    using CBvDialogBase::m_font;
};

// Whether the picture leaves its corner as it is and covers its middle.
bool ShowsSomethingInTheMiddle(const CImageList& list, int index) {
    const int width = ::GetSystemMetrics(SM_CXSMICON), height = ::GetSystemMetrics(SM_CYSMICON);
    CDC memory;
    CBitmap bitmap;  // black
    memory.CreateCompatibleDC(nullptr);
    bitmap.Attach(::CreateBitmap(width, height, 1, 32, nullptr));
    CBitmap* const before = memory.SelectObject(&bitmap);
    ::ImageList_Draw(list.m_hImageList, index, memory.m_hDC, 0, 0, ILD_NORMAL);
    const bool shows = ::GetPixel(memory.m_hDC, 0, 0) == 0 && ::GetPixel(memory.m_hDC, width / 2, height / 2) != 0;
    memory.SelectObject(before);
    return shows;
}

}  // namespace

TEST(BvDialogBase, GivesItsFontToTheControlsIfItHasOne) {
    FontDialog dialog;
    dialog.DoModal();
    EXPECT_NE(dialog.m_labelFont, nullptr) << "the template's";
    dialog.m_font.Attach(::CreateFontW(-30, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, nullptr));
    dialog.DoModal();
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
