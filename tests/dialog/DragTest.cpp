// Dragging items of the registry tree onto the list, by the mouse.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include "dialog/RulesDialog.h"
#include "support/ScopedRegistryKey.h"

namespace {

class DragRules : public RulesDialog {
protected:
    DragRules() {
        registry.AddKey(L"Vendor\\App");
        registry.SetText(L"Vendor", L"Vendor", L"x");
        registry.SetText(L"Vendor", L"", L"the default");
        const DWORD number = 7;
        registry.SetData(L"Vendor", L"back\\slash", REG_DWORD, &number, sizeof number);
    }

    TreeSteps::Path PathOf(std::initializer_list<const wchar_t*> names) const {
        TreeSteps::Path path{L"HKEY_CURRENT_USER", L"Software", registry.Name()};
        path.insert(path.end(), names.begin(), names.end());
        return path;
    }
    // A default value has no text to take hold of, only an icon left of where it would be.
    static constexpr LONG iconDistance = 10;

    // Opens the branch above the last name and gives where to take hold of the item.
    POINT Hold(Dialog& d, std::initializer_list<const wchar_t*> names) const {
        TreeSteps::Path path = PathOf(names);
        TreeSteps tree = d.Tree(IDC_REGISTRY_TREE);
        const std::wstring last = path.back();
        path.pop_back();
        tree.Expand(path);
        path.push_back(last);
        POINT hold = tree.Centre(tree.Item(path));
        if (last.empty()) hold.x -= iconDistance;
        return hold;
    }
    // Begins a drag and stops in its middle, over the target.
    void DragTo(Dialog& d, std::initializer_list<const wchar_t*> names, POINT to) const {
        const POINT from = Hold(d, names);
        d.Move(from);
        d.Press();
        d.Move({from.x + 12, from.y + 12});
        EXPECT_EQ(d.Capture(), d.Window());
        d.Move({(from.x + to.x) / 2, (from.y + to.y) / 2});
        d.Move(to);
    }
    void Drop(Dialog& d, std::initializer_list<const wchar_t*> names, POINT to) const {
        DragTo(d, names, to);
        d.Release();
    }
    static int Highlighted(Dialog& d) { return d.List(IDC_RULE_LIST).RowWithState(LVIS_DROPHILITED); }
    static bool ImageFloats(Dialog& d) {
        bool floats = false;
        d.OnGuiThread([&] { floats = ImageList_GetDragImage(nullptr, nullptr) != nullptr; });
        return floats;
    }
    // A place on the dialog itself, on no control.
    static POINT Background(Dialog& d) {
        const RECT frame = Frame(d.Control(IDCANCEL));
        return {frame.left - 200, (frame.top + frame.bottom) / 2};
    }

    ScopedRegistryKey registry;
    const std::wstring base = L"HKCU\\Software\\" + registry.Name();
};

}  // namespace

TEST_F(DragRules, AKeyGoesBeforeTheRowItIsDroppedOnOrBehindTheLast) {
    control.AddKeyRule(L"HKCU\\a", 1, 0);
    control.AddKeyRule(L"HKCU\\b", 1, 1);
    EXPECT_EQ(Show([&](Dialog& d) {
                  ListSteps list = d.List(IDC_RULE_LIST);
                  EXPECT_FALSE(DeleteIsLive(d));
                  Drop(d, {L"Vendor"}, list.BehindRows());
                  EXPECT_EQ(list.SelectedRow(), 2);
                  EXPECT_EQ(list.RowWithState(LVIS_FOCUSED), 2);
                  EXPECT_TRUE(DeleteIsLive(d));
                  EXPECT_TRUE(DeleteHasTabStop(d));
                  Drop(d, {L"Vendor", L"App"}, list.Centre(1, 1));
                  EXPECT_EQ(Rows(d), (Texts{L"Branch|HKCU\\a|", L"Branch|" + base + L"\\Vendor\\App|",
                                            L"Branch|HKCU\\b|", L"Branch|" + base + L"\\Vendor|"}));
                  EXPECT_EQ(list.SelectedRow(), 1);
                  EXPECT_EQ(Highlighted(d), -1);
                  EXPECT_EQ(d.Capture(), nullptr);
                  EXPECT_FALSE(ImageFloats(d));
                  EXPECT_EQ(d.Tree(IDC_REGISTRY_TREE).SelectedText(), L"App") << "the dragged item is selected";
                  d.Click(IDOK);
              }),
              1);
    EXPECT_EQ(HostRules()[1], L"Branch|HKEY_CURRENT_USER" + base.substr(4) + L"\\Vendor\\App|1");
}

TEST_F(DragRules, AValueLosesItsOwnNameAlsoWhenNamedLikeItsKey) {
    Show([&](Dialog& d) {
        const POINT behind = d.List(IDC_RULE_LIST).BehindRows();
        Drop(d, {L"Vendor", L"Vendor"}, behind);
        Drop(d, {L"Vendor", L"back\\slash"}, behind);
        Drop(d, {L"Vendor", L""}, behind);
        EXPECT_EQ(Rows(d), (Texts{L"Value|" + base + L"\\Vendor|Vendor", L"Value|" + base + L"\\Vendor|back\\slash",
                                  L"Value|" + base + L"\\Vendor|"}));
        d.Click(IDOK);
    });
    const std::wstring key = L"Value|HKEY_CURRENT_USER" + base.substr(4) + L"\\Vendor|";
    EXPECT_EQ(HostRules(), (Texts{key + L"Vendor|0", key + L"back\\slash|1", key + L"|2"}));
}

TEST_F(DragRules, TheRowUnderTheCursorIsHighlightedAndAnImageFloats) {
    for (const wchar_t* key : {L"HKCU\\a", L"HKCU\\b", L"HKCU\\c"}) control.AddKeyRule(key, 1, 32767);
    Show([&](Dialog& d) {
        ListSteps list = d.List(IDC_RULE_LIST);
        const POINT behind = list.BehindRows();
        DragTo(d, {L"Vendor"}, list.Centre(1, 1));
        EXPECT_EQ(Highlighted(d), 1);
        POINT hotSpot{};
        int images = 0;
        int width = 0;
        d.OnGuiThread([&] {
            const HIMAGELIST image = ImageList_GetDragImage(nullptr, &hotSpot);
            images = ImageList_GetImageCount(image);
            int height = 0;
            ImageList_GetIconSize(image, &width, &height);
        });
        EXPECT_EQ(images, 1);
        EXPECT_GT(width, 30) << "icon and text";
        EXPECT_EQ(hotSpot.x, 10);
        EXPECT_EQ(hotSpot.y, 10);
        d.Move(list.Centre(0, 1));
        EXPECT_EQ(Highlighted(d), 0);
        EXPECT_EQ(ListView_GetItemState(list.Window(), 1, LVIS_DROPHILITED), 0u);
        d.Move(behind);
        EXPECT_EQ(Highlighted(d), -1);
        d.Move(list.Centre(2, 1));
        EXPECT_EQ(Highlighted(d), 2);
        d.Move(Gap(d));
        EXPECT_EQ(Highlighted(d), -1) << "gone as soon as the list is left";
        EXPECT_FALSE(CursorIs(d, IDC_SIZEWE)) << "the gap does not answer to a drag";
        d.Release();
        EXPECT_EQ(Rows(d).size(), 3u) << "a drop outside is void";
        EXPECT_FALSE(ImageFloats(d));
        EXPECT_EQ(d.Capture(), nullptr);
        d.Click(IDCANCEL);
    });
    EXPECT_TRUE(driver.BoxTexts().empty());
}

TEST_F(DragRules, AHiveIsRefusedAndADropOutsideTheListIsVoid) {
    control.AddKeyRule(L"HKCU\\a", 1, 0);
    Show([&](Dialog& d) {
        const RECT frame = Frame(d.Window());
        Drop(d, {L"Vendor"}, {frame.right + 40, frame.bottom + 20});
        Drop(d, {L"Vendor"}, Dialog::Centre(d.Control(IDC_NEW_KEY)));
        Drop(d, {L"Vendor"}, Dialog::Centre(ListView_GetHeader(d.Control(IDC_RULE_LIST))));
        EXPECT_EQ(d.Text(IDC_NEW_KEY), watermark);
        TreeSteps tree = d.Tree(IDC_REGISTRY_TREE);
        ListSteps list = d.List(IDC_RULE_LIST);
        d.OnGuiThread([&] { ListView_SetItemState(list.Window(), 0, LVIS_SELECTED, LVIS_SELECTED); });
        EXPECT_FALSE(DeleteHasTabStop(d)) << "the selection alone leaves it off";
        d.Drag(tree.Centre(tree.Item({L"HKEY_USERS"})), list.Centre(0, 1));
        EXPECT_EQ(d.AnswerBox(IDOK), bareHive);
        EXPECT_EQ(Rows(d), Texts{L"Branch|HKCU\\a|"});
        EXPECT_EQ(Highlighted(d), -1);
        EXPECT_TRUE(DeleteHasTabStop(d)) << "a refused drop looks at the selection";
        d.Click(IDCANCEL);
    });
    EXPECT_EQ(driver.BoxTexts().size(), 1u) << "no change, no question";
}

TEST_F(DragRules, ALostCaptureLeavesTheNextDragWhole) {
    control.AddKeyRule(L"HKCU\\a", 1, 0);
    Show([&](Dialog& d) {
        ListSteps list = d.List(IDC_RULE_LIST);
        DragTo(d, {L"Vendor"}, list.Centre(0, 1));
        d.OnGuiThread([] { ReleaseCapture(); });
        d.Release();
        EXPECT_EQ(Rows(d), Texts{L"Branch|HKCU\\a|"}) << "without the capture the drop does not arrive";
        // The next click on the dialog ends the drag; the highlight goes with the move there.
        d.Click(Background(d));
        EXPECT_EQ(Highlighted(d), -1);
        EXPECT_FALSE(ImageFloats(d));
        // At once into the next one, without a click in between.
        DragTo(d, {L"Vendor"}, list.Centre(0, 1));
        d.OnGuiThread([] { ReleaseCapture(); });
        d.Release();
        Drop(d, {L"Vendor", L"App"}, list.Centre(0, 1));
        EXPECT_EQ(Rows(d), (Texts{L"Branch|" + base + L"\\Vendor\\App|", L"Branch|HKCU\\a|"}));
        EXPECT_EQ(Highlighted(d), -1);
        EXPECT_FALSE(ImageFloats(d));
        EXPECT_EQ(d.Capture(), nullptr);
        Discard(d);
    });
}

TEST_F(DragRules, TheEndOfTheDialogIsTheEndOfTheDrag) {
    for (const bool byOk : {false, true}) {
        Show([&](Dialog& d) {
            DragTo(d, {L"Vendor"}, d.List(IDC_RULE_LIST).BehindRows());
            if (byOk)
                d.Alt(L'O');
            else
                d.Key(VK_ESCAPE);
            d.WaitUntilClosed();
        });
        EXPECT_EQ(ImageList_GetDragImage(nullptr, nullptr), nullptr);
        EXPECT_EQ(GetCapture(), nullptr);
        Show([&](Dialog& d) {
            // The next run begins at rest: the gap answers, and a drag works.
            d.Move(Gap(d));
            EXPECT_TRUE(CursorIs(d, IDC_SIZEWE));
            EXPECT_FALSE(ImageFloats(d));
            Drop(d, {L"Vendor"}, d.List(IDC_RULE_LIST).BehindRows());
            EXPECT_EQ(Rows(d).size(), 1u);
            Discard(d);
        });
    }
}
