#include "helpers/Fonts.h"

#include <gtest/gtest.h>
#include <string>

#include "registry/UiFont.h"
#include "support/FakeVersion.h"
#include "support/FreshProcess.h"

namespace {

LOGFONTW Description(HGDIOBJ font) {
    LOGFONTW description{};
    GetObjectW(font, sizeof(description), &description);
    return description;
}

// The icon title font that the system tells; nothing when the height is the failing one.
constexpr LONG kFailing = 1000;
LONG s_height = 0;

BOOL WINAPI TellIconFont(UINT action, UINT bytes, PVOID font, UINT) {
    if (action != SPI_GETICONTITLELOGFONT || bytes != sizeof(LOGFONTW) || s_height == kFailing) return FALSE;
    LOGFONTW description{};
    description.lfHeight = s_height;
    description.lfWeight = FW_SEMIBOLD;
    *static_cast<LOGFONTW*>(font) = description;
    return TRUE;
}

}  // namespace

TEST(Fonts, TheInterfacesFaceFollowsTheVersion) {
    for (const DWORD minor : {0u, 1u}) {
        EXPECT_IN_FRESH_PROCESS([minor] {
            const FakeVersion version(6, minor);
            CFont font;
            EXPECT_TRUE(CreateUiFont(font, true, minor == 1, -17));
            const LOGFONTW made = Description(font);
            EXPECT_STREQ(made.lfFaceName, minor == 0 ? L"MS Shell Dlg 2" : L"Segoe UI");
            EXPECT_EQ(made.lfHeight, -17);
            EXPECT_EQ(made.lfWeight, minor == 0 ? 400 : 700);
            EXPECT_EQ(made.lfItalic, 1);
            EXPECT_EQ(made.lfPitchAndFamily, 0x22);
        });
    }
}

TEST(Fonts, ADeltaMakesTheIconTitleFontLargerOnBothSidesOfZero) {
    const ImportPatch<decltype(&SystemParametersInfoW)> patch(GetModuleHandleW(nullptr), "SystemParametersInfoW",
                                                              TellIconFont);
    const LONG cases[][3] = {{-12, 2, -14},
                             {12, 2, 14},
                             {-12, -2, -10},
                             {12, -2, 10},
                             {0, 2, 0},
                             {-12, 0, -12},
                             {-12, LONG_MAX, LONG_MIN},
                             {12, LONG_MAX, LONG_MAX}};
    for (const auto& [height, delta, expected] : cases) {
        s_height = height;
        CFont font;
        CreateSystemFont(&font, delta, delta > 0, delta < 0);
        const LOGFONTW made = Description(font);
        EXPECT_EQ(made.lfHeight, expected) << height << " and " << delta;
        EXPECT_EQ(made.lfWeight, delta > 0 ? FW_BOLD : FW_SEMIBOLD);
        EXPECT_EQ(made.lfItalic, delta < 0 ? 1 : 0);
    }
    CreateSystemFont(nullptr, 2, false, false);
    s_height = kFailing;
    CFont font;
    CreateSystemFont(&font, 2, false, false);
    EXPECT_EQ(HFONT{font}, nullptr);
}

TEST(Fonts, TheDialogFontKeepsWhatWasSelected) {
    CDC dc;
    dc.CreateCompatibleDC(nullptr);
    LOGFONTW description{};
    description.lfHeight = -30;
    description.lfWeight = FW_BOLD;
    description.lfItalic = TRUE;
    CFont before;
    CreateFontFromLogFont(before, description);
    dc.SelectObject(&before);
    TEXTMETRICW metrics{};
    GetTextMetricsW(dc.m_hAttribDC, &metrics);
    SelectDialogFont(dc);
    const LOGFONTW selected = Description(GetCurrentObject(dc.m_hDC, OBJ_FONT));
    EXPECT_STREQ(selected.lfFaceName, L"MS Shell Dlg 2");
    EXPECT_EQ(selected.lfHeight, metrics.tmHeight);
    EXPECT_EQ(selected.lfWeight, 700);
    EXPECT_NE(selected.lfItalic, 0);
    EXPECT_EQ(selected.lfPitchAndFamily, 0x22);
}

TEST(Fonts, AWindowAndItsDirectChildrenGetAFont) {
    CWnd frame;
    frame.CreateEx(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr, nullptr);
    const auto addChild = [](HWND parent) {
        return CreateWindowExW(0, L"BUTTON", L"", WS_CHILD, 0, 0, 9, 9, parent, nullptr, nullptr, nullptr);
    };
    const HWND child = addChild(frame);
    const HWND second = addChild(frame);
    const HWND below = addChild(child);
    CFont font;
    CreateUiFont(font, false, false, -12);
    ApplyFontToChildren(nullptr, &frame);
    ApplyFontToChildren(&font, nullptr);
    ApplyFontToChildren(&font, &frame);
    for (const HWND window : {HWND{frame}, child, second}) {
        EXPECT_EQ(SendMessageW(window, WM_GETFONT, 0, 0), reinterpret_cast<LRESULT>(HFONT{font}));
    }
    EXPECT_EQ(SendMessageW(below, WM_GETFONT, 0, 0), 0);
}
