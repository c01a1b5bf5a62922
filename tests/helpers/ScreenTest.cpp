// Cursors, the size of texts, fonts.
#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <tuple>

#include "helpers/CursorHelper.h"
#include "helpers/Fonts.h"
#include "helpers/MeasureText.h"
#include "registry/UiFont.h"
#include "support/FakeVersion.h"
#include "support/FreshProcess.h"

namespace {

LOGFONTW Describe(LONG height, LONG weight, bool italic, LPCWSTR face = L"Courier New") {
    LOGFONTW description{height, 0, 0, 0, weight, italic, 0, 0, 0, 0, 0, 0, VARIABLE_PITCH | FF_SWISS, L""};
    wcscpy_s(description.lfFaceName, face);
    return description;
}

void ExpectFont(HGDIOBJ font, const LOGFONTW& expected) {
    LOGFONTW made{};
    GetObjectW(font, sizeof(made), &made);
    EXPECT_EQ(std::memcmp(&made, &expected, sizeof(made)), 0) << expected.lfFaceName << expected.lfHeight;
}

// The height of the icon title font that the system tells; nothing when it is the failing one.
constexpr LONG kFailing = 1000;
LONG s_height = 0;

BOOL WINAPI TellIconFont(UINT action, UINT bytes, PVOID font, UINT) {
    if (action != SPI_GETICONTITLELOGFONT || bytes != sizeof(LOGFONTW) || s_height == kFailing) return FALSE;
    *static_cast<LOGFONTW*>(font) = Describe(s_height, FW_SEMIBOLD, false);
    return TRUE;
}

// In the order that matters: the remembered cursor belongs to the process.
TEST(CursorHelper, RemembersTheCursorBefore) {
    const auto standard = [](LPCWSTR name) { return LoadCursorW(nullptr, name); };
    const auto expectRestored = [](HCURSOR cursor) { EXPECT_EQ((CursorHelper::RestoreCursor(), GetCursor()), cursor); };
    const HCURSOR cross = standard(IDC_CROSS);
    SetCursor(cross);
    expectRestored(standard(IDC_ARROW));                             // nothing remembered yet
    using Row = std::tuple<void (*)(bool remember), LPCWSTR, bool>;  // whether "no cursor" is remembered as it is
    for (const auto& [set, name, nothingBefore] :
         {Row{CursorHelper::SetWaitCursor, IDC_WAIT, true}, Row{CursorHelper::SetArrowCursor, IDC_ARROW, true},
          Row{CursorHelper::SetHandCursor, IDC_HAND, false}, Row{CursorHelper::SetSizeWECursor, IDC_SIZEWE, false},
          Row{CursorHelper::SetSizeNSCursor, IDC_SIZENS, false}}) {
        SetCursor(cross);
        set(true);
        SetCursor(standard(IDC_IBEAM));
        set(false);  // remembers nothing new
        EXPECT_EQ(GetCursor(), standard(name));
        expectRestored(cross);
        SetCursor(nullptr);
        set(true);
        EXPECT_EQ(GetCursor(), standard(nothingBefore ? name : IDC_ARROW));
        expectRestored(nothingBefore ? nullptr : standard(name));
    }
    CursorHelper::SetRememberedCursor(cross);
    CursorHelper::SetRememberedCursor(nullptr);
    EXPECT_EQ(GetCursor(), standard(IDC_ARROW));
    expectRestored(standard(IDC_SIZENS));
}

TEST(Fonts, TheInterfacesFaceFollowsTheVersion) {
    const auto expect = [](bool italic, bool bold, LPCWSTR face) {
        CFont font;
        EXPECT_TRUE(CreateUiFont(font, italic, bold, -17));
        ExpectFont(font, Describe(-17, bold ? FW_BOLD : FW_NORMAL, italic, face));
    };
    EXPECT_IN_FRESH_PROCESS([&] {
        const FakeVersion version(6, 0);
        expect(true, false, L"MS Shell Dlg 2");
    });
    expect(false, true, L"Segoe UI");
}

TEST(Fonts, ADeltaMakesTheIconTitleFontLargerOnBothSidesOfZero) {
    const ImportPatch<decltype(&SystemParametersInfoW)> patch(GetModuleHandleW(nullptr), "SystemParametersInfoW",
                                                              TellIconFont);
    using Row = std::array<LONG, 3>;
    for (const auto& [height, delta, expected] : {Row{-12, 2, -14}, Row{12, 2, 14}, Row{-12, -2, -10}, Row{0, 2, 0},
                                                  Row{-12, LONG_MAX, LONG_MIN}, Row{12, LONG_MAX, LONG_MAX}}) {
        s_height = height;
        CFont font;
        CreateSystemFont(&font, delta, delta > 0, delta < 0);
        ExpectFont(font, Describe(expected, delta > 0 ? FW_BOLD : FW_SEMIBOLD, delta < 0));
    }
    s_height = kFailing;
    CreateSystemFont(nullptr, 2, false, false);
    CFont font;
    CreateSystemFont(&font, 2, false, false);
    EXPECT_EQ(HFONT{font}, nullptr);
}

TEST(Fonts, TextsAreMeasuredInWhatIsSelectedWhichTheDialogFontKeeps) {
    CDC dc;
    dc.CreateCompatibleDC(nullptr);
    CFont before;
    CreateFontFromLogFont(before, Describe(-30, FW_BOLD, true));
    dc.SelectObject(&before);
    TEXTMETRICW metrics{};
    GetTextMetricsW(dc.m_hAttribDC, &metrics);
    const CString text = L"seven %";
    const CSize extent(7 * metrics.tmAveCharWidth, metrics.tmHeight);
    EXPECT_EQ(MeasureText(&dc, &text), extent);
    EXPECT_EQ(MeasureText(&dc, &text, CSize(extent.cx - 1, extent.cy + 1)), CSize(extent.cx, extent.cy + 1));
    EXPECT_EQ(MeasureText(&dc, &text, CSize(extent.cx + 1, extent.cy - 1)), CSize(extent.cx + 1, extent.cy));
    EXPECT_EQ(MeasureText(nullptr, &text, CSize(9, 9)), CSize(0, 0));
    EXPECT_EQ(MeasureText(&dc, nullptr, CSize(9, 9)), CSize(0, 0));
    SelectDialogFont(dc);
    ExpectFont(GetCurrentObject(dc.m_hDC, OBJ_FONT), Describe(metrics.tmHeight, 700, true, L"MS Shell Dlg 2"));
}

TEST(Fonts, AWindowAndItsDirectChildrenGetAFont) {
    CWnd frame;
    frame.CreateEx(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr, nullptr);
    const auto addChild = [](HWND parent) {
        return CreateWindowW(L"BUTTON", L"", WS_CHILD, 0, 0, 9, 9, parent, nullptr, nullptr, nullptr);
    };
    const HWND child = addChild(frame), second = addChild(frame), below = addChild(child);
    CFont font;
    CreateUiFont(font, false, false, -12);
    ApplyFontToChildren(nullptr, &frame);
    ApplyFontToChildren(&font, nullptr);
    ApplyFontToChildren(&font, &frame);
    for (const HWND window : {HWND{frame}, child, second, below}) {
        EXPECT_EQ(SendMessageW(window, WM_GETFONT, 0, 0), window == below ? 0 : reinterpret_cast<LRESULT>(HFONT{font}));
    }
}

}  // namespace
