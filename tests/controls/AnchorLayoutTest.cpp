// The layout of a real resizable window.
#include "controls/AnchorLayout.h"

#include <gtest/gtest.h>
#include <utility>

namespace {

constexpr int kFirstId = 100;
constexpr int kSets = 8;  // of flags, on each axis

// A frame of 400 by 300 with children of one place. It is hidden because painting takes most of the time.
class Frame {
public:
    explicit Frame(int children) {
        for (int i = 0; i < children; ++i) {
            CreateWindowExW(0, i % 2 == 0 ? L"STATIC" : L"BUTTON", nullptr, WS_CHILD | WS_VISIBLE, 20, 40, 55, 33,
                            m_window, reinterpret_cast<HMENU>(INT_PTR{kFirstId} + i), nullptr, nullptr);
        }
    }
    ~Frame() { DestroyWindow(m_window); }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

    HWND Window() const { return m_window; }
    void SetSize(int width, int height) { SetWindowPos(m_window, nullptr, 0, 0, width, height, SWP_NOMOVE); }
    RECT ChildRect(int child) const {
        RECT rect{};
        GetWindowRect(GetDlgItem(m_window, kFirstId + child), &rect);
        MapWindowPoints(nullptr, m_window, reinterpret_cast<POINT*>(&rect), 2);
        return rect;
    }

private:
    HWND m_window = CreateWindowExW(0, L"STATIC", L"frame", WS_OVERLAPPEDWINDOW, 10, 10, 400, 300, nullptr, nullptr,
                                    nullptr, nullptr);
};

void ExpectRect(const RECT& rect, const AnchoredSpan& x, const AnchoredSpan& y) {
    EXPECT_EQ((AnchoredSpan{rect.left, rect.right}), x);
    EXPECT_EQ((AnchoredSpan{rect.top, rect.bottom}), y);
}

}  // namespace

TEST(AnchorLayout, EveryPairOfFlagSetsAndBackWithoutDrift) {
    Frame frame(kSets * kSets);
    CAnchorLayout layout;
    layout.Attach(frame.Window());
    for (int i = 0; i < kSets * kSets; ++i) {
        EXPECT_TRUE(layout.SetAnchors(kFirstId + i, static_cast<std::uint32_t>(i % kSets),
                                      static_cast<std::uint32_t>(i / kSets)));
    }
    // Twice as wide, and half as high again.
    const AnchoredSpan x[kSets] = {{40, 150}, {40, 95},   {20, 150}, {20, 75},
                                   {40, 475}, {420, 475}, {20, 475}, {20, 475}};
    const AnchoredSpan y[kSets] = {{60, 109}, {60, 93},   {40, 109}, {40, 73},
                                   {60, 223}, {190, 223}, {40, 223}, {40, 223}};
    frame.SetSize(800, 450);
    layout.Resize();
    for (int i = 0; i < kSets * kSets; ++i) ExpectRect(frame.ChildRect(i), x[i % kSets], y[i / kSets]);
    for (const auto& [width, height] : {std::pair{333, 217}, {517, 451}, {400, 300}}) {
        frame.SetSize(width, height);
        layout.Resize();
    }
    for (int i = 0; i < kSets * kSets; ++i) ExpectRect(frame.ChildRect(i), {20, 75}, {40, 73});
}

TEST(AnchorLayout, TakesControlsByIdByClassAndLater) {
    Frame frame(3);
    CAnchorLayout layout;
    layout.AddControl(frame.Window());
    EXPECT_FALSE(layout.SetAnchors(kFirstId, 0, 0)) << "before Attach there is nothing";
    layout.Attach(frame.Window());
    const HWND late = CreateWindowExW(0, L"BUTTON", nullptr, WS_CHILD, 20, 40, 55, 33, frame.Window(),
                                      reinterpret_cast<HMENU>(INT_PTR{kFirstId} + 99), nullptr, nullptr);
    EXPECT_FALSE(layout.SetAnchors(kFirstId + 99, 0, 0));
    layout.AddControl(late);
    layout.AddControl(nullptr);
    EXPECT_TRUE(layout.SetAnchors(kFirstId + 99, kAnchorFar, kAnchorNear));
    EXPECT_FALSE(layout.SetAnchors(1, 0, 0));
    layout.SetAnchorsByClass(L"Static", kAnchorNear | kAnchorFar, kAnchorNear);
    layout.SetAnchorsByClass(L"button", 7, 7);  // by case: no class
    DestroyWindow(GetDlgItem(frame.Window(), kFirstId + 2));
    frame.SetSize(800, 450);
    layout.Resize();
    ExpectRect(frame.ChildRect(0), {20, 475}, {40, 109});
    ExpectRect(frame.ChildRect(1), {40, 150}, {60, 109});
    ExpectRect(frame.ChildRect(99), {40, 475}, {40, 109});
    layout.Attach(nullptr);
    frame.SetSize(400, 300);
    layout.Resize();
    ExpectRect(frame.ChildRect(0), {20, 475}, {40, 109});
}
