// What may happen while a cell edit ends: its message box is up, the list handles the end, windows go away.
#include "entry/InPlaceEditFixture.h"

namespace {

TEST_F(InPlaceEdit, FocusThatMovesWhileTheBoxIsUpAsksNothingAgain) {
    Run([&](Dialog& d) {
        for (const bool byTab : {true, false}) {
            const HWND edit = OpenEdit(d, 0, kKey, L"HKCU\\old");
            SetText(edit, L"HKCU\\a\\");
            for (const int answer : {IDOK, IDCANCEL}) {
                Check(d, byTab);
                EXPECT_EQ(d.ExpectBox(), kTrailing);
                d.OnGuiThread([&] {
                    SetFocus(edit);
                    SetFocus(m_dialog->list.m_hWnd);
                });
                d.AnswerBox(answer);
                if (answer == IDOK || byTab) ExpectHeld(d, edit, L"HKCU\\a\\");
            }
            if (byTab) {
                d.Key(VK_ESCAPE);
                d.AnswerBox(IDCANCEL);
            }
            ExpectClosed(d, edit);
        }
        Close(d);
    });
    EXPECT_EQ(m_driver.BoxTexts().size(), 5u);
}

TEST_F(InPlaceEdit, AnEndThatIsUnderWayIsNotRepeated) {
    Run([&](Dialog& d) {
        const HWND edit = OpenEdit(d, 5, kValue, L"old");
        // As the dialog may: the focus comes and goes, another cell is asked for, a box comes up.
        d.OnGuiThread([&] {
            m_dialog->list.onEndEdit = [&] {
                m_dialog->list.onEndEdit = nullptr;
                EXPECT_EQ(CInPlaceEdit::IsActive(), 0);
                SetFocus(edit);
                SetFocus(m_dialog->list.m_hWnd);
                EXPECT_TRUE(CInPlaceEdit::GetInstance()->ShowEditCtrl(0, CRect(0, 0, 50, 20), &m_dialog->list, 0, 6,
                                                                      kValue, L"", L"other"));
                MessageBoxW(m_dialog->m_hWnd, L"while the edit ends", L"", MB_OK);
            };
        });
        d.Type(L"new");
        d.Key(VK_RETURN);
        d.AnswerBox(IDOK);
        EXPECT_EQ(Events(), (EventLog{"list end 5,2 'new'", "dialog 8110"}));
        ExpectClosed(d, edit);
        Close(d);
    });
}

TEST_F(InPlaceEdit, DeletingItWhileItsBoxIsUpWaitsForTheAnswer) {
    Run([&](Dialog& d) {
        const struct {
            const wchar_t* text;
            bool byTab;  // which finds nothing wrong with an empty text
        } cases[] = {{L"not a key", true}, {L"not a key", false}, {L"", false}};
        for (const auto& c : cases) {
            for (const int answer : {IDOK, IDCANCEL}) {
                const HWND edit = OpenEdit(d, 0, kKey, c.text);
                Check(d, c.byTab);
                d.ExpectBox();
                d.OnGuiThread([] { CInPlaceEdit::DeleteInstance(); });
                EXPECT_FALSE(IsWindow(edit));
                EXPECT_EQ(CInPlaceEdit::IsActive(), 0);
                // A new editor may be wanted while the old one is still answering.
                CInPlaceEdit* next = nullptr;
                d.OnGuiThread([&] { next = CInPlaceEdit::GetInstance(); });
                d.AnswerBox(answer);
                EXPECT_NE(d.Focus(), nullptr);
                EXPECT_EQ(Events(), EventLog{});
                EXPECT_EQ(CInPlaceEdit::GetInstance(), next);
            }
        }
        Close(d);
    });
}

TEST_F(InPlaceEdit, AWindowThatGoesDownWithItsListLeavesTheNextEditFree) {
    for (const bool whileBoxIsUp : {false, true}) {
        Run([&](Dialog& d) {
            const HWND edit = OpenEdit(d, 0, whileBoxIsUp ? kKey : kValue, L"not a key");
            if (whileBoxIsUp) {
                Leave(d);
                d.ExpectBox();
            }
            d.OnGuiThread([&] { m_dialog->list.DestroyWindow(); });
            EXPECT_FALSE(IsWindow(edit));
            EXPECT_EQ(CInPlaceEdit::IsActive(), 0);
            if (whileBoxIsUp) d.AnswerBox(IDOK);
            Close(d);
        });
        Run([&](Dialog& d) {
            const HWND edit = OpenEdit(d, 7, kValue, L"next");
            d.Key(VK_RETURN);
            EXPECT_EQ(Events(), (EventLog{"list end 7,2 'next'", "dialog 8110"}));
            ExpectClosed(d, edit);
            Close(d);
        });
    }
}

TEST_F(InPlaceEdit, AWindowThatCannotBeCreatedLeavesTheNextEditFree) {
    Run([&](Dialog& d) {
        BOOL opened = TRUE;
        d.OnGuiThread([&] {
            CWnd gone;  // no window: no parent for a child
            opened = CInPlaceEdit::GetInstance()->ShowEditCtrl(0, CRect(0, 0, 9, 9), &gone, 0, 0, kValue, L"", L"x");
        });
        EXPECT_FALSE(opened);
        EXPECT_EQ(CInPlaceEdit::IsActive(), 0);
        const HWND edit = OpenEdit(d, 0, kValue, L"next");
        d.Key(VK_RETURN);
        ExpectClosed(d, edit);
        Close(d);
    });
}

}  // namespace
