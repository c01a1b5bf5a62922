// What a test of the cell edit expects of it, and how it leaves it.
#pragma once

#include "entry/EntryFixture.h"

inline constexpr int kType = 0;
inline constexpr int kKey = 1;
inline constexpr int kValue = 2;
inline constexpr wchar_t kUnknownHive[] = L"The specified Hive is not valid.";
inline constexpr wchar_t kTrailing[] = L"The specified key is invalid. Trailing backslashes are not allowed.";

class InPlaceEdit : public EntryTest {
protected:
    // Leaves the editor without the mouse: a button of Wine 8.0 that is clicked takes the capture after the box that
    // its focus change brought up, and then swallows the next click.
    static void Leave(Dialog& d) {
        PostMessageW(d.Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(d.Control(IDC_ELSEWHERE)), TRUE);
    }
    // Has the key checked, by Tab or by leaving it.
    static void Check(Dialog& d, bool byTab) {
        if (byTab)
            d.Key(VK_TAB);
        else
            Leave(d);
    }
    // The editor is closed and the next one may open.
    void ExpectClosed(Dialog& d, HWND edit) {
        d.WaitFor("the editor's end", [&] { return !IsWindow(edit); });
        EXPECT_EQ(CInPlaceEdit::IsActive(), 0);
    }
    // The editor is open, has the focus, and holds this text.
    void ExpectHeld(Dialog& d, HWND edit, const std::wstring& text) {
        ASSERT_TRUE(IsWindow(edit));
        EXPECT_EQ(CInPlaceEdit::IsActive(), 1);
        EXPECT_EQ(d.Focus(), edit);
        EXPECT_EQ(WindowText(edit), text);
    }
};
