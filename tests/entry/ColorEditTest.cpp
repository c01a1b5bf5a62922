#include "entry/ColorEdit.h"

#include "entry/EntryFixture.h"

namespace {

// What the edit holds and in which colours it would paint that now.
struct Look {
    std::wstring text;
    COLORREF textColour;
    COLORREF behindText;
    COLORREF background;
    bool readOnly;
    bool operator==(const Look&) const = default;
};

Look LookOf(const CWnd& edit) {
    Look look{WindowText(edit.m_hWnd), 0, 0, 0, (GetWindowLongW(edit.m_hWnd, GWL_STYLE) & ES_READONLY) != 0};
    const HDC dc = CreateCompatibleDC(nullptr);
    const LRESULT brush = SendMessageW(GetParent(edit.m_hWnd), WM_CTLCOLOREDIT, reinterpret_cast<WPARAM>(dc),
                                       reinterpret_cast<LPARAM>(edit.m_hWnd));
    LOGBRUSH solid{};
    GetObjectW(reinterpret_cast<HGDIOBJ>(brush), sizeof solid, &solid);
    look.textColour = GetTextColor(dc);
    look.behindText = GetBkColor(dc);
    look.background = solid.lbColor;
    DeleteDC(dc);
    return look;
}

using ColorEdit = EntryTest;

TEST_F(ColorEdit, PaintsWithTheColoursThatEachCallSets) {
    constexpr COLORREF red = RGB(200, 1, 2);
    constexpr COLORREF blue = RGB(3, 4, 250);
    constexpr COLORREF white = RGB(255, 255, 255);
    Run([&](Dialog& d) {
        OpenEdit(d, 0, 2, L"text");
        d.OnGuiThread([&] {
            CColorEdit& edit = *CInPlaceEdit::GetInstance();
            EXPECT_EQ(LookOf(edit), (Look{L"text", RGB(0, 0, 0), white, white, false}));
            edit.SetTextColor(red);
            edit.SetBackgroundColor(blue);
            EXPECT_EQ(LookOf(edit), (Look{L"text", red, blue, blue, false}));
            edit.SetReadOnly(true);
            EXPECT_EQ(LookOf(edit), (Look{L"text", red, blue, blue, true}));
            edit.SetReadOnly(false);
            EXPECT_EQ(LookOf(edit), (Look{L"text", red, white, white, false}));
            edit.SetBackgroundColor(blue);
            edit.ShowWatermark();
            EXPECT_EQ(LookOf(edit),
                      (Look{L"Click here to create a new rule", RGB(128, 128, 128), white, white, false}));
            // A key that clears nothing shows the watermark as if it were typed.
            edit.SendMessage(WM_KEYDOWN, VK_RIGHT);
            EXPECT_EQ(LookOf(edit).textColour, RGB(0, 0, 0));
            edit.SetTextColor(red);
            edit.SetBackgroundColor(blue);
            edit.ClearWatermark();
            EXPECT_EQ(LookOf(edit), (Look{L"", RGB(0, 0, 0), white, white, false}));
        });
        Close(d);
    });
}

}  // namespace
