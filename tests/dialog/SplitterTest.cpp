// The layout of the strip, and the gap between tree and list moved by the mouse.
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <vector>

#include "dialog/RulesDialog.h"

namespace {

class Splitter : public RulesDialog {
protected:
    static int FontHeight(Dialog& d) {
        const HDC dc = GetDC(d.Window());
        const HGDIOBJ previous =
            SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageW(d.Window(), WM_GETFONT, 0, 0)));
        TEXTMETRICW metrics{};
        GetTextMetricsW(dc, &metrics);
        SelectObject(dc, previous);
        ReleaseDC(d.Window(), dc);
        return metrics.tmHeight;
    }
    static RECT Place(Dialog& d, int id) {
        RECT place = Frame(d.Control(id));
        MapWindowPoints(nullptr, d.Window(), reinterpret_cast<POINT*>(&place), 2);
        return place;
    }
    using Layout = std::map<int, std::vector<LONG>>;
    static Layout AllPlaces(Dialog& d) {
        Layout layout;
        for (const int id :
             {IDC_REGISTRY_TREE, IDC_RULE_LIST, IDC_NEW_TYPE, IDC_NEW_KEY, IDC_NEW_VALUE, IDC_TYPE_LABEL, IDC_KEY_LABEL,
              IDC_VALUE_LABEL, IDC_TYPE_FRAME, IDC_KEY_FRAME, IDC_VALUE_FRAME, IDC_DELETE_RULE, IDOK, IDCANCEL}) {
            const RECT r = Place(d, id);
            layout[id] = {r.left, r.top, r.right, r.bottom};
        }
        return layout;
    }
    static RECT Clip() {
        RECT clip{};
        GetClipCursor(&clip);
        return clip;
    }
    static bool IsClipped() {
        const RECT clip = Clip();
        return clip.right - clip.left < GetSystemMetrics(SM_CXSCREEN);
    }
};

}  // namespace

TEST_F(Splitter, TheStripStandsUnderHeadsThatFitTheFont) {
    Show([&](Dialog& d) {
        const int fontHeight = FontHeight(d);
        const RECT frame = Place(d, IDC_VALUE_FRAME);
        const std::pair<int, int> heads[] = {
            {IDC_TYPE_FRAME, IDC_TYPE_LABEL}, {IDC_KEY_FRAME, IDC_KEY_LABEL}, {IDC_VALUE_FRAME, IDC_VALUE_LABEL}};
        for (const auto& [frameId, labelId] : heads) {
            const RECT box = Place(d, frameId);
            const RECT label = Place(d, labelId);
            EXPECT_EQ(box.top, frame.top);
            EXPECT_EQ(box.bottom, frame.bottom);
            EXPECT_GE(label.bottom - label.top, fontHeight);
            // A group box draws its upper line in the middle of its caption's height.
            const double middleOfLines = (box.top + fontHeight / 2 + box.bottom) / 2.0;
            EXPECT_NEAR(label.top + fontHeight / 2.0, middleOfLines, 2.0);
        }
        const RECT combo = Place(d, IDC_NEW_TYPE);
        const LONG spacing = combo.top - frame.bottom;
        EXPECT_GT(spacing, 0);
        EXPECT_EQ(frame.bottom - frame.top, (spacing + fontHeight) * 2) << "higher than in the template";
        EXPECT_EQ(Place(d, IDC_NEW_KEY).top, combo.top);
        EXPECT_EQ(Place(d, IDC_NEW_VALUE).top, combo.top);
        const RECT list = Place(d, IDC_RULE_LIST);
        EXPECT_EQ(list.top, combo.bottom + spacing);
        EXPECT_EQ(list.bottom, Place(d, IDC_REGISTRY_TREE).bottom);
        d.Click(IDCANCEL);
    });
}

TEST_F(Splitter, LeftAndBackGivesTheLayoutOfTheStart) {
    Show([&](Dialog& d) {
        const Layout before = AllPlaces(d);
        const POINT gap = Gap(d);
        d.Drag(gap, {gap.x - 90, gap.y + 30}, 7);
        const Layout left = AllPlaces(d);
        const std::set<int> travels{IDC_NEW_TYPE, IDC_TYPE_LABEL, IDC_TYPE_FRAME};
        const std::set<int> growsLeft{IDC_RULE_LIST, IDC_NEW_KEY, IDC_KEY_LABEL, IDC_KEY_FRAME};
        for (auto [id, expected] : before) {
            if (travels.contains(id) || growsLeft.contains(id)) expected[0] -= 90;
            if (travels.contains(id) || id == IDC_REGISTRY_TREE) expected[2] -= 90;
            EXPECT_EQ(left.at(id), expected) << id;
        }
        // The hit rectangle has travelled with the gap.
        d.Move(gap);
        EXPECT_FALSE(CursorIs(d, IDC_SIZEWE));
        d.Drag(Gap(d), gap, 5);
        EXPECT_EQ(AllPlaces(d), before);
        EXPECT_FALSE(IsClipped());
        EXPECT_EQ(d.Capture(), nullptr);
        d.Click(IDCANCEL);
    });
}

TEST_F(Splitter, BothBoundsHoldItAndNothingStaysClipped) {
    Show([&](Dialog& d) {
        const RECT bounds = Frame(d.Control(IDC_SPLITTER_BOUNDS));
        const Layout before = AllPlaces(d);
        const POINT start = Gap(d);
        d.Move(start);
        d.Press();
        EXPECT_EQ(d.Capture(), d.Window());
        const RECT clip = Clip();
        EXPECT_TRUE(EqualRect(&clip, &bounds));
        d.Move({bounds.left - 500, start.y});
        EXPECT_EQ(AllPlaces(d).at(IDC_REGISTRY_TREE)[2], before.at(IDC_REGISTRY_TREE)[2] - (start.x - bounds.left));
        d.Move({bounds.right + 500, bounds.bottom + 500});
        EXPECT_EQ(AllPlaces(d).at(IDC_REGISTRY_TREE)[2],
                  before.at(IDC_REGISTRY_TREE)[2] + (bounds.right - 1 - start.x));
        d.Move(start);
        d.Release();
        EXPECT_EQ(AllPlaces(d), before);
        EXPECT_FALSE(IsClipped());
        EXPECT_EQ(d.Capture(), nullptr);
        d.Click(IDCANCEL);
    });
}

TEST_F(Splitter, APressOutsideTheGapNeitherCapturesNorClips) {
    Show([&](Dialog& d) {
        const Layout before = AllPlaces(d);
        d.Move(Gap(d));
        EXPECT_TRUE(CursorIs(d, IDC_SIZEWE));
        const POINT below{Gap(d).x, Frame(d.Control(IDC_REGISTRY_TREE)).bottom};
        d.Move(below);
        EXPECT_TRUE(CursorIs(d, IDC_ARROW));
        d.Press();
        EXPECT_EQ(d.Capture(), nullptr);
        EXPECT_FALSE(IsClipped());
        d.Move({below.x - 30, below.y});
        d.Release();
        EXPECT_EQ(AllPlaces(d), before);
        d.Click(IDCANCEL);
    });
}

TEST_F(Splitter, EscapeInTheMiddleFreesTheMouseBeforeTheQuestion) {
    control.AddKeyRule(L"HKCU\\a", 1, 0);
    Show([&](Dialog& d) {
        d.List(IDC_RULE_LIST).Click(0, 1);
        d.Key(VK_DELETE);
        const POINT gap = Gap(d);
        d.Move(gap);
        d.Press();
        EXPECT_TRUE(IsClipped());
        d.Key(VK_ESCAPE);
        EXPECT_EQ(d.ExpectBox(), confirmCancel);
        EXPECT_FALSE(IsClipped());
        EXPECT_EQ(d.Capture(), nullptr);
        d.Release();
        d.AnswerBox(IDNO);
        const Layout before = AllPlaces(d);
        d.Move({gap.x - 40, gap.y});
        EXPECT_EQ(AllPlaces(d), before) << "the drag is over";
        Discard(d);
    });
    Show([&](Dialog& d) {
        d.Move(Gap(d));
        d.Press();
        d.Alt(L'O');
        d.WaitUntilClosed();
    });
    EXPECT_FALSE(IsClipped()) << "OK ends it too";
    EXPECT_EQ(GetCapture(), nullptr);
}
