// Working the rows: cells edited in place, rows deleted, and when the Delete Rule button is live.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include "dialog/RulesDialog.h"

namespace {
class Cells : public RulesDialog {
protected:
    static void PickKind(Dialog& d, int row, int index) { d.PickFromPopup(OpenPopup(d, row), index); }
};
}  // namespace

TEST_F(Cells, ChangingToKeyLosesTheNameAndBackToValueAsksForANewOne) {
    control.AddValueRule(L"HKCU\\a", L"old", 0);
    Show([&](Dialog& d) {
        PickKind(d, 0, 1);
        EXPECT_EQ(Rows(d)[0], L"Key|HKCU\\a|");
        EXPECT_EQ(CellEdit(d), nullptr);
        PickKind(d, 0, 2);
        d.WaitFor("the edit of the value cell", [&] { return CellEdit(d) != nullptr; });
        EXPECT_EQ(Rows(d)[0], L"Value|HKCU\\a|(Default)");
        d.Type(L"name");
        d.Key(VK_RETURN);
        d.Click(IDOK);
    });
    EXPECT_EQ(HostRules(), Texts{L"Value|HKEY_CURRENT_USER\\a|name|0"});
}

TEST_F(Cells, TheValueCellDecidesTheKind) {
    control.AddKeyRule(L"HKCU\\a", 0, 0);
    const struct {
        const wchar_t* typed;
        const wchar_t* row;
    } cases[] = {{L"name", L"Value|HKCU\\a|name"},
                 {L"  ", L"Branch|HKCU\\a|  "},  // blanks count as nothing and stay
                 {L" n ", L"Value|HKCU\\a| n "},
                 {L"", L"Branch|HKCU\\a|"}};
    Show([&](Dialog& d) {
        OpenCellEdit(d, 0, 2);
        d.Key(VK_RETURN);
        EXPECT_EQ(Rows(d)[0], L"Branch|HKCU\\a|") << "a Key row whose empty value is edited and left empty";
        for (const auto& c : cases) {
            OpenCellEdit(d, 0, 2);
            ClearByKeys(d);
            d.Type(c.typed);
            d.Key(VK_RETURN);
            EXPECT_EQ(Rows(d)[0], c.row);
        }
        Discard(d);
    });
}

TEST_F(Cells, AnEditedKeyIsTakenAsTypedAndMayEqualAnotherRow) {
    control.AddKeyRule(L"HKCU\\a", 1, 0);
    control.AddKeyRule(L"HKCU\\b", 1, 1);
    EXPECT_EQ(Show([&](Dialog& d) {
                  OpenCellEdit(d, 1, 1);
                  ClearByKeys(d);
                  d.Type(L"HKCU\\a");
                  d.Key(VK_RETURN);
                  EXPECT_EQ(Rows(d), (Texts{L"Branch|HKCU\\a|", L"Branch|HKCU\\a|"}));
                  d.Click(IDOK);
              }),
              1);
    EXPECT_EQ(HostRules(), (Texts{L"Branch|HKEY_CURRENT_USER\\a|0", L"Branch|HKEY_CURRENT_USER\\a|1"}));
    // The fill keeps one of them; a small abbreviation is nobody's to expand.
    Show([&](Dialog& d) {
        EXPECT_EQ(Rows(d), Texts{L"Branch|HKCU\\a|"});
        OpenCellEdit(d, 0, 1);
        ClearByKeys(d);
        d.Type(L"hkcu\\a");
        d.Click(IDC_REGISTRY_TREE);
        EXPECT_EQ(Rows(d), Texts{L"Branch|hkcu\\a|"}) << "leaving the cell ends the edit as Return does";
        d.Click(IDOK);
    });
    EXPECT_EQ(HostRules(), Texts{L"Branch|hkcu\\a|0"});
}

TEST_F(Cells, EscapeBringsTheOldTextBackAndIsAChangeAllTheSame) {
    control.AddValueRule(L"HKCU\\a", L"name", 0);
    for (const int column : {1, 2}) {
        EXPECT_EQ(Show([&](Dialog& d) {
                      const HWND edit = OpenCellEdit(d, 0, column);
                      const int length = column == 1 ? 6 : 4;
                      EXPECT_EQ(Dialog::EditSelection(edit), std::pair(0, length)) << "all of it is selected";
                      d.Type(L"HKCU\\new");
                      d.Key(VK_ESCAPE);
                      EXPECT_EQ(CellEdit(d), nullptr);
                      EXPECT_EQ(Rows(d), Texts{L"Value|HKCU\\a|name"});
                      EXPECT_EQ(d.FocusId(), IDC_RULE_LIST);
                      d.Click(IDOK);
                  }),
                  1);
    }
}

TEST_F(Cells, ARefusedKeyHoldsTheCellUntilItIsCorrectedOrGivenUp) {
    control.AddKeyRule(L"HKCU\\a", 1, 0);
    control.AddKeyRule(L"HKCU\\b", 1, 1);
    Show([&](Dialog& d) {
        const HWND edit = OpenCellEdit(d, 0, 1);
        ClearByKeys(d);
        // An emptied key is an unknown hive, not a bare one.
        d.Key(VK_RETURN);
        EXPECT_EQ(d.AnswerBox(IDOK), unknownHive);
        EXPECT_EQ(d.Focus(), edit);
        d.Type(L"HKLM");
        d.List(IDC_RULE_LIST).Click(1, 1);
        EXPECT_EQ(d.AnswerBox(IDOK), bareHive);
        EXPECT_EQ(d.Focus(), edit);
        EXPECT_EQ(CellEdit(d), edit);
        d.Click(IDC_NEW_VALUE);
        EXPECT_EQ(d.AnswerBox(IDCANCEL), bareHive);
        d.WaitFor("the end of the edit", [&] { return CellEdit(d) == nullptr; });
        EXPECT_EQ(Rows(d)[0], L"Branch|HKCU\\a|") << "the cell keeps its old text";
        d.Click(IDCANCEL);
    });
    EXPECT_EQ(driver.BoxTexts().size(), 3u) << "no change, no question";
}

TEST_F(Cells, AKindChosenByKeysOpensTheEditOfItsValue) {
    control.AddKeyRule(L"HKCU\\a", 1, 0);
    Show([&](Dialog& d) {
        const HWND combo = OpenCellCombo(d, 0);
        EXPECT_EQ(SendMessageW(combo, CB_GETCOUNT, 0, 0), 3);
        EXPECT_EQ(SendMessageW(combo, CB_GETCURSEL, 0, 0), 0);
        d.Key(VK_END);
        // What is left of this key must not end the edit that it opens.
        d.Key(VK_RETURN);
        d.WaitFor("the edit of the value cell", [&] { return CellEdit(d) != nullptr; });
        EXPECT_EQ(d.Focus(), CellEdit(d));
        d.Key(VK_ESCAPE);
        d.Click(IDOK);
    });
    EXPECT_EQ(HostRules(), Texts{L"Value|HKEY_CURRENT_USER\\a||0"});
}

TEST_F(Cells, DeletingMovesTheSelectionToTheNextRowOrTheLast) {
    for (const wchar_t* key : {L"HKCU\\0", L"HKCU\\1", L"HKCU\\2", L"HKCU\\3"}) control.AddKeyRule(key, 1, 32767);
    Show([&](Dialog& d) {
        ListSteps list = d.List(IDC_RULE_LIST);
        list.Click(1, 1);
        d.Key(VK_DELETE);
        EXPECT_EQ(Rows(d), (Texts{L"Branch|HKCU\\0|", L"Branch|HKCU\\2|", L"Branch|HKCU\\3|"}));
        EXPECT_EQ(list.SelectedRow(), 1);
        d.Click(IDC_DELETE_RULE);
        d.Alt(L'D');
        EXPECT_EQ(Rows(d), Texts{L"Branch|HKCU\\0|"});
        EXPECT_EQ(list.SelectedRow(), 0);
        EXPECT_TRUE(DeleteIsLive(d));
        EXPECT_EQ(d.FocusId(), IDC_DELETE_RULE) << "ready for the next row";
        d.Key(VK_SPACE);
        EXPECT_TRUE(Rows(d).empty());
        EXPECT_FALSE(DeleteIsLive(d));
        EXPECT_FALSE(DeleteHasTabStop(d));
        EXPECT_EQ(d.FocusId(), IDC_RULE_LIST) << "a dead button must not keep the focus";
        d.Key(VK_ESCAPE);
        d.AnswerBox(IDYES);
    });
}

TEST_F(Cells, DeleteWithNothingSelectedSelectsTheLastRowAndIsAChange) {
    constexpr short rows = 40;  // more than are in view
    for (short row = 0; row < rows; ++row) control.AddKeyRule((L"HKCU\\" + std::to_wstring(row)).c_str(), 1, row);
    EXPECT_EQ(Show([&](Dialog& d) {
                  const HWND list = d.Control(IDC_RULE_LIST);
                  d.OnGuiThread([&] { SetFocus(list); });
                  EXPECT_FALSE(ListView_IsItemVisible(list, rows - 1));
                  d.Key(VK_DELETE);
                  EXPECT_EQ(Rows(d).size(), std::size_t{rows});
                  EXPECT_EQ(d.List(IDC_RULE_LIST).SelectedRow(), rows - 1);
                  EXPECT_TRUE(ListView_IsItemVisible(list, rows - 1));
                  d.Click(IDOK);
              }),
              1);
}

TEST_F(Cells, TheDeleteButtonFollowsTheSelection) {
    control.AddKeyRule(L"HKCU\\a", 1, 0);
    Show([&](Dialog& d) {
        EXPECT_FALSE(DeleteIsLive(d));
        EXPECT_FALSE(DeleteHasTabStop(d));
        d.OnGuiThread([&] { SetFocus(d.Control(IDC_RULE_LIST)); });
        EXPECT_FALSE(DeleteIsLive(d)) << "no row is selected";
        d.KeyDown(VK_DOWN);
        EXPECT_TRUE(DeleteIsLive(d));
        EXPECT_FALSE(DeleteHasTabStop(d)) << "the selection alone leaves the tab stop off";
        d.KeyUp(VK_DOWN);
        EXPECT_TRUE(DeleteHasTabStop(d)) << "a key released in the list puts it on";
        d.Click(IDC_REGISTRY_TREE);
        EXPECT_TRUE(DeleteIsLive(d));
        // A click of the right button and a key in the list look at the selection and set the tab stop by it.
        const HWND list = d.Control(IDC_RULE_LIST);
        for (const UINT code : {NM_RCLICK, LVN_KEYDOWN}) {
            for (const bool selects : {false, true}) {
                d.OnGuiThread([&] {
                    ListView_SetItemState(list, 0, selects ? LVIS_SELECTED : 0, LVIS_SELECTED);
                    EXPECT_EQ(DeleteHasTabStop(d), !selects) << "until somebody looks";
                    NMLVKEYDOWN notification{{list, IDC_RULE_LIST, code}, VK_F8, 0};
                    SendMessageW(d.Window(), WM_NOTIFY, IDC_RULE_LIST, reinterpret_cast<LPARAM>(&notification));
                });
                EXPECT_EQ(DeleteHasTabStop(d), selects) << code;
            }
        }
        d.Click(IDCANCEL);
    });
}
