#include "entry/InPlaceEdit.h"

#include "entry/InPlaceEditFixture.h"

namespace {

TEST_F(InPlaceEdit, EscapeOnARefusedKeyIsAskedAboutAndStaysInForce) {
    Run([&](Dialog& d) {
        const HWND edit = OpenEdit(d, 0, kKey, L"HKCU\\old");
        d.Type(L"wrong");
        d.Key(VK_ESCAPE);
        EXPECT_EQ(d.AnswerBox(IDOK), kUnknownHive);
        EXPECT_EQ(Events(), (EventLog{"dialog 8107", "dialog 8109"}));
        ExpectHeld(d, edit, L"wrong");
        EXPECT_EQ(Dialog::EditSelection(edit), std::pair(0, 5));
        d.Type(L"HKCU\\new");
        d.Key(VK_RETURN);
        EXPECT_EQ(Events(), (EventLog{"dialog 8108", "list end 0,1 'HKCU\\old'", "dialog 8110"}));
        ExpectClosed(d, edit);
        Close(d);
    });
}

TEST_F(InPlaceEdit, TabChecksInEveryColumnAndMovesNothing) {
    Run([&](Dialog& d) {
        for (const int column : {kKey, kValue}) {
            const HWND edit = OpenEdit(d, 0, column, L"HKCU\\old");
            d.Key(VK_TAB);
            EXPECT_EQ(Events(), (EventLog{"dialog 8108", "list 8102"}));
            d.Key(VK_TAB, {VK_SHIFT});
            EXPECT_EQ(Events(), (EventLog{"dialog 8108", "list 8105"}));
            ExpectHeld(d, edit, L"HKCU\\old");

            // The box takes the focus; that is no end of the edit and asks nothing again.
            SetText(edit, L"HKCU\\a\\");
            d.Key(VK_TAB);
            EXPECT_EQ(d.AnswerBox(IDOK), kTrailing);
            EXPECT_EQ(Events(), (EventLog{"dialog 8107"}));
            ExpectHeld(d, edit, L"HKCU\\a\\");
            EXPECT_EQ(Dialog::EditSelection(edit), std::pair(6, 7));
            d.Key(VK_TAB);
            d.AnswerBox(IDCANCEL);
            EXPECT_EQ(Events(), (EventLog{"dialog 8108"}));
            ExpectHeld(d, edit, L"HKCU\\a\\");

            SetText(edit, L"HKCU\\a");
            d.Key(VK_RETURN);
            ExpectClosed(d, edit);
            Events();
        }
        Close(d);
    });
    EXPECT_EQ(m_driver.BoxTexts().size(), 4u);
}

TEST_F(InPlaceEdit, CharactersOutsideTheAllowedOnesAreRefused) {
    Run([&](Dialog& d) {
        const HWND edit = OpenEdit(d, 0, kValue, L"", L"abc");
        d.Type(L"a");
        d.Type(L"x");
        EXPECT_EQ(d.AnswerBox(IDOK), L"%s is not allowed is not allowed");
        ExpectHeld(d, edit, L"a");
        d.Type(L"cb");
        d.Key(VK_BACK);
        ExpectHeld(d, edit, L"ac");
        SetText(edit, L"");
        d.OnGuiThread([&] {
            SendMessageW(edit, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(L"xyz"));
            SendMessageW(edit, EM_SETSEL, 0, -1);
        });
        d.Key('C', {VK_CONTROL});
        d.Key('V', {VK_CONTROL});
        d.Key('V', {VK_CONTROL});
        ExpectHeld(d, edit, L"xyzxyz");  // what is pasted is not looked at
        d.Key(VK_RETURN);
        EXPECT_EQ(Events(), (EventLog{"list end 0,2 'xyzxyz'", "dialog 8110"}));
        ExpectClosed(d, edit);
        Close(d);
    });
}

TEST_F(InPlaceEdit, ACarriageReturnThatComesAsACharacterEndsTheEdit) {
    Run([&](Dialog& d) {
        HWND edit = OpenEdit(d, 0, kKey, L"HKCU\\old");
        d.Key('M', {VK_CONTROL});
        EXPECT_EQ(Events(), (EventLog{"dialog 8108", "list end 0,1 'HKCU\\old'", "dialog 8110", "dialog keyup 13"}));
        ExpectClosed(d, edit);

        edit = OpenEdit(d, 0, kKey, L"HKCU");
        d.Key('M', {VK_CONTROL});
        d.AnswerBox(IDOK);
        EXPECT_EQ(Events(), (EventLog{"dialog 8107", "dialog 8109", "dialog keyup 13"}));
        ExpectHeld(d, edit, L"HKCU");
        d.Key('M', {VK_CONTROL});
        d.AnswerBox(IDCANCEL);
        ExpectClosed(d, edit);
        Close(d);
    });
}

TEST_F(InPlaceEdit, StaysWhenTheFocusGoesToNoWindowOfOurs) {
    Run([&](Dialog& d) {
        const HWND edit = OpenEdit(d, 0, kKey, L"HKCU");
        d.OnGuiThread([] { SetFocus(nullptr); });
        EXPECT_EQ(Events(), EventLog{});
        EXPECT_TRUE(IsWindow(edit));
        EXPECT_EQ(CInPlaceEdit::IsActive(), 1);
        d.Click(edit);
        ExpectHeld(d, edit, L"HKCU");
        SetText(edit, L"HKCU\\a");
        d.Key(VK_RETURN);
        ExpectClosed(d, edit);
        Close(d);
    });
}

}  // namespace
