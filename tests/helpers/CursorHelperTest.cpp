#include "helpers/CursorHelper.h"

#include <gtest/gtest.h>

namespace {

HCURSOR Standard(LPCWSTR name) {
    return LoadCursorW(nullptr, name);
}

// One test, in the order that matters: the remembered cursor belongs to the process.
TEST(CursorHelper, RemembersTheCursorBefore) {
    SetCursor(Standard(IDC_CROSS));
    CursorHelper::RestoreCursor();  // nothing remembered yet
    EXPECT_EQ(GetCursor(), Standard(IDC_ARROW));

    const struct {
        void (*set)(bool remember);
        LPCWSTR name;
        bool nothingBefore;  // whether "no cursor" is remembered as it is
    } cursors[] = {
        {CursorHelper::SetWaitCursor, IDC_WAIT, true},      {CursorHelper::SetArrowCursor, IDC_ARROW, true},
        {CursorHelper::SetHandCursor, IDC_HAND, false},     {CursorHelper::SetSizeWECursor, IDC_SIZEWE, false},
        {CursorHelper::SetSizeNSCursor, IDC_SIZENS, false},
    };
    for (const auto& [set, name, nothingBefore] : cursors) {
        SetCursor(Standard(IDC_CROSS));
        set(true);
        EXPECT_EQ(GetCursor(), Standard(name));
        SetCursor(Standard(IDC_IBEAM));
        set(false);  // remembers nothing new
        EXPECT_EQ(GetCursor(), Standard(name));
        CursorHelper::RestoreCursor();
        EXPECT_EQ(GetCursor(), Standard(IDC_CROSS));

        SetCursor(nullptr);
        set(true);
        EXPECT_EQ(GetCursor(), nothingBefore ? Standard(name) : Standard(IDC_ARROW));
        CursorHelper::RestoreCursor();
        EXPECT_EQ(GetCursor(), nothingBefore ? nullptr : Standard(name));
    }

    CursorHelper::SetRememberedCursor(Standard(IDC_CROSS));
    CursorHelper::RestoreCursor();
    EXPECT_EQ(GetCursor(), Standard(IDC_CROSS));
    CursorHelper::SetRememberedCursor(nullptr);
    EXPECT_EQ(GetCursor(), Standard(IDC_ARROW));
    CursorHelper::RestoreCursor();
    EXPECT_EQ(GetCursor(), Standard(IDC_CROSS));
}

}  // namespace
