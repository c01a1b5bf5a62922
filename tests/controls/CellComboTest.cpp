// The drop-down over a cell: what each key and click leaves in it, and what may happen while it ends.
#include "controls/ControlsHost.h"
#include "entry/InPlaceCombo.h"

namespace {

class CellCombo : public ControlsTest {
protected:
    void ExpectEnd(HWND combo, const std::string& end) {
        m_d->WaitFor("the combo's end", [&] { return !IsWindow(combo); });
        EXPECT_EQ(Told(), end + " 8104 8106");
    }
};

}  // namespace

TEST_F(CellCombo, KeysAndClicksEndItWithWhatTheyLeave) {
    const struct {
        const wchar_t* text;
        std::vector<WORD> keys;
        bool clicksElsewhere;
        const char* end;
    } cases[] = {
        {L"Branch", {VK_DOWN, VK_ESCAPE}, false, "end 0,0 'Branch'"},  // the text from the start
        {L"Branch", {VK_DOWN, VK_RETURN}, false, "end 0,0 'Key'"},     // the flag of the last edit is gone
        {L"Branch", {VK_F4, VK_DOWN, VK_DOWN, VK_ESCAPE}, false, "end 0,0 'Branch'"},
        {L"Branch", {VK_F4, VK_DOWN, VK_RETURN}, false, "end 0,0 'Key'"},
        {L"Branch", {VK_DOWN, VK_TAB}, false, "end 0,0 'Key'"},
        {L"Branch", {VK_DOWN}, true, "end 0,0 'Key'"},
        // Closing the list ends the edit with the item from before.
        {L"Key", {VK_F4, VK_DOWN}, true, "end 0,0 'Key'"},
        {L"Branch", {VK_F4, VK_TAB}, true, "end 0,0 'Branch'"},
    };
    Run([&](Dialog& d) {
        for (const auto& c : cases) {
            const HWND combo = OpenCombo(0, c.text);
            EXPECT_EQ(d.Focus(), combo);
            EXPECT_EQ(SendMessageW(combo, CB_GETCOUNT, 0, 0), 3) << "none is left of the last edit";
            EXPECT_EQ(SendMessageW(combo, WM_GETFONT, 0, 0), m_host.m_list.SendMessage(WM_GETFONT));
            for (const WORD key : c.keys) d.Key(key);
            if (c.clicksElsewhere) d.Click(IDC_NEW_VALUE);
            ExpectEnd(combo, c.end);
            const bool byKey = c.keys.back() == VK_ESCAPE || c.keys.back() == VK_RETURN;
            EXPECT_TRUE(!byKey || d.FocusId() == IDC_RULE_LIST);
        }
        for (const int selection : {3, -2}) {
            const HWND combo = OpenCombo(1, L"Key", selection);
            EXPECT_EQ(SendMessageW(combo, CB_GETCURSEL, 0, 0), CB_ERR) << "no such entry selects nothing";
            d.Key(VK_RETURN);
            ExpectEnd(combo, "end 1,0 ''");
        }
        HWND combo = OpenCombo(1, L"", 2);
        Type(L"B\x1b");
        ExpectEnd(combo, "end 1,0 'Value'");
        // The list's handler of the end deletes the editors, as a list that goes away does.
        combo = OpenCombo(2, L"Branch");
        m_host.m_list.m_onEndEdit = [] { CInPlaceCombo::DeleteInstance(); };
        d.Key(VK_RETURN);
        ExpectEnd(combo, "end 2,0 'Branch'");
    });
}

TEST_F(CellCombo, GoesAwayWithoutAWordWhenItIsDeletedAndWithItsList) {
    for (const bool dropped : {false, true}) {
        Run([&](Dialog& d) {
            HWND combo = OpenCombo(0, L"Branch");
            if (dropped) d.Key(VK_F4);
            d.OnGuiThread([] { CInPlaceCombo::DeleteInstance(); });
            EXPECT_FALSE(IsWindow(combo));
            EXPECT_EQ(Told(), "");
            combo = OpenCombo(0, L"Branch");
            if (dropped) d.Key(VK_F4);
            d.OnGuiThread([&] { m_host.m_list.DestroyWindow(); });
            EXPECT_FALSE(IsWindow(combo));
        });
    }
    Run([&](Dialog& d) {
        const HWND combo = OpenCombo(2, L"Branch");
        d.Key(VK_RETURN);
        ExpectEnd(combo, "end 2,0 'Branch'");
    });
}
