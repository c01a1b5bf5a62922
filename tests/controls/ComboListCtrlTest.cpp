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
#include "support/ImportPatch.h"
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

TEST_F(ComboListCtrlTest, ChangedCellIsReportedInTheParentsName) {
    Run([&](Dialog& d, ListSteps& list) {
        list.Click(1, 1);
        list.Click(1, 1);
        d.Type(L"HKLM\\New");
        m_host.TakeTold();
        d.Key(VK_RETURN);
        const auto told = m_host.TakeToldMessages();
        ASSERT_GE(told.size(), 3u);
        EXPECT_EQ(told[0].message, RRM_RELEASE_EDIT);
        EXPECT_EQ(told[1].message, RRM_CELL_CHANGED);
        EXPECT_EQ(told[1].wParam, static_cast<WPARAM>(IDC_RULE_LIST));
        EXPECT_EQ(told[1].cell.hdr.hwndFrom, d.Window());
        EXPECT_EQ(told[1].cell.hdr.idFrom, static_cast<UINT_PTR>(IDC_RULE_LIST));
        EXPECT_EQ(told[1].cell.hdr.code, RRM_CELL_CHANGED);
        EXPECT_EQ(told[1].cell.item.mask, static_cast<UINT>(LVIF_TEXT));
        EXPECT_EQ(told[1].cell.item.iItem, 1);
        EXPECT_EQ(told[1].cell.item.iSubItem, 1);
        EXPECT_EQ(told[1].cell.item.pszText, nullptr);
        EXPECT_EQ(told[2].message, RRM_MARK_DIRTY);
        EXPECT_EQ(list.Text(1, 1), L"HKLM\\New");
    });
}

TEST_F(ComboListCtrlTest, EscapeWritesTheOldTextBackAndReportsAllTheSame) {
    Run([&](Dialog& d, ListSteps& list) {
        list.Click(1, 2);
        list.Click(1, 2);
        d.Type(L"other");
        m_host.TakeTold();
        d.Key(VK_ESCAPE);
        EXPECT_TRUE(NoEditor(list));
        EXPECT_EQ(list.Text(1, 2), L"v");
        EXPECT_EQ(m_host.TakeTold(), (Told{RRM_CELL_CHANGED, RRM_MARK_DIRTY, RRM_CELL_EDIT_DONE, RRM_LIST_KEY_UP}));
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
        m_host.TakeTold();

        d.DoubleClick(list.BehindRows());
        EXPECT_TRUE(NoEditor(list));
        EXPECT_EQ(m_host.TakeTold(), Told{RRM_ENABLE_CELL_EDIT});
    });
}

TEST_F(ComboListCtrlTest, ClickBesideTheRowsLeavesSelectionAndFocus) {
    Run([&](Dialog& d, ListSteps& list) {
        list.Click(1, 1);
        d.Click(IDC_NEW_VALUE);
        m_host.TakeTold();
        d.Click(list.BehindRows());
        EXPECT_EQ(list.SelectedRow(), 1);
        EXPECT_EQ(d.FocusId(), IDC_NEW_VALUE);
        EXPECT_EQ(m_host.TakeTold(), Told{});
    });
}

TEST_F(ComboListCtrlTest, HeaderClickDoesNothing) {
    Run([&](Dialog& d, ListSteps& list) {
        list.Click(1, 1);
        m_host.TakeTold();
        const auto rows = list.Rows();
        d.Click(Dialog::FindBelow(list.Window(), L"SysHeader32"));
        EXPECT_EQ(list.Rows(), rows);
        EXPECT_EQ(list.SelectedRow(), 1);
        EXPECT_EQ(m_host.TakeTold(), Told{});
    });
}

TEST_F(ComboListCtrlTest, KeysGoToTheParentAndThenToTheList) {
    Run([&](Dialog& d, ListSteps& list) {
        list.Click(0, 1);
        m_host.TakeTold();
        d.Key(VK_DELETE);
        EXPECT_EQ(m_host.TakeTold(), (Told{RRM_LIST_DELETE, RRM_LIST_KEY_UP}));
        EXPECT_EQ(list.RowCount(), 3) << "the parent deletes, not the list";
        d.Key(VK_DOWN);
        EXPECT_EQ(m_host.TakeTold(), Told{RRM_LIST_KEY_UP});
        EXPECT_EQ(list.SelectedRow(), 1);
    });
}

TEST_F(ComboListCtrlTest, ScrollingEndsAnEdit) {
    for (int row = 3; row < 60; ++row) {
        m_host.m_rows.push_back({L"Value", L"HKCU\\row", L"old"});
    }
    Run([&](Dialog& d, ListSteps& list) {
        list.Click(3, 2);
        list.Click(3, 2);
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

TEST_F(ComboListCtrlTest, InsertingARowMarksTheParent) {
    Run([&](Dialog& d, ListSteps& list) {
        d.OnGuiThread([&] { m_host.m_list.InsertItem(1, L"Key"); });
        EXPECT_EQ(list.RowCount(), 4);
        EXPECT_EQ(m_host.TakeTold(), Told{RRM_MARK_DIRTY});
    });
}

TEST_F(ComboListCtrlTest, DropDownOffersWhatTheParentFills) {
    Run([&](Dialog& d, ListSteps& list) {
        list.Click(2, 0);
        list.Click(2, 0);
        const HWND combo = Combo(list);
        ASSERT_NE(combo, nullptr);
        EXPECT_EQ(m_host.TakeTold(), (Told{RRM_ENABLE_CELL_EDIT, RRM_FILL_COMBO, RRM_ENABLE_CELL_EDIT}));
        EXPECT_EQ(SendMessageW(combo, CB_GETCOUNT, 0, 0), 3);
        EXPECT_EQ(SendMessageW(combo, CB_GETCURSEL, 0, 0), 1) << "the cell says Key";

        d.Click(combo);
        d.PickFromPopup(combo, 2);
        d.WaitFor("the drop-down to close", [&] { return NoEditor(list); });
        EXPECT_EQ(list.Text(2, 0), L"Value");
        EXPECT_EQ(m_host.TakeTold(), (Told{RRM_CELL_CHANGED, RRM_MARK_DIRTY}));
    });
}

// How high the last window below a list was asked to be.
int g_askedHeight = 0;

HWND WINAPI NoteHeight(DWORD exStyle, LPCWSTR name, LPCWSTR title, DWORD style, int x, int y, int width, int height,
                       HWND parent, HMENU menu, HINSTANCE instance, LPVOID data) {
    g_askedHeight = height;
    return CreateWindowExW(exStyle, name, title, style, x, y, width, height, parent, menu, instance, data);
}

TEST_F(ComboListCtrlTest, DropDownTakesTheRoomOfItsEntriesAndTenMore) {
    const ImportPatch<decltype(&CreateWindowExW)> patch(LoadedModule(L"framework.dll"), "CreateWindowExW", NoteHeight);
    Run([&](Dialog& d, ListSteps& list) {
        const RECT cell = list.CellRect(0, 0);
        list.Click(0, 0);
        for (const bool filled : {true, false}) {
            m_host.m_fillCombo = filled;
            list.Click(0, 0);
            ASSERT_NE(Combo(list), nullptr);
            EXPECT_EQ(g_askedHeight, (cell.bottom - cell.top) * (filled ? 14 : 11));
            EXPECT_EQ(PlaceOf(Combo(list)).left, 0);
            EXPECT_EQ(PlaceOf(Combo(list)).right, 61);
            d.Key(VK_ESCAPE);
        }
    });
}

TEST_F(ComboListCtrlTest, NarrowColumnHasNoDropDownButCanHaveAnEdit) {
    Run([&](Dialog& d, ListSteps& list) {
        list.Click(1, 1);
        d.OnGuiThread([&] {
            ListView_SetColumnWidth(list.Window(), 0, 9);
            m_host.m_list.EditCell(1, 0);
        });
        EXPECT_TRUE(NoEditor(list));
        d.OnGuiThread([&] {
            m_host.m_list.SetComboColumns(0, false);
            m_host.m_list.EditCell(1, 0);
        });
        EXPECT_TRUE(NoEditor(list)) << "the column is read-only";
        d.OnGuiThread([&] {
            m_host.m_list.SetReadOnlyColumns(0, false);
            m_host.m_list.EditCell(1, 0);
        });
        EXPECT_NE(Edit(list), nullptr);
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
            EXPECT_EQ(control.ShowInPlaceCombo(1, 3, CStringList(), L"", -1), nullptr);
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

TEST_F(ComboListCtrlTest, ClickDuringARefusedEditOpensNothing) {
    Run([&](Dialog& d, ListSteps& list) {
        list.Click(0, 1);
        list.Click(0, 1);
        d.Type(L"bad");
        list.Click(0, 2);
        EXPECT_EQ(d.AnswerBox(IDOK), L"The specified Hive is not valid.");
        ASSERT_NE(Edit(list), nullptr);
        EXPECT_EQ(WindowText(Edit(list)), L"bad");
        EXPECT_EQ(d.Focus(), Edit(list));

        list.Click(0, 2);
        d.AnswerBox(IDCANCEL);
        d.WaitFor("the edit to end", [&] { return NoEditor(list); });
        EXPECT_EQ(list.Text(0, 1), L"HKCU\\a");
    });
}

TEST_F(ComboListCtrlTest, EditorOfADeletedRowEndsQuietly) {
    Run([&](Dialog& d, ListSteps& list) {
        list.Click(2, 2);
        list.Click(2, 2);
        ASSERT_NE(Edit(list), nullptr);
        d.OnGuiThread([&] { m_host.m_list.DeleteItem(2); });
        d.Type(L"late");
        d.Key(VK_RETURN);
        EXPECT_TRUE(NoEditor(list));
        EXPECT_EQ(list.Rows(),
                  (std::vector<std::vector<std::wstring>>{{L"Branch", L"HKCU\\a", L""}, {L"Value", L"HKCU\\b", L"v"}}));
        list.Click(1, 0);
        list.Click(1, 0);
        ASSERT_NE(Combo(list), nullptr);
        d.OnGuiThread([&] { m_host.m_list.DeleteAllItems(); });
        d.Key(VK_RETURN);
        d.WaitFor("the drop-down to close", [&] { return NoEditor(list); });
        EXPECT_EQ(list.RowCount(), 0);
    });
}

TEST_F(ComboListCtrlTest, ListThatGoesWithAnOpenEditLeavesTheNextOneUsable) {
    for (int round = 0; round < 2; ++round) {
        CControlsHost host;
        host.m_rows = m_host.m_rows;
        DialogDriver driver;
        driver.Run([&] { host.DoModal(); },
                   [&](Dialog& d) {
                       ListSteps list = d.List(IDC_RULE_LIST);
                       list.Click(1, 2);
                       list.Click(1, 2);
                       EXPECT_NE(Edit(list), nullptr) << "round " << round;
                       d.OnGuiThread([&] { host.EndDialog(IDCANCEL); });
                   });
    }
}

TEST_F(ComboListCtrlTest, CellOfAnyLengthComesBackUnchanged) {
    const std::wstring longKey = L"HKCU\\" + std::wstring(32000, L'k');
    const std::wstring longValue(32000, L'v');
    m_host.m_rows = {{L"Value", longKey.c_str(), longValue.c_str()}};
    Run([&](Dialog& d, ListSteps& list) {
        list.Click(0, 1);
        for (const int column : {1, 2}) {
            list.Click(0, column);
            ASSERT_NE(Edit(list), nullptr);
            EXPECT_EQ(WindowText(Edit(list)).size(), list.Text(0, column).size());
            d.Key(VK_RETURN);
        }
        EXPECT_TRUE(list.Text(0, 1) == longKey);
        EXPECT_TRUE(list.Text(0, 2) == longValue);
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

TEST_F(ComboListCtrlTest, HitTestFindsCellsOfTheReportOnly) {
    Run([&](Dialog& d, ListSteps&) {
        d.OnGuiThread([&] {
            CComboListCtrl& control = m_host.m_list;
            CRect row;
            control.GetItemRect(1, &row, LVIR_BOUNDS);
            int hitRow = 7;
            int hitColumn = 7;
            const CPoint inside(row.left + 100, row.CenterPoint().y);
            EXPECT_FALSE(control.HitTestEx(inside, nullptr, &hitColumn));
            EXPECT_FALSE(control.HitTestEx(inside, &hitRow, nullptr));
            EXPECT_TRUE(control.HitTestEx(inside, &hitRow, &hitColumn));
            EXPECT_EQ(hitRow, 1);
            EXPECT_EQ(hitColumn, 1);
            EXPECT_TRUE(control.HitTestEx(CPoint(row.left + 61, inside.y), &hitRow, &hitColumn));
            EXPECT_EQ(hitColumn, 0) << "a divider belongs to the column on its left";
            EXPECT_FALSE(control.HitTestEx(CPoint(inside.x, row.bottom + 500), &hitRow, &hitColumn));
            EXPECT_EQ(hitRow, -1);
            // Where the row above the first would be.
            EXPECT_FALSE(control.HitTestEx(CPoint(inside.x, 5), &hitRow, &hitColumn));

            control.ModifyStyle(LVS_TYPEMASK, LVS_LIST);
            EXPECT_FALSE(control.HitTestEx(CPoint(5, 5), &hitRow, &hitColumn));
        });
    });
}

}  // namespace
