#include "controls/ComboListCtrl.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "controls/ControlsHost.h"
#include "entry/InPlaceCombo.h"
#include "entry/InPlaceEdit.h"
#include "entry/PrivateMessages.h"
#include "resources/resource.h"
#include "support/DialogDriver.h"
#include "support/WindowText.h"

namespace {

using Told = std::vector<UINT>;

class ComboListCtrlTest : public testing::Test {
protected:
    ComboListCtrlTest() {
        m_host.m_rows = {{L"Branch", L"HKCU\\a", L""}, {L"Value", L"HKCU\\b", L"v"}, {L"Key", L"HKCU\\c", L""}};
    }

    // Runs the script on the open dialog and cancels the dialog after it.
    void Run(const std::function<void(Dialog&, ListSteps&)>& script) {
        DialogDriver driver;
        driver.Run([this] { m_host.DoModal(); },
                   [&](Dialog& d) {
                       ListSteps list = d.List(IDC_RULE_LIST);
                       script(d, list);
                       d.Click(IDCANCEL);
                   });
    }

    static HWND Edit(const ListSteps& list) { return Dialog::FindBelow(list.Window(), L"Edit"); }
    static HWND Combo(const ListSteps& list) { return Dialog::FindBelow(list.Window(), L"ComboBox"); }
    // In the coordinates of its parent.
    static CRect PlaceOf(HWND window) {
        CRect place;
        GetWindowRect(window, &place);
        MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&place), 2);
        return place;
    }
    // By a first click, which selects the row, and a second one.
    static void OpenEditor(ListSteps& list, int row, int column) {
        list.Click(row, column);
        list.Click(row, column);
    }
    static bool NoEditor(const ListSteps& list) { return Edit(list) == nullptr && Combo(list) == nullptr; }

    CControlsHost m_host;
};

TEST_F(ComboListCtrlTest, FirstClickSelectsAndTheSecondEdits) {
    Run([&](Dialog& d, ListSteps& list) {
        list.Click(1, 2);
        EXPECT_EQ(list.SelectedRow(), 1);
        EXPECT_TRUE(NoEditor(list));
        EXPECT_EQ(m_host.TakeTold(), Told{RRM_ENABLE_CELL_EDIT});

        list.Click(1, 2);
        ASSERT_NE(Edit(list), nullptr);
        EXPECT_EQ(d.Focus(), Edit(list));
        EXPECT_EQ(WindowText(Edit(list)), L"v");
        EXPECT_EQ(Dialog::EditSelection(Edit(list)), std::make_pair(0, 1));
        EXPECT_EQ(m_host.TakeTold(), Told{RRM_ENABLE_CELL_EDIT});

        d.Type(L"w x");
        d.Key(VK_RETURN);
        EXPECT_TRUE(NoEditor(list));
        EXPECT_EQ(list.Row(1), (std::vector<std::wstring>{L"Value", L"HKCU\\b", L"w x"}));
        EXPECT_EQ(d.FocusId(), IDC_RULE_LIST);
        EXPECT_EQ(m_host.TakeTold(), (Told{RRM_CELL_CHANGED, RRM_MARK_DIRTY, RRM_CELL_EDIT_DONE, RRM_LIST_KEY_UP}));

        // A row selected by keyboard was not selected at the last click.
        d.Key(VK_DOWN);
        list.Click(2, 1);
        EXPECT_TRUE(NoEditor(list));
        list.Click(2, 1);
        EXPECT_EQ(WindowText(Edit(list)), L"HKCU\\c");
    });
}

TEST_F(ComboListCtrlTest, ClickWithShiftOrCtrlNeitherEditsNorTells) {
    Run([&](Dialog& d, ListSteps& list) {
        list.Click(0, 1);
        m_host.TakeTold();
        for (const WORD modifier : {WORD{VK_SHIFT}, WORD{VK_CONTROL}}) {
            d.KeyDown(modifier);
            list.Click(0, 1);
            EXPECT_TRUE(NoEditor(list));
            list.Click(1, 1);
            d.KeyUp(modifier);
            EXPECT_EQ(m_host.TakeTold(), Told{RRM_LIST_KEY_UP});
        }
        // Row 0 is still the one of the last plain click.
        list.Click(0, 1);
        EXPECT_NE(Edit(list), nullptr);
    });
}

TEST_F(ComboListCtrlTest, DoubleClickEditsAtOnce) {
    Run([&](Dialog& d, ListSteps& list) {
        list.DoubleClick(1, 1);
        ASSERT_NE(Edit(list), nullptr);
        EXPECT_EQ(WindowText(Edit(list)), L"HKCU\\b");
        EXPECT_EQ(m_host.TakeTold(), (Told{RRM_ENABLE_CELL_EDIT, RRM_ENABLE_CELL_EDIT}));
        d.Key(VK_ESCAPE);

        // The focus is still on row 1, as it is elsewhere when the strip has made a rule.
        d.OnGuiThread([&] { m_host.m_list.SetItemState(0, LVIS_SELECTED, LVIS_SELECTED); });
        list.DoubleClick(0, 1);
        EXPECT_NE(Edit(list), nullptr);
        d.Key(VK_ESCAPE);
        m_host.TakeTold();

        d.DoubleClick(list.BehindRows());
        EXPECT_TRUE(NoEditor(list));
        EXPECT_EQ(m_host.TakeTold(), Told{RRM_ENABLE_CELL_EDIT});
    });
}

TEST_F(ComboListCtrlTest, ScrollingEndsAnEdit) {
    for (int row = 3; row < 60; ++row) {
        m_host.m_rows.push_back({L"Value", L"HKCU\\row", L"old"});
    }
    Run([&](Dialog& d, ListSteps& list) {
        OpenEditor(list, 3, 2);
        d.Type(L"new");
        // The arrow at the bottom of the scroll bar.
        RECT area{};
        GetWindowRect(list.Window(), &area);
        d.Click(POINT{area.right - 8, area.bottom - 8});
        EXPECT_TRUE(NoEditor(list));
        EXPECT_EQ(list.Text(3, 2), L"new");
        EXPECT_EQ(ListView_GetTopIndex(list.Window()), 1);

        list.Click(3, 2);
        ASSERT_NE(Edit(list), nullptr);
        d.OnGuiThread([&] { SendMessageW(list.Window(), WM_HSCROLL, SB_LINERIGHT, 0); });
        d.WaitFor("the edit to end", [&] { return NoEditor(list); });
    });
}

TEST_F(ComboListCtrlTest, EditCellNeedsAFocusedRowAnExistingCellAndLeave) {
    Run([&](Dialog& d, ListSteps& list) {
        list.Click(1, 1);
        CComboListCtrl& control = m_host.m_list;
        d.OnGuiThread([&] {
            for (const auto& [row, column] : {std::pair{0, 1}, {-1, 1}, {3, 1}, {1, 3}, {1, -1}, {1, 1000000}}) {
                control.EditCell(row, column);
                EXPECT_TRUE(NoEditor(list)) << row << ", " << column;
            }
            control.EnableCellEdit(false);
            control.EditCell(1, 1);
            EXPECT_TRUE(NoEditor(list));
            control.EnableCellEdit(true);
            control.ModifyStyle(LVS_EDITLABELS, 0);
            control.EditCell(1, 1);
            EXPECT_TRUE(NoEditor(list));
            control.ModifyStyle(0, LVS_EDITLABELS);
            control.EditCell(1, 1);
            EXPECT_FALSE(NoEditor(list));
            EXPECT_EQ(control.ShowInPlaceCombo(7, 0, CStringList(), L"", -1), nullptr);
            for (const int column : {-1, 3, 1000000}) {
                EXPECT_EQ(control.ShowInPlaceCombo(1, column, CStringList(), L"", -1), nullptr) << column;
                CRect rect(1, 2, 3, 4);
                control.ScrollToView(column, rect);
                EXPECT_FALSE(control.CalculateCellRect(column, 1, rect));
                EXPECT_EQ(rect, CRect(1, 2, 3, 4)) << column;
            }
        });
    });
}

TEST_F(ComboListCtrlTest, NarrowColumnHasNoDropDownButAnEditOfTheAllowedCharacters) {
    Run([&](Dialog& d, ListSteps& list) {
        CComboListCtrl& control = m_host.m_list;
        list.Click(1, 2);
        d.OnGuiThread([&] {
            ListView_SetColumnWidth(list.Window(), 0, 9);
            control.EditCell(1, 0);
            EXPECT_TRUE(NoEditor(list));
            ListView_SetColumnWidth(list.Window(), 2, 9);
            control.SetValidEditCtrlCharacters(L"xyz");
            control.EditCell(1, 2);
        });
        ASSERT_NE(Edit(list), nullptr);
        d.Type(L"x");
        d.Type(L"a");
        d.AnswerBox(IDOK);
        EXPECT_EQ(WindowText(Edit(list)), L"x");
        d.Key(VK_ESCAPE);
        d.OnGuiThread([&] {
            ListView_SetColumnWidth(list.Window(), 0, 10);
            control.EditCell(1, 0);
            EXPECT_NE(Combo(list), nullptr);
        });
    });
}

TEST_F(ComboListCtrlTest, SystemsOwnLabelEditKeepsOffReadOnlyColumns) {
    Run([&](Dialog& d, ListSteps& list) {
        d.OnGuiThread([&] {
            EXPECT_EQ(ListView_EditLabel(list.Window(), 0), nullptr);
            m_host.m_list.SetReadOnlyColumns(0, false);
            const HWND edit = ListView_EditLabel(list.Window(), 0);
            EXPECT_NE(edit, nullptr);
            SetWindowTextW(edit, L"other");
            SendMessageW(edit, WM_KEYDOWN, VK_ESCAPE, 0);
            m_host.m_list.SetReadOnlyColumns(0, true);
        });
        d.WaitFor("the label edit to end", [&] { return NoEditor(list); });
        EXPECT_EQ(list.Text(0, 0), L"Branch") << "a cancelled label edit comes without a text";
    });
}

TEST_F(ComboListCtrlTest, ClickOnANeighbourCellEndsTheEditAndTheNextOneEditsThere) {
    Run([&](Dialog& d, ListSteps& list) {
        OpenEditor(list, 1, 1);
        d.Type(L"HKLM\\New");
        // The old edit's window is still on its way out.
        list.Click(1, 2);
        EXPECT_EQ(list.Text(1, 1), L"HKLM\\New");
        EXPECT_TRUE(NoEditor(list));
        list.Click(1, 2);
        ASSERT_NE(Edit(list), nullptr);
        EXPECT_EQ(WindowText(Edit(list)), L"v");
        list.Click(1, 0);
        EXPECT_EQ(Edit(list), nullptr);
        EXPECT_NE(Combo(list), nullptr);
    });
}

TEST_F(ComboListCtrlTest, EditorOfADeletedRowEndsQuietly) {
    Run([&](Dialog& d, ListSteps& list) {
        OpenEditor(list, 2, 2);
        ASSERT_NE(Edit(list), nullptr);
        d.OnGuiThread([&] { m_host.m_list.DeleteItem(2); });
        d.Type(L"late");
        d.Key(VK_RETURN);
        EXPECT_TRUE(NoEditor(list));
        EXPECT_EQ(list.Rows(),
                  (std::vector<std::vector<std::wstring>>{{L"Branch", L"HKCU\\a", L""}, {L"Value", L"HKCU\\b", L"v"}}));
        OpenEditor(list, 1, 0);
        ASSERT_NE(Combo(list), nullptr);
        d.OnGuiThread([&] { ListView_DeleteAllItems(list.Window()); });
        d.Key(VK_RETURN);
        d.WaitFor("the drop-down to close", [&] { return NoEditor(list); });
        EXPECT_EQ(list.RowCount(), 0);
    });
}

TEST_F(ComboListCtrlTest, CellOutOfViewIsScrolledInUnderItsEditor) {
    Run([&](Dialog& d, ListSteps& list) {
        list.Click(1, 1);
        d.OnGuiThread([&] {
            CComboListCtrl& control = m_host.m_list;
            ListView_SetColumnWidth(list.Window(), 1, 1000);
            ListView_SetColumnWidth(list.Window(), 2, 2000);
            control.EditCell(1, 2);
            CRect row;
            control.GetItemRect(1, &row, LVIR_BOUNDS);
            EXPECT_EQ(row.left, -1061);
            EXPECT_EQ(PlaceOf(Edit(list)), CRect(0, row.top, 2000, row.bottom - 1));
        });
        d.Key(VK_ESCAPE);
        d.OnGuiThread([&] {
            CComboListCtrl& control = m_host.m_list;
            control.EditCell(1, 0);
            CRect row;
            control.GetItemRect(1, &row, LVIR_BOUNDS);
            EXPECT_EQ(row.left, 0);
            EXPECT_EQ(PlaceOf(Combo(list)).TopLeft(), row.TopLeft());
        });
    });
}

}  // namespace
