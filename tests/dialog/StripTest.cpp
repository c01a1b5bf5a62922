// Making rules by typing in the strip above the list.
#include <gtest/gtest.h>

#include "dialog/RulesDialog.h"

namespace {
constexpr COLORREF black = RGB(0, 0, 0);
constexpr COLORREF grey = RGB(0x80, 0x80, 0x80);

class Strip : public RulesDialog {
protected:
    // The colour in which a box of the strip would paint its text now.
    static COLORREF TextColour(Dialog& d, int id) {
        COLORREF colour = CLR_INVALID;
        const HWND box = d.Control(id);
        d.OnGuiThread([&] {
            const HDC dc = CreateCompatibleDC(nullptr);
            SendMessageW(d.Window(), WM_CTLCOLOREDIT, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(box));
            colour = GetTextColor(dc);
            DeleteDC(dc);
        });
        return colour;
    }
    static void TypeKey(Dialog& d, const wchar_t* key) {
        d.Click(IDC_NEW_KEY);
        d.Type(key);
    }
    static void PickKind(Dialog& d, int index) {
        d.Click(IDC_NEW_TYPE);
        d.PickFromPopup(d.Control(IDC_NEW_TYPE), index);
    }
};
}  // namespace

TEST_F(Strip, WithoutAKeyReturnMakesNoRule) {
    Show([&](Dialog& d) {
        // By the keyboard the watermark stays until something is typed over it.
        d.Click(IDC_NEW_TYPE);
        d.Key(VK_ESCAPE);
        d.Key(VK_TAB);
        ASSERT_EQ(d.FocusId(), IDC_NEW_KEY);
        d.Key(VK_RETURN);
        EXPECT_EQ(d.Text(IDC_NEW_KEY), watermark);
        EXPECT_EQ(d.FocusId(), IDC_NEW_KEY);
        // In the value box it asks for the key: the watermark goes, the value stays.
        d.Key(VK_TAB);
        ASSERT_EQ(d.FocusId(), IDC_NEW_VALUE);
        d.Type(L"name");
        d.Key(VK_RETURN);
        EXPECT_EQ(d.FocusId(), IDC_NEW_KEY);
        EXPECT_EQ(d.Text(IDC_NEW_KEY), L"");
        EXPECT_EQ(d.Text(IDC_NEW_VALUE), L"name");
        d.Key(VK_RETURN);
        EXPECT_TRUE(Rows(d).empty());
        d.Type(L"HKCU\\k");
        d.Key(VK_TAB);
        d.Key(VK_RETURN);
        EXPECT_EQ(Rows(d), Texts{L"Value|HKCU\\k|name"}) << "Return in the value box commits too";
        EXPECT_TRUE(DeleteHasTabStop(d)) << "the new row is selected";
        EXPECT_EQ(d.FocusId(), IDC_NEW_KEY);
        Discard(d);
    });
}

TEST_F(Strip, TheKindFollowsTheValueBoxAndTheValueBoxTheKind) {
    Show([&](Dialog& d) {
        PickKind(d, 1);
        EXPECT_EQ(d.Text(IDC_NEW_TYPE), L"Key");
        d.Click(IDC_NEW_VALUE);
        d.Type(L" n");
        EXPECT_EQ(d.Text(IDC_NEW_TYPE), L"Value");
        d.Key(VK_BACK);
        EXPECT_EQ(d.Text(IDC_NEW_TYPE), L"Key") << "blanks alone are no name; the last choice is back";
        d.Type(L"n");
        PickKind(d, 0);
        EXPECT_EQ(d.Text(IDC_NEW_VALUE), L"") << "Branch has no value";
        PickKind(d, 2);
        TypeKey(d, L"HKCU\\k");
        d.Key(VK_RETURN);
        EXPECT_EQ(Rows(d), Texts{L"Value|HKCU\\k|(Default)"});
        EXPECT_EQ(d.Text(IDC_NEW_TYPE), L"Value") << "the kind stays for the next rule";
        d.Click(IDC_NEW_VALUE);
        d.Type(L"n");
        d.Key(VK_BACK);
        EXPECT_EQ(d.Text(IDC_NEW_TYPE), L"Branch") << "Value itself is never remembered";
        Discard(d);
    });
}

TEST_F(Strip, TheWatermarkComesBackWhenTheKeyBoxIsLeftEmpty) {
    Show([&](Dialog& d) {
        EXPECT_EQ(TextColour(d, IDC_NEW_KEY), grey);
        d.Click(IDC_NEW_KEY);
        EXPECT_EQ(d.Text(IDC_NEW_KEY), L"") << "a click takes it away";
        EXPECT_EQ(TextColour(d, IDC_NEW_KEY), black);
        d.Click(IDC_NEW_VALUE);
        EXPECT_EQ(d.Text(IDC_NEW_KEY), watermark);
        EXPECT_EQ(TextColour(d, IDC_NEW_KEY), grey);
        SendMessageW(d.Control(IDC_NEW_KEY), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(3, 3));
        EXPECT_EQ(d.Text(IDC_NEW_KEY), L"") << "so does the right button";
        d.Click(IDC_NEW_KEY);
        d.Click(IDC_NEW_VALUE);
        EXPECT_EQ(d.Text(IDC_NEW_KEY), watermark);
        // An empty key box keeps the value; one with blanks counts as text when the strip is reset, so it goes.
        d.Type(L"kept");
        d.Click(IDC_NEW_KEY);
        d.Click(IDC_REGISTRY_TREE);
        EXPECT_EQ(d.Text(IDC_NEW_VALUE), L"kept");
        d.Click(IDC_NEW_KEY);
        d.Type(L"   ");
        d.Click(IDC_REGISTRY_TREE);
        EXPECT_EQ(d.Text(IDC_NEW_KEY), watermark);
        EXPECT_EQ(d.Text(IDC_NEW_VALUE), L"");
        // Reached by Tab and typed into, the watermark turns black and stays a part of the text.
        d.Click(IDC_NEW_TYPE);
        d.Key(VK_ESCAPE);
        d.Key(VK_TAB);
        d.Key(VK_END);
        d.Type(L"!");
        EXPECT_EQ(d.Text(IDC_NEW_KEY), std::wstring(watermark) + L"!");
        EXPECT_EQ(TextColour(d, IDC_NEW_KEY), black);
        d.Key(VK_ESCAPE);
        EXPECT_EQ(d.FocusId(), IDC_NEW_KEY) << "Escape in the strip does nothing";
        d.Click(IDCANCEL);
    });
    EXPECT_TRUE(driver.BoxTexts().empty());
}

TEST_F(Strip, ARefusedKeyKeepsFocusAndTextForReturnAndForTab) {
    const struct {
        const wchar_t* typed;
        const wchar_t* message;
        std::pair<int, int> selection;
        const wchar_t* afterCancel;
    } cases[] = {
        {L"Software", unknownHive, {0, 8}, L""},
        {L"HKCU", bareHive, {4, 4}, L"HKCU"},
        {L"HKLM\\a\\\\\\b\\\\c",
         L"The specified key is invalid. Multiple backslashes are not allowed.",
         {6, 9},
         L"HKLM\\a\\\\\\b\\\\c"},
    };
    Show([&](Dialog& d) {
        for (const auto& c : cases) {
            for (const WORD key : {WORD{VK_RETURN}, WORD{VK_TAB}}) {
                d.Click(IDC_NEW_KEY);
                ClearByKeys(d);
                d.Type(c.typed);
                d.Key(key);
                EXPECT_EQ(d.AnswerBox(IDOK), c.message) << key;
                EXPECT_EQ(d.FocusId(), IDC_NEW_KEY);
                EXPECT_EQ(d.Text(IDC_NEW_KEY), c.typed);
                EXPECT_EQ(Dialog::EditSelection(d.Control(IDC_NEW_KEY)), c.selection) << c.typed;
                d.Key(key);
                EXPECT_EQ(d.AnswerBox(IDCANCEL), c.message);
                EXPECT_EQ(d.FocusId(), IDC_NEW_KEY);
                EXPECT_EQ(d.Text(IDC_NEW_KEY), c.afterCancel);
            }
        }
        EXPECT_TRUE(Rows(d).empty());
        ClearByKeys(d);
        d.Click(IDCANCEL);
    });
}

TEST_F(Strip, TabGoesFromKindToKeyToValueToListAndBack) {
    control.AddKeyRule(L"HKCU\\a", 1, 0);
    Show([&](Dialog& d) {
        d.Click(IDC_NEW_TYPE);
        d.Key(VK_ESCAPE);
        // The list is brought to the top, which makes it the first in the order.
        for (const int next : {IDC_NEW_KEY, IDC_NEW_VALUE, IDC_RULE_LIST, IDC_NEW_TYPE}) {
            d.Key(VK_TAB);
            EXPECT_EQ(d.FocusId(), next);
        }
        for (const int next :
             {IDC_RULE_LIST, IDC_REGISTRY_TREE, IDCANCEL, IDOK, IDC_NEW_VALUE, IDC_NEW_KEY, IDC_NEW_TYPE}) {
            d.Key(VK_TAB, {VK_SHIFT});
            EXPECT_EQ(d.FocusId(), next);
        }
        d.Click(IDCANCEL);
    });
}

TEST_F(Strip, FocusInEitherBoxSelectsTheValueAndDisablesDelete) {
    control.AddKeyRule(L"HKCU\\a", 1, 0);
    Show([&](Dialog& d) {
        for (const int box : {IDC_NEW_KEY, IDC_NEW_VALUE}) {
            d.Click(IDC_NEW_VALUE);
            ClearByKeys(d);
            d.Type(L"name");
            SelectRow(d, 0);
            EXPECT_TRUE(DeleteIsLive(d));
            d.OnGuiThread([&] { SetFocus(d.Control(box)); });
            EXPECT_EQ(Dialog::EditSelection(d.Control(IDC_NEW_VALUE)), std::make_pair(0, 4));
            EXPECT_FALSE(DeleteIsLive(d));
            EXPECT_FALSE(DeleteHasTabStop(d));
            d.OnGuiThread([&] { SetFocus(d.Control(IDC_RULE_LIST)); });
            EXPECT_TRUE(DeleteIsLive(d)) << "a row is still selected";
            EXPECT_TRUE(DeleteHasTabStop(d));
        }
        d.Click(IDCANCEL);
    });
}
