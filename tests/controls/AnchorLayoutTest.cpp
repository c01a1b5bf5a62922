// The layout of a real resizable window.
#include "controls/AnchorLayout.h"

#include <gtest/gtest.h>
#include <utility>

namespace {

// A frame of 400 by 300 with a static and two buttons of one place. It is hidden, as painting takes most of the time.
class AnchorLayout : public testing::Test {
protected:
    AnchorLayout() {
        for (const int id : {100, 101, 102}) AddChild(id, id == 100 ? L"STATIC" : L"BUTTON");
    }
    ~AnchorLayout() override { DestroyWindow(m_frame); }

    HWND AddChild(int id, LPCWSTR className) {
        return CreateWindowExW(0, className, nullptr, WS_CHILD, 20, 40, 55, 33, m_frame,
                               reinterpret_cast<HMENU>(INT_PTR{id}), nullptr, nullptr);
    }
    void Resize(int width, int height) {
        SetWindowPos(m_frame, nullptr, 0, 0, width, height, SWP_NOMOVE);
        m_layout.Resize();
    }
    void ExpectChild(int id, const RECT& expected) {
        RECT rect{};
        GetWindowRect(GetDlgItem(m_frame, id), &rect);
        MapWindowPoints(nullptr, m_frame, reinterpret_cast<POINT*>(&rect), 2);
        EXPECT_TRUE(EqualRect(&rect, &expected)) << id;
    }

    HWND m_frame =
        CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW, 10, 10, 400, 300, nullptr, nullptr, nullptr, nullptr);
    CAnchorLayout m_layout;
};

}  // namespace

TEST_F(AnchorLayout, TakesControlsByIdByClassAndLaterAndDoesNotDrift) {
    m_layout.AddControl(m_frame);
    EXPECT_FALSE(m_layout.SetAnchors(100, 0, 0)) << "before Attach there is nothing";
    m_layout.Attach(m_frame);
    const HWND late = AddChild(199, L"BUTTON");
    EXPECT_FALSE(m_layout.SetAnchors(199, 0, 0));
    m_layout.AddControl(late);
    m_layout.AddControl(nullptr);
    EXPECT_TRUE(m_layout.SetAnchors(199, kAnchorFar, kAnchorNear));
    EXPECT_TRUE(m_layout.SetAnchors(102, kAnchorKeepSize, kAnchorKeepSize | kAnchorFar));
    EXPECT_FALSE(m_layout.SetAnchors(1, 0, 0));
    m_layout.SetAnchorsByClass(L"Static", kAnchorNear | kAnchorFar, kAnchorNear);
    m_layout.SetAnchorsByClass(L"button", 7, 7);  // by case: no class
    for (const bool again : {false, true}) {
        Resize(800, 450);  // twice as wide, and half as high again
        ExpectChild(100, {20, 40, 475, 109});
        ExpectChild(101, {40, 60, 150, 109});
        if (!again) ExpectChild(102, {40, 190, 95, 223});
        ExpectChild(199, {40, 40, 475, 109});
        for (const auto& [width, height] : {std::pair{333, 217}, {517, 451}, {400, 300}}) Resize(width, height);
        for (const int id : {100, 101, 199}) ExpectChild(id, {20, 40, 75, 73});
        DestroyWindow(GetDlgItem(m_frame, 102));  // one that is gone is passed over
    }
    m_layout.Attach(nullptr);
    Resize(800, 450);
    ExpectChild(100, {20, 40, 75, 73});
}
