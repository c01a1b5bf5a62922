#include "siblings/uictrl/BvDialogBase.h"

#include <gtest/gtest.h>

namespace {

class CFontDialog : public CBvDialogBase {
public:
    CFontDialog() : CBvDialogBase(300) {}

    HFONT m_labelFont = nullptr;

    void MakeFont() {
        LOGFONTW description{};
        description.lfHeight = -30;
        m_font.CreateFontIndirect(&description);
    }
    HFONT Made() const { return m_font; }

protected:
    BOOL OnInitDialog() override {
        CBvDialogBase::OnInitDialog();
        m_labelFont = *GetDlgItem(301)->GetFont();
        EndDialog(IDOK);
        return TRUE;
    }
};

}  // namespace

TEST(BvDialogBase, GivesItsFontToTheControlsIfItHasOne) {
    CFontDialog dialog;
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_NE(dialog.m_labelFont, nullptr);  // the template's

    dialog.MakeFont();
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_EQ(dialog.m_labelFont, dialog.Made());
}
