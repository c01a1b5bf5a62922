// The ways of ending the dialog, and what Show answers.
#include <gtest/gtest.h>

#include "dialog/RulesDialog.h"

namespace {
class Life : public RulesDialog {
protected:
    void SetUp() override {
        control.AddKeyRule(L"HKCU\\A", 1, 0);
        control.AddKeyRule(L"HKCU\\B", 1, 1);
    }
    static void DeleteFirstRow(Dialog& d) {
        SelectRow(d, 0);
        d.Click(IDC_DELETE_RULE);
    }
    // From the list: Wine 8's tree view keeps the keys that are pressed with Alt to itself.
    static void PressAltF4(Dialog& d) {
        SelectRow(d, 0);
        d.Key(VK_F4, {VK_MENU});
    }
    static void ClickCloseBox(Dialog& d) {
        const RECT frame = Frame(d.Window());
        d.Click(POINT{frame.right - 13, frame.top + 12});
    }
    const Texts original{L"Branch|HKCU\\A|0", L"Branch|HKCU\\B|1"};
};
}  // namespace

TEST_F(Life, EveryWayOutAsksAboutAChangedListAloneAndNoKeepsTheRows) {
    const std::function<void(Dialog&)> ways[] = {[](Dialog& d) { d.Click(IDCANCEL); },
                                                 [](Dialog& d) { d.Key(VK_ESCAPE); }, [](Dialog& d) { d.Alt(L'C'); },
                                                 PressAltF4, ClickCloseBox};
    for (const auto& way : ways) {
        EXPECT_EQ(Show(way), 0) << "without a change, no question";
        EXPECT_EQ(Show([&](Dialog& d) {
                      DeleteFirstRow(d);
                      way(d);
                      EXPECT_EQ(d.AnswerBox(IDNO), confirmCancel);
                      EXPECT_EQ(Rows(d), Texts{L"Branch|HKCU\\B|"});
                      way(d);
                      d.AnswerBox(IDYES);
                  }),
                  0);
        EXPECT_EQ(HostRules(), original);
    }
    EXPECT_EQ(Show([&](Dialog& d) {
                  DeleteFirstRow(d);
                  d.Click(IDCANCEL);
                  d.AnswerBox(IDNO);
                  d.Click(IDOK);
              }),
              1)
        << "OK counts after a cancel that was taken back";
    EXPECT_EQ(HostRules(), Texts{L"Branch|HKEY_CURRENT_USER\\B|0"});
    EXPECT_EQ(ShowAndPress(IDOK), 0) << "the next run begins clean";
    EXPECT_EQ(Show([](Dialog& d) {
                  DeleteFirstRow(d);
                  Discard(d);
              }),
              0)
        << "a cancel counts after an OK";
}

TEST_F(Life, OkWithARefusedKeyInTheStripKeepsDialogAndRules) {
    EXPECT_EQ(Show([&](Dialog& d) {
                  d.Click(IDC_NEW_KEY);
                  d.Type(L"HKXX\\Software");
                  d.Click(IDOK);
                  EXPECT_EQ(d.AnswerBox(IDOK), unknownHive);
                  EXPECT_EQ(d.FocusId(), IDC_NEW_KEY);
                  EXPECT_EQ(Dialog::EditSelection(d.Control(IDC_NEW_KEY)), std::make_pair(0, 4));
                  EXPECT_EQ(Rows(d).size(), 2u);
                  EXPECT_EQ(d.Text(IDC_NEW_KEY), L"HKXX\\Software");
                  // A refused key in the strip never holds up a close, and made no change.
                  d.Key(VK_F4, {VK_MENU});
              }),
              0);
    EXPECT_EQ(HostRules(), original);
}

TEST_F(Life, TextLeftInTheStripBecomesTheTopRowAtOk) {
    EXPECT_EQ(Show([&](Dialog& d) {
                  d.Click(IDC_NEW_KEY);
                  d.Type(L"hkey_users\\x");
                  d.Click(IDC_REGISTRY_TREE);
                  EXPECT_EQ(d.Text(IDC_NEW_KEY), L"hkey_users\\x") << "a text typed and left stays";
                  d.Click(IDOK);
              }),
              1);
    EXPECT_EQ(HostRules(),
              (Texts{L"Branch|HKEY_USERS\\x|0", L"Branch|HKEY_CURRENT_USER\\A|1", L"Branch|HKEY_CURRENT_USER\\B|2"}));
}

TEST_F(Life, ACloseIsDroppedWhileACellHoldsARefusedKey) {
    EXPECT_EQ(Show([&](Dialog& d) {
                  const HWND edit = OpenCellEdit(d, 0, 1);
                  ClearByKeys(d);
                  d.Type(L"HKCU\\a\\\\b");
                  d.Key(VK_F4, {VK_MENU});
                  EXPECT_EQ(d.AnswerBox(IDOK), L"The specified key is invalid. Multiple backslashes are not allowed.");
                  EXPECT_EQ(d.Focus(), edit);
                  EXPECT_EQ(Dialog::EditSelection(edit), std::make_pair(6, 8));
                  EXPECT_EQ(CellEdit(d), edit) << "still open with the refused key";
                  d.Key(VK_F4, {VK_MENU});
                  d.AnswerBox(IDCANCEL);
              }),
              0)
        << "a key that is given up lets the close through";
    EXPECT_EQ(driver.BoxTexts().size(), 2u) << "no cell was changed, so there is nothing to lose";
    EXPECT_EQ(HostRules(), original);
}

TEST_F(Life, ACellHeldAtOkDoesNotHoldTheNextRun) {
    EXPECT_EQ(Show([&](Dialog& d) {
                  const HWND edit = OpenCellEdit(d, 0, 1);
                  d.Type(L"x");
                  d.Click(IDC_REGISTRY_TREE);
                  EXPECT_EQ(d.AnswerBox(IDOK), unknownHive);
                  ASSERT_EQ(d.Focus(), edit);
                  // By its letter OK is pressed whatever the cell says to losing the focus.
                  d.Alt(L'O');
                  // Each time that the focus leaves the cell on the way out, the user is asked again.
                  try {
                      for (;;) d.AnswerBox(IDOK);
                  } catch (const StepFailed&) {
                      d.WaitUntilClosed();
                  }
              }),
              0);
    EXPECT_EQ(HostRules(), (Texts{L"Branch|HKEY_CURRENT_USER\\A|0", L"Branch|HKEY_CURRENT_USER\\B|1"}));
    EXPECT_EQ(Show(ClickCloseBox), 0);
}
