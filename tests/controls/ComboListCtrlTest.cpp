#include "controls/ComboListCtrl.h"

#include "controls/ControlsHost.h"
#include "support/WindowText.h"

namespace {

class ComboList : public ControlsTest {
protected:
    // In the coordinates of the list.
    static CRect PlaceOf(HWND editor) {
        CRect place;
        GetWindowRect(editor, &place);
        MapWindowPoints(nullptr, GetParent(editor), reinterpret_cast<POINT*>(&place), 2);
        return place;
    }
    // Closes the editor.
    void Escape() {
        m_d->Key(VK_ESCAPE);
        Told();
    }
    CWatchedList& m_list = m_host.m_list;
};

}  // namespace

TEST_F(ComboList, ClicksSelectThenEditAndTheirEditsEndWithEachOther) {
    Run([&](Dialog& d) {
        ListSteps list = d.List(IDC_RULE_LIST);
        const auto click = [&](int row, int column) {
            list.Click(row, column);
            return Edit() != nullptr ? WindowText(Edit()) : Combo() != nullptr ? L"drop-down" : L"none";
        };
        EXPECT_EQ(click(1, kValue), L"none");
        EXPECT_EQ(list.SelectedRow(), 1);
        EXPECT_EQ(click(1, kValue), L"v");
        EXPECT_EQ(d.Focus(), Edit());
        EXPECT_EQ(Dialog::EditSelection(Edit()), std::make_pair(0, 1));
        EXPECT_EQ(Told(), "8100 8100");
        Type(L"w x\r");
        EXPECT_EQ(list.Row(1), (std::vector<std::wstring>{L"Value", L"HKCU\\b", L"w x"}));
        EXPECT_EQ(d.FocusId(), IDC_RULE_LIST);
        EXPECT_EQ(Told(), "end 1,2 'w x' 8104 8106 8110");
        m_host.m_keysReleased = 0;
        d.Key(VK_DOWN);
        EXPECT_EQ(m_host.m_keysReleased, 1);
        EXPECT_EQ(click(2, kKey), L"none") << "a row selected by keyboard was not selected at the last click";
        EXPECT_EQ(click(2, kKey), L"HKCU\\c");
        // A click on a neighbour ends the edit and the next one edits there; the old window is still on its way out.
        Type(L"HKLM\\New");
        EXPECT_EQ(click(2, kValue), L"none");
        EXPECT_EQ(list.Text(2, kKey), L"HKLM\\New");
        EXPECT_EQ(click(2, kValue), L"");
        EXPECT_EQ(click(2, kType), L"drop-down");
        Escape();
        // With Shift or Ctrl a click neither edits nor tells, and the row of the last plain click stays the same.
        for (const WORD modifier : {WORD{VK_SHIFT}, WORD{VK_CONTROL}}) {
            d.KeyDown(modifier);
            EXPECT_EQ(click(2, kKey), L"none");
            EXPECT_EQ(click(0, kKey), L"none");
            d.KeyUp(modifier);
            EXPECT_EQ(Told(), "");
        }
        EXPECT_EQ(click(2, kKey), L"HKLM\\New");
        Escape();
        // A double click edits at once, also where the focus was on another row than the one that is selected.
        list.DoubleClick(1, kKey);
        EXPECT_EQ(WindowText(Edit()), L"HKCU\\b");
        EXPECT_EQ(Told(), "8100 8100");
        Escape();
        d.OnGuiThread([&] { m_list.SetItemState(0, LVIS_SELECTED, LVIS_SELECTED); });
        list.DoubleClick(0, kKey);
        EXPECT_EQ(WindowText(Edit()), L"HKCU\\a");
        Escape();
        d.DoubleClick(list.BehindRows());
        EXPECT_TRUE(NoEditor());
        EXPECT_EQ(list.SelectedRow(), 0) << "a click beside the rows leaves the selection";
        EXPECT_EQ(Told(), "8100");
    });
}

TEST_F(ComboList, AnEditorEndsWithScrollingAndWithItsRow) {
    for (int row = 3; row < 60; ++row) m_host.m_rows.push_back({L"Value", L"HKCU\\row", L"old"});
    Run([&](Dialog& d) {
        ListSteps list = d.List(IDC_RULE_LIST);
        list.Click(3, kValue);
        list.Click(3, kValue);
        Type(L"new");
        RECT area{};
        GetWindowRect(list.Window(), &area);
        d.Click(POINT{area.right - 8, area.bottom - 8});  // the arrow at the bottom of the scroll bar
        EXPECT_TRUE(NoEditor());
        EXPECT_EQ(list.Text(3, kValue), L"new");
        EXPECT_EQ(ListView_GetTopIndex(list.Window()), 1);
        list.Click(3, kValue);
        ASSERT_NE(Edit(), nullptr);
        d.OnGuiThread([&] { SendMessageW(list.Window(), WM_HSCROLL, SB_LINERIGHT, 0); });
        d.WaitFor("the edit to end", [&] { return NoEditor(); });

        const auto before = list.Rows();
        OpenEdit(59, kValue, L"");
        d.OnGuiThread([&] { m_list.DeleteItem(59); });
        Type(L"late\r");
        EXPECT_TRUE(NoEditor());
        EXPECT_EQ(list.Rows(), decltype(before)(before.begin(), before.end() - 1));
        OpenCombo(1, L"Key");
        d.OnGuiThread([&] { ListView_DeleteAllItems(list.Window()); });
        d.Key(VK_RETURN);
        d.WaitFor("the drop-down to close", [&] { return NoEditor(); });
        EXPECT_EQ(list.RowCount(), 0);
    });
}

TEST_F(ComboList, EditCellNeedsAFocusedRowACellThatExistsAndLeave) {
    Run([&](Dialog& d) {
        ListSteps list = d.List(IDC_RULE_LIST);
        list.Click(1, kKey);
        d.OnGuiThread([&] {
            const auto opens = [&](int row, int column) {
                m_list.EditCell(row, column);
                return !NoEditor();
            };
            m_list.SetItemState(0, LVIS_SELECTED, LVIS_SELECTED);
            for (const auto& [row, column] : {std::pair{0, 1}, {-1, 1}, {3, 1}, {1, 3}, {1, -1}, {1, 1000000}})
                EXPECT_FALSE(opens(row, column)) << row << ", " << column;
            m_list.EnableCellEdit(false);
            EXPECT_FALSE(opens(1, 1));
            m_list.EnableCellEdit(true);
            m_list.ModifyStyle(LVS_EDITLABELS, 0);
            EXPECT_FALSE(opens(1, 1));
            m_list.ModifyStyle(0, LVS_EDITLABELS);
            ListView_SetColumnWidth(m_list, 0, 9);
            EXPECT_FALSE(opens(1, 0)) << "too narrow for a drop-down";
            EXPECT_EQ(m_list.ShowInPlaceCombo(7, 0, CStringList(), L"", -1), nullptr);
            for (const int column : {-1, 3, 1000000}) {
                EXPECT_EQ(m_list.ShowInPlaceCombo(1, column, CStringList(), L"", -1), nullptr) << column;
                CRect rect(1, 2, 3, 4);
                m_list.ScrollToView(column, rect);
                EXPECT_FALSE(m_list.CalculateCellRect(column, 1, rect));
                EXPECT_EQ(rect, CRect(1, 2, 3, 4)) << column;
            }
            // The system's own label edit keeps off read-only columns; a cancelled one comes without a text.
            EXPECT_EQ(ListView_EditLabel(m_list, 0), nullptr);
            m_list.SetReadOnlyColumns(0, false);
            const HWND label = ListView_EditLabel(m_list, 0);
            EXPECT_NE(label, nullptr);
            SetWindowTextW(label, L"other");
            SendMessageW(label, WM_KEYDOWN, VK_ESCAPE, 0);
            m_list.SetReadOnlyColumns(0, true);
        });
        d.WaitFor("the label edit to end", [&] { return NoEditor(); });
        EXPECT_EQ(list.Text(0, 0), L"Branch");
    });
}

TEST_F(ComboList, ACellOutOfViewIsScrolledInUnderItsEditor) {
    Run([&](Dialog& d) {
        d.List(IDC_RULE_LIST).Click(1, kKey);
        CRect row;
        d.OnGuiThread([&] {
            ListView_SetColumnWidth(m_list, 0, 10);
            ListView_SetColumnWidth(m_list, 1, 1000);
            ListView_SetColumnWidth(m_list, 2, 2000);
            m_list.EditCell(1, 2);
            m_list.GetItemRect(1, &row, LVIR_BOUNDS);
            EXPECT_EQ(row.left, -1010);
            EXPECT_EQ(PlaceOf(Edit()), CRect(0, row.top, 2000, row.bottom - 1));
        });
        Escape();
        d.OnGuiThread([&] {
            m_list.EditCell(1, 0);
            m_list.GetItemRect(1, &row, LVIR_BOUNDS);
            EXPECT_EQ(row.left, 0);
            EXPECT_EQ(PlaceOf(Combo()).TopLeft(), row.TopLeft());
            CRect dropped;
            SendMessageW(Combo(), CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&dropped));
            EXPECT_GT(dropped.Height(), 10 * row.Height()) << "room for more entries than there are";
        });
    });
}
