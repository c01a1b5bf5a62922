#include "entry/InPlaceEdit.h"

#include "entry/InPlaceEditFixture.h"

namespace {

TEST_F(InPlaceEdit, OpensWithItsTextSelectedInTheFontOfTheList) {
    Run([&](Dialog& d) {
        EXPECT_EQ(CInPlaceEdit::IsActive(), 0);
        const HWND edit = OpenEdit(d, 3, kValue, L"old");
        ExpectHeld(d, edit, L"old");
        EXPECT_TRUE(IsWindowVisible(edit));
        EXPECT_EQ(Dialog::EditSelection(edit), std::pair(0, 3));
        EXPECT_EQ(SendMessageW(edit, WM_GETFONT, 0, 0), SendMessageW(d.Control(IDC_CELLS), WM_GETFONT, 0, 0));
        d.Type(L"new");
        ExpectHeld(d, edit, L"new");
        d.Key(VK_RETURN);
        EXPECT_EQ(Events(), (EventLog{"list end 3,2 'new'", "dialog 8110"}));
        ExpectClosed(d, edit);
        EXPECT_EQ(d.FocusId(), IDC_CELLS);
        Close(d);
    });
}

TEST_F(InPlaceEdit, OutsideTheKeyColumnAnyTextIsWritten) {
    Run([&](Dialog& d) {
        for (const int column : {kType, kValue}) {
            for (const std::wstring text : {L"", L"\\\\", L"no key"}) {
                const HWND edit = OpenEdit(d, 0, column, L"old");
                SetText(edit, text);
                d.Click(IDC_ELSEWHERE);
                const std::string cell = "list end 0," + std::to_string(column);
                EXPECT_EQ(Events(),
                          (EventLog{cell + " '" + std::string(text.begin(), text.end()) + "'", "dialog 8110"}));
                ExpectClosed(d, edit);
                EXPECT_EQ(d.FocusId(), IDC_ELSEWHERE);
            }
        }
        Close(d);
    });
}

TEST_F(InPlaceEdit, EscapeWritesTheTextFromTheStart) {
    Run([&](Dialog& d) {
        HWND edit = OpenEdit(d, 1, kValue, L"old");
        d.Type(L"new");
        d.Key(VK_ESCAPE);
        EXPECT_EQ(Events(), (EventLog{"list end 1,2 'old'", "dialog 8110"}));
        ExpectClosed(d, edit);

        // The next edit is a new one.
        edit = OpenEdit(d, 2, kValue, L"second");
        d.Type(L"typed");
        d.Key(VK_RETURN);
        EXPECT_EQ(Events(), (EventLog{"list end 2,2 'typed'", "dialog 8110"}));
        ExpectClosed(d, edit);
        Close(d);
    });
}

TEST_F(InPlaceEdit, AKeyIsCheckedAndARefusalHoldsTheFocus) {
    Run([&](Dialog& d) {
        const HWND edit = OpenEdit(d, 4, kKey, L"HKCU\\old");
        d.Type(L"HKCU\\a\\\\");
        d.Click(IDC_ELSEWHERE);
        EXPECT_EQ(d.AnswerBox(IDOK), kTrailing);
        EXPECT_EQ(Events(), (EventLog{"dialog 8107", "dialog 8109"}));
        ExpectHeld(d, edit, L"HKCU\\a\\\\");
        EXPECT_EQ(Dialog::EditSelection(edit), std::pair(6, 8));

        d.Key(VK_RETURN);  // still the same text, still refused
        EXPECT_EQ(d.AnswerBox(IDOK), kTrailing);
        ExpectHeld(d, edit, L"HKCU\\a\\\\");
        Events();

        d.Type(L"\\b");  // in place of the selection
        d.Key(VK_RETURN);
        EXPECT_EQ(Events(), (EventLog{"dialog 8108", "list end 4,1 'HKCU\\a\\b'", "dialog 8110"}));
        ExpectClosed(d, edit);
        EXPECT_EQ(d.FocusId(), IDC_CELLS);
        Close(d);
    });
}

TEST_F(InPlaceEdit, CancelOnARefusedKeyKeepsTheCell) {
    Run([&](Dialog& d) {
        for (const wchar_t* text : {L"HKCU\\a\\", L"nowhere", L"HKCU"}) {
            const HWND edit = OpenEdit(d, 0, kKey, L"HKCU\\old");
            SetText(edit, text);
            Leave(d);
            d.AnswerBox(IDCANCEL);
            EXPECT_EQ(Events(), (EventLog{"dialog 8108", "dialog 8110"})) << text;
            ExpectClosed(d, edit);
            EXPECT_EQ(d.FocusId(), IDC_ELSEWHERE);
        }
        Close(d);
    });
}

TEST_F(InPlaceEdit, ADeletedKeyIsAskedAbout) {
    Run([&](Dialog& d) {
        const HWND edit = OpenEdit(d, 0, kKey, L"HKCU\\old");
        d.Key(VK_DELETE);
        d.Click(IDC_ELSEWHERE);
        EXPECT_EQ(d.AnswerBox(IDOK), kUnknownHive);
        EXPECT_EQ(Events(), (EventLog{"dialog 8107", "dialog 8109"}));
        ExpectHeld(d, edit, L"");

        d.Key(VK_ESCAPE);
        EXPECT_EQ(d.AnswerBox(IDCANCEL), kUnknownHive);
        EXPECT_EQ(Events(), (EventLog{"dialog 8108"}));
        ExpectClosed(d, edit);
        Close(d);
    });
}

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

TEST_F(InPlaceEdit, TextsOfAnyLengthComeThroughWhole) {
    const std::wstring text = L"HKLM\\" + std::wstring(40000, L'k') + L"\u00E9\u4E2D";
    Run([&](Dialog& d) {
        for (const int column : {kKey, kValue}) {
            const HWND edit = OpenEdit(d, 0, column, text.c_str());
            ExpectHeld(d, edit, text);
            d.Key(VK_END);
            d.Type(L"!");
            d.Key(VK_RETURN);
            EXPECT_EQ(m_dialog->list.lastText, text + L"!");
            ExpectClosed(d, edit);
        }
        Close(d);
    });
}

}  // namespace
