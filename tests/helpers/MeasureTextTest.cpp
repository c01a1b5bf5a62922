#include "helpers/MeasureText.h"

#include <gtest/gtest.h>

namespace {

// A device context in memory with a font of known cell size selected.
struct FixedDevice {
    FixedDevice() {
        LOGFONTW description{};
        description.lfHeight = -24;
        description.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
        wcscpy_s(description.lfFaceName, L"Courier New");
        font.CreateFontIndirect(&description);
        dc.CreateCompatibleDC(nullptr);
        previous = dc.SelectObject(&font);
        TEXTMETRICW metrics{};
        GetTextMetricsW(dc.m_hAttribDC, &metrics);
        cell = {metrics.tmAveCharWidth, metrics.tmHeight};
    }
    ~FixedDevice() { dc.SelectObject(previous); }

    CDC dc;
    CFont font;
    CFont* previous;
    CSize cell;
};

TEST(MeasureText, IsTheExtentAndAtLeastTheMinimum) {
    FixedDevice device;
    ASSERT_GT(device.cell.cx, 0);
    const CString text = L"seven %";
    const CString empty;
    const CSize extent(7 * device.cell.cx, device.cell.cy);
    EXPECT_EQ(MeasureText(&device.dc, &text), extent);
    EXPECT_EQ(MeasureText(&device.dc, &text, CSize(extent.cx - 1, extent.cy - 1)), extent);
    EXPECT_EQ(MeasureText(&device.dc, &text, CSize(extent.cx + 1, 0)), CSize(extent.cx + 1, extent.cy));
    EXPECT_EQ(MeasureText(&device.dc, &text, CSize(0, 500)), CSize(extent.cx, 500));
    EXPECT_EQ(MeasureText(&device.dc, &text, CSize(-5, -5)), extent);
    EXPECT_EQ(MeasureText(&device.dc, &empty, CSize(3, 0)).cx, 3);
    EXPECT_EQ(MeasureText(nullptr, &text, CSize(9, 9)), CSize(0, 0));
    EXPECT_EQ(MeasureText(&device.dc, nullptr, CSize(9, 9)), CSize(0, 0));
}

}  // namespace
