#include "entry/EntryFixture.h"

namespace {

class InPlaceCombo : public EntryTest {
protected:
    HWND OpenCombo(Dialog& d, int row, const CString& text, int selection = -1) {
        d.OnGuiThread([&] {
            CStringList kinds(10);
            for (const wchar_t* kind : {L"Branch", L"Key", L"Value"}) kinds.AddTail(kind);
            CInPlaceCombo* const combo = CInPlaceCombo::GetInstance();
            EXPECT_TRUE(combo->ShowComboCtrl(
                WS_VISIBLE | WS_CHILD | CBS_DROPDOWNLIST | CBS_AUTOHSCROLL | CBS_OEMCONVERT | CBS_DISABLENOSCROLL,
                CRect(5, 25, 105, 145), &m_dialog->list, 0, row, 0, kinds, text, selection));
            if (selection == -1) combo->SelectString(-1, text);
        });
        const HWND combo = Opened(d, L"ComboBox");
        EXPECT_EQ(d.Focus(), combo);
        d.Move(Dialog::Centre(d.Control(IDOK)));  // away from the list that drops down
        return combo;
    }

    void ExpectEnd(Dialog& d, HWND combo, int row, const std::string& text) {
        d.WaitFor("the combo's end", [&] { return !IsWindow(combo); });
        EXPECT_EQ(Events(), (EventLog{"list end " + std::to_string(row) + ",0 '" + text + "'"}));
    }
};

TEST_F(InPlaceCombo, KeysAndClicksEndItWithWhatTheyLeave) {
    const struct {
        const wchar_t* text;
        std::vector<WORD> keys;
        bool clickElsewhere;
        const char* end;
    } cases[] = {
        {L"Branch", {VK_DOWN, VK_ESCAPE}, false, "Branch"},  // the text from the start
        {L"Branch", {VK_DOWN, VK_RETURN}, false, "Key"},     // the flag of the last edit is gone
        {L"Branch", {VK_F4, VK_DOWN, VK_DOWN, VK_ESCAPE}, false, "Branch"},
        {L"Branch", {VK_F4, VK_DOWN, VK_RETURN}, false, "Key"},
        {L"Branch", {VK_DOWN, VK_TAB}, false, "Key"},
        {L"Branch", {VK_DOWN}, true, "Key"},
        // Closing the list ends the edit with the item from before.
        {L"Key", {VK_F4, VK_DOWN}, true, "Key"},
        {L"Branch", {VK_F4, VK_TAB}, true, "Branch"},
    };
    Run([&](Dialog& d) {
        int row = 0;
        for (const auto& c : cases) {
            const HWND combo = OpenCombo(d, row, c.text);
            for (const WORD key : c.keys) d.Key(key);
            if (c.clickElsewhere) d.Click(IDC_ELSEWHERE);
            ExpectEnd(d, combo, row++, c.end);
            const bool backInTheList = c.keys.back() == VK_ESCAPE || c.keys.back() == VK_RETURN;
            EXPECT_TRUE(!backInTheList || d.FocusId() == IDC_CELLS) << row;
        }
        for (const int selection : {3, -2}) {
            const HWND combo = OpenCombo(d, row, L"Key", selection);
            EXPECT_EQ(SendMessageW(combo, CB_GETCURSEL, 0, 0), CB_ERR) << "no such entry selects nothing";
            d.Key(VK_RETURN);
            ExpectEnd(d, combo, row, "");
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

}  // namespace
