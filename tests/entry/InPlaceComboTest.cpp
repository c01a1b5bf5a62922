#include "entry/EntryFixture.h"

namespace {

class InPlaceCombo : public EntryTest {
protected:
    HWND OpenCombo(Dialog& d, int row, const CString& text, int selection = -1) {
        const bool opened = [&] {
            BOOL result = FALSE;
            d.OnGuiThread([&] {
                CStringList kinds(10);
                for (const wchar_t* kind : {L"Branch", L"Key", L"Value"}) kinds.AddTail(kind);
                CInPlaceCombo* const combo = CInPlaceCombo::GetInstance();
                result = combo->ShowComboCtrl(
                    WS_VISIBLE | WS_CHILD | CBS_DROPDOWNLIST | CBS_AUTOHSCROLL | CBS_OEMCONVERT | CBS_DISABLENOSCROLL,
                    CRect(5, 25, 105, 145), &m_dialog->list, 0, row, 0, kinds, text, selection);
                if (selection == -1) combo->SelectString(-1, text);
            });
            return result != FALSE;
        }();
        EXPECT_TRUE(opened);
        Events();
        const HWND combo = Dialog::FindBelow(d.Control(IDC_CELLS), L"ComboBox");
        EXPECT_EQ(d.Focus(), combo);
        d.Move(Dialog::Centre(d.Control(IDOK)));  // away from the list that drops down
        return combo;
    }

    void ExpectEnd(Dialog& d, HWND combo, int row, const std::string& text) {
        d.WaitFor("the combo's end", [&] { return !IsWindow(combo); });
        EXPECT_EQ(Events(), (EventLog{"list end " + std::to_string(row) + ",0 '" + text + "'"}));
    }

    static bool IsDropped(HWND combo) { return SendMessageW(combo, CB_GETDROPPEDSTATE, 0, 0) != 0; }
};

TEST_F(InPlaceCombo, OffersTheListInItsOrderAndInTheListsFont) {
    Run([&](Dialog& d) {
        const HWND combo = OpenCombo(d, 0, L"Key");
        ASSERT_EQ(SendMessageW(combo, CB_GETCOUNT, 0, 0), 3);
        EXPECT_EQ(WindowText(combo), L"Key");
        EXPECT_EQ(SendMessageW(combo, WM_GETFONT, 0, 0), SendMessageW(d.Control(IDC_CELLS), WM_GETFONT, 0, 0));
        d.Key(VK_UP);
        d.Key(VK_UP);
        EXPECT_EQ(WindowText(combo), L"Branch");
        d.Key(VK_END);
        EXPECT_EQ(WindowText(combo), L"Value");
        d.Key(VK_RETURN);
        ExpectEnd(d, combo, 0, "Value");
        EXPECT_EQ(d.FocusId(), IDC_CELLS);
        Close(d);
    });
}

TEST_F(InPlaceCombo, EscapeBringsBackTheTextFromTheStart) {
    Run([&](Dialog& d) {
        HWND combo = OpenCombo(d, 1, L"Branch");
        d.Key(VK_DOWN);
        d.Key(VK_ESCAPE);
        ExpectEnd(d, combo, 1, "Branch");
        EXPECT_EQ(d.FocusId(), IDC_CELLS);

        combo = OpenCombo(d, 2, L"", 2);  // by index
        d.Key(VK_UP);
        EXPECT_EQ(WindowText(combo), L"Key");
        d.Key(VK_ESCAPE);
        ExpectEnd(d, combo, 2, "Value");

        combo = OpenCombo(d, 3, L"Branch");  // the flag of the last edit is gone
        d.Key(VK_DOWN);
        d.Key(VK_RETURN);
        ExpectEnd(d, combo, 3, "Key");
        Close(d);
    });
}

TEST_F(InPlaceCombo, EscapeInTheDroppedListKeepsTheOldText) {
    Run([&](Dialog& d) {
        const HWND combo = OpenCombo(d, 0, L"Branch");
        d.Key(VK_F4);
        ASSERT_TRUE(IsDropped(combo));
        d.Key(VK_DOWN);
        d.Key(VK_DOWN);
        d.Key(VK_ESCAPE);
        ExpectEnd(d, combo, 0, "Branch");
        EXPECT_EQ(d.FocusId(), IDC_CELLS);
        Close(d);
    });
}

TEST_F(InPlaceCombo, ReturnInTheDroppedListTakesTheItem) {
    Run([&](Dialog& d) {
        const HWND combo = OpenCombo(d, 0, L"Branch");
        d.Key(VK_F4);
        d.Key(VK_DOWN);
        d.Key(VK_RETURN);
        ExpectEnd(d, combo, 0, "Key");
        Close(d);
    });
}

TEST_F(InPlaceCombo, AClickOnAnItemTakesItAndEnds) {
    Run([&](Dialog& d) {
        const HWND combo = OpenCombo(d, 0, L"Branch");
        d.Click(combo);
        d.PickFromPopup(combo, 2);
        ExpectEnd(d, combo, 0, "Value");
        EXPECT_EQ(d.FocusId(), IDC_CELLS);
        Close(d);
    });
}

TEST_F(InPlaceCombo, AClickElsewhereEndsWithWhatIsSelected) {
    Run([&](Dialog& d) {
        HWND combo = OpenCombo(d, 0, L"Branch");
        d.Key(VK_DOWN);
        d.Click(IDC_ELSEWHERE);
        ExpectEnd(d, combo, 0, "Key");
        EXPECT_EQ(d.FocusId(), IDC_ELSEWHERE);

        combo = OpenCombo(d, 0, L"Key");
        d.Key(VK_F4);
        d.Key(VK_DOWN);
        d.Click(IDC_ELSEWHERE);  // closes the list, which ends the edit with the item from before
        ExpectEnd(d, combo, 0, "Key");
        Close(d);
    });
}

TEST_F(InPlaceCombo, TabEndsIt) {
    Run([&](Dialog& d) {
        HWND combo = OpenCombo(d, 0, L"Branch");
        d.Key(VK_DOWN);
        d.Key(VK_TAB);
        ExpectEnd(d, combo, 0, "Key");

        combo = OpenCombo(d, 0, L"Branch");
        d.Key(VK_F4);
        d.Key(VK_TAB);
        d.Click(IDC_ELSEWHERE);
        ExpectEnd(d, combo, 0, "Branch");
        Close(d);
    });
}

// The dialog opens the value's editor when a kind was chosen: the rest of the key that chose it must not end that.
TEST_F(InPlaceCombo, LeavesTheFocusWithAnEditorThatItsEndOpens) {
    Run([&](Dialog& d) {
        for (const bool dropped : {false, true}) {
            const HWND combo = OpenCombo(d, 0, L"Branch");
            d.OnGuiThread([&] {
                m_dialog->list.onEndEdit = [&] {
                    m_dialog->list.onEndEdit = nullptr;
                    CInPlaceEdit::GetInstance()->ShowEditCtrl(0, CRect(110, 25, 205, 45), &m_dialog->list, 0, 0, 2, L"",
                                                              L"(Default)");
                };
            });
            if (dropped) d.Key(VK_F4);
            d.Key(VK_END);
            d.Key(VK_RETURN);
            ExpectEnd(d, combo, 0, "Value");
            const HWND edit = Dialog::FindBelow(d.Control(IDC_CELLS), L"Edit");
            ASSERT_NE(edit, nullptr);
            EXPECT_EQ(d.Focus(), edit);
            d.Type(L"name");
            d.Key(VK_RETURN);
            EXPECT_EQ(Events(), (EventLog{"list end 0,2 'name'", "dialog 8110"}));
        }
        Close(d);
    });
}

TEST_F(InPlaceCombo, GoesAwayWithoutAWordWhenItIsDeletedAndWithItsList) {
    for (const bool dropped : {false, true}) {
        Run([&](Dialog& d) {
            HWND combo = OpenCombo(d, 0, L"Branch");
            if (dropped) d.Key(VK_F4);
            d.OnGuiThread([] { CInPlaceCombo::DeleteInstance(); });
            EXPECT_FALSE(IsWindow(combo));
            EXPECT_EQ(Events(), EventLog{});

            combo = OpenCombo(d, 0, L"Branch");
            if (dropped) d.Key(VK_F4);
            d.OnGuiThread([&] { m_dialog->list.DestroyWindow(); });
            EXPECT_FALSE(IsWindow(combo));
            Close(d);
        });
    }
    Run([&](Dialog& d) {
        const HWND combo = OpenCombo(d, 9, L"Branch");
        d.Key(VK_RETURN);
        ExpectEnd(d, combo, 9, "Branch");
        Close(d);
    });
}

// The list's handler of the end deletes the editors, as a list that goes away does.
TEST_F(InPlaceCombo, MayBeDeletedByItsOwnEnd) {
    Run([&](Dialog& d) {
        const HWND combo = OpenCombo(d, 0, L"Branch");
        d.OnGuiThread([&] {
            m_dialog->list.onEndEdit = [&] {
                m_dialog->list.onEndEdit = nullptr;
                CInPlaceCombo::DeleteInstance();
            };
        });
        d.Key(VK_RETURN);
        ExpectEnd(d, combo, 0, "Branch");
        Close(d);
    });
}

TEST_F(InPlaceCombo, AHostileSelectionSelectsNothing) {
    Run([&](Dialog& d) {
        for (const int selection : {3, 1000, -2}) {
            const HWND combo = OpenCombo(d, 0, L"Key", selection);
            EXPECT_EQ(SendMessageW(combo, CB_GETCURSEL, 0, 0), CB_ERR);
            d.Key(VK_RETURN);
            ExpectEnd(d, combo, 0, "");
        }
        Close(d);
    });
}

}  // namespace
