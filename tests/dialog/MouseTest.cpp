// What the mouse holds on the dialog, a rule or the gap between tree and list, and every way in which it lets go: the
// release, also one that nobody saw, a box, the end of the dialog and of the program.
#include <gtest/gtest.h>

#include "dialog/RulesDialog.h"
#include "support/FreshProcess.h"
#include "support/ImportPatch.h"

namespace {

class Mouse : public RulesDialog {
protected:
    Mouse() { AddBranches({L"HKCU\\a", L"HKCU\\b"}); }

    using RulesDialog::HoldOver;
    static Act HoldOver(int row) { return HoldOver({L"Vendor"}, row); }
    static Act MoveOver(int row, int column = 1) {
        return [=](Dialog& d) { d.Move(List(d).Centre(row, column)); };
    }
    static void MoveToGap(Dialog& d) { d.Move(Gap(d)); }
    static void HoldGap(Dialog& d) {
        d.Move(Gap(d));
        d.Press();
    }
    static void MoveGap(Dialog& d) { d.Move({Gap(d).x - 40, Gap(d).y}); }
    static void LetGo(Dialog& d) { d.Release(); }
    // As after a release that nobody here was told of.
    static void MoveWithoutButton(Dialog& d) {
        const POINT gap = Gap(d);
        SendMessageW(d.Window(), WM_MOUSEMOVE, 0, MAKELPARAM(gap.x, gap.y));
    }
    // To the host's window, which gives it back later; the system may then tell where the mouse is.
    static void LoseCapture(Dialog& d) {
        d.OnGuiThread([&] { SetCapture(GetWindow(d.Window(), GW_OWNER)); });
    }
    static void GiveBack(Dialog& d) {
        d.OnGuiThread([] { ReleaseCapture(); });
    }
    static Act ComeBackOver(int row) {
        return [=](Dialog& d) {
            GiveBack(d);
            MoveOver(row, 2)(d);
            MoveOver(row)(d);
        };
    }
    // The host's own box, by a timer.
    static void ShowHostBox(Dialog& d) {
        d.OnGuiThread([] {
            SetTimer(nullptr, 0, 1, [](HWND, UINT, UINT_PTR timer, DWORD) {
                KillTimer(nullptr, timer);
                MessageBoxW(GetActiveWindow(), L"of the host", L"", MB_YESNO);
            });
        });
    }
    static void ClickNo(Dialog& d) {
        const HWND no = GetDlgItem(GetForegroundWindow(), IDNO);
        d.Click(no);
        d.WaitFor("the end of the box", [&] { return !IsWindow(no) && GetForegroundWindow() == d.Window(); });
    }
    // On the dialog's thread: the picture is the item's icon and its text, in the tree's font, and nothing around them.
    static void ExpectDragPicture(HWND tree, const std::wstring& text) {
        const HDC dc = GetDC(tree);
        SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(tree, WM_GETFONT, 0, 0)));
        SIZE extent{};
        GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &extent);
        POINT hotSpot{};
        const HIMAGELIST image = ImageList_GetDragImage(nullptr, &hotSpot);
        int width = 0;
        int height = 0;
        ImageList_GetIconSize(image, &width, &height);
        EXPECT_TRUE(width == 16 + 3 + extent.cx && height == std::max(16L, extent.cy)) << width << " x " << height;
        EXPECT_TRUE(hotSpot.x == 10 && hotSpot.y == 10);
        const HDC memory = CreateCompatibleDC(dc);
        const HBITMAP bitmap = CreateCompatibleBitmap(dc, width, height);
        const HGDIOBJ previous = SelectObject(memory, bitmap);
        PatBlt(memory, 0, 0, width, height, WHITENESS);
        ImageList_Draw(image, 0, memory, 0, 0, ILD_TRANSPARENT);
        int ink = 0;  // drawn pixels behind the icon
        for (int x = 17; x < width; ++x) {
            for (int y = 0; y < height; ++y) ink += GetPixel(memory, x, y) != RGB(255, 255, 255);
        }
        EXPECT_TRUE(ink > 40 && ink < extent.cx * extent.cy / 2) << ink;
        SelectObject(memory, previous);
        DeleteObject(bitmap);
        DeleteDC(memory);
        ReleaseDC(tree, dc);
    }
};

}  // namespace

TEST_F(Mouse, DropsKeysAndValuesBeforeARowOrBehindTheLast) {
    EXPECT_EQ(
        Work(
            {{Drop({L"Vendor"}, behindRows),
              L"delete=live, tab dirty=yes rows=Branch|HKCU\\a|; Branch|HKCU\\b|; Branch|HKCU\\T\\Vendor|; selected=2"},
             {Drop({L"Vendor", L"App"}, 1),
              L"rows=Branch|HKCU\\a|; Branch|HKCU\\T\\Vendor\\App|; Branch|HKCU\\b|; Branch|HKCU\\T\\Vendor|; "
              L"selected=1"},
             // The drop of a rule that is there moves it, and the dragged item is selected.
             {Drop({L"Vendor"}, 0),
              L"rows=Branch|HKCU\\T\\Vendor|; Branch|HKCU\\a|; Branch|HKCU\\T\\Vendor\\App|; Branch|HKCU\\b|; "
              L"selected=0"},
             {[](Dialog& d) {
                 EXPECT_EQ(TreeView_GetSelection(d.Control(IDC_REGISTRY_TREE)),
                           Reach(d, {L"HKEY_CURRENT_USER", L"T", L"Vendor"}));
                 EXPECT_EQ(d.List(IDC_RULE_LIST).RowWithState(LVIS_FOCUSED), 0);
                 d.Click(IDOK);
             }}}),
        1);
    EXPECT_EQ(HostRules()[2], L"Branch|HKEY_CURRENT_USER\\T\\Vendor\\App|2");
    // A value loses its own name from the path, also one that is named like its key.
    Show([&](Dialog& d) {
        for (const wchar_t* name : {L"Vendor", L"back\\slash", L""}) Drop({L"Vendor", name}, 0)(d);
        EXPECT_TRUE(
            RowsOf(d).starts_with(L"Value|HKCU\\T\\Vendor|; Value|HKCU\\T\\Vendor|back\\slash; "
                                  L"Value|HKCU\\T\\Vendor|Vendor; "));
        d.Click(IDOK);
    });
}

TEST_F(Mouse, ShowsWhereADropWouldGoAndDropsNowhereElse) {
    Show([&](Dialog& d) {
        Go(d, {{HoldOver(1), L"mouse=captured, row 1, image"},
               {MoveOver(0), L"mouse=captured, row 0, image"},
               {[](Dialog& on) { on.Move(on.List(IDC_RULE_LIST).BehindRows()); }, L"mouse=captured, image"},
               {MoveOver(1), L"mouse=captured, row 1, image"}});
        d.OnGuiThread([&] { ExpectDragPicture(d.Control(IDC_REGISTRY_TREE), L"Vendor"); });
        Go(d, {{MoveToGap, L"mouse=captured, image"}});
        EXPECT_FALSE(CursorIs(d, IDC_SIZEWE)) << "the gap does not answer to a drag";
        Go(d, {{LetGo, L"mouse="}});
        const RECT frame = Frame(d.Window());
        for (const POINT to : {POINT{frame.right + 40, frame.bottom + 20}, Dialog::Centre(d.Control(IDC_NEW_KEY)),
                               Dialog::Centre(ListView_GetHeader(d.Control(IDC_RULE_LIST)))}) {
            d.DragTo(Hold(d, {L"Vendor"}), to);
            d.Release();
            EXPECT_EQ(Changes(d), L"") << "a drop outside is void";
        }
        // A hive is refused, and the refusal looks at the selection.
        d.OnGuiThread([&] { ListView_SetItemState(d.Control(IDC_RULE_LIST), 0, LVIS_SELECTED, LVIS_SELECTED); });
        HoldOver({L"HKEY_USERS"}, 0)(d);
        Go(d, {{LetGo, L"box=" BARE_HIVE L" delete=live, tab selected=0", IDOK}, {Click(IDCANCEL)}});
    });
}

TEST_F(Mouse, ADragEndsAnOpenEditorFirst) {
    Show([&](Dialog& d) {
        Hold(d, {L"Vendor"});
        Changes(d);
        // The text is in its own row; a kind that asks for its name is ended with the edit that it opens.
        Go(d, {{Open(1, 1), L"cell=HKCU\\b delete=live, tab focus=cell selected=1"},
               {Type(L"HKCU\\new"), L"cell=HKCU\\new"},
               {HoldOver(0),
                L"cell= dirty=yes focus=list mouse=captured, row 0, image rows=Branch|HKCU\\a|; Branch|HKCU\\new|;"},
               {LetGo, L"mouse= rows=Branch|HKCU\\T\\Vendor|; Branch|HKCU\\a|; Branch|HKCU\\new|; selected=0"},
               {Open(1, 0), L"cell=Branch focus=cell selected=1"},
               {Press(VK_END), L"cell=Value"},
               {HoldOver(2),
                L"cell= focus=list mouse=captured, row 2, image rows=Branch|HKCU\\T\\Vendor|; Value|HKCU\\a|(Default); "
                L"Branch|HKCU\\new|;"},
               {LetGo, L"mouse= rows=Value|HKCU\\a|(Default); Branch|HKCU\\T\\Vendor|; Branch|HKCU\\new|;"},
               {Open(0, 1), L"cell=HKCU\\a focus=cell selected=0"},
               {Type(L"x"), L"cell=x"}});
        // A refused key is held, and no drag begins.
        const POINT from = Hold(d, {L"Vendor"});
        d.Move(from);
        d.Press();
        const auto pull = [&](Dialog& on) { on.Move({from.x + 12, from.y + 12}); };
        Go(d, {{pull, L"box=" UNKNOWN_HIVE, IDOK},
               {MoveOver(0), L""},
               {LetGo, L""},
               {Type(L"HKCU\\y\r"),
                L"cell= focus=list rows=Value|HKCU\\y|(Default); Branch|HKCU\\T\\Vendor|; Branch|HKCU\\new|;"},
               {Click(IDCANCEL), L"box=" CONFIRM_CANCEL, IDYES}});
    });
}

TEST_F(Mouse, TheWheelEndsAnOpenEditorWhereverItIsDelivered) {
    AddBranches({}, 2, 40);
    Show([&](Dialog& d) {
        ListSteps list = d.List(IDC_RULE_LIST);
        const auto top = [&] { return ListView_GetTopIndex(list.Window()); };
        // To the window under the cursor, a row or the editor itself, or to the one with the focus, wherever that is.
        const Act turns[] = {[&](Dialog& on) { on.Wheel(list.Centre(2, 1), 1); },
                             [&](Dialog& on) { on.Wheel(list.Centre(1, 1), 1); },
                             [&](Dialog& on) {
                                 const HWND edit = CellEditor(on);
                                 on.OnGuiThread([&] { SendMessageW(edit, WM_MOUSEWHEEL, MAKEWPARAM(0, -120), 0); });
                             }};
        for (const Act& turn : turns) {
            Open(1, 1)(d);
            d.Type(L"HKCU\\b");
            turn(d);
            d.WaitFor("the end of the edit", [&] { return CellEditor(d) == nullptr; });
            EXPECT_GT(top(), 0);
            d.Wheel(list.Centre(3, 1), -2);
        }
        // A refused key stays in view, over its own row.
        Open(1, 1)(d);
        d.Type(L"x");
        turns[0](d);
        EXPECT_EQ(d.AnswerBox(IDOK), UNKNOWN_HIVE);
        EXPECT_EQ(top(), 0);
        EXPECT_NE(CellEditor(d), nullptr);
        d.Type(L"HKCU\\y\r");
        d.Click(IDCANCEL);
        d.AnswerBox(IDYES);
    });
}

TEST_F(Mouse, ABoxTakesItAndADragGoesOnOnlyWithTheButton) {
    Show([&](Dialog& d) {
        Open(0, 2)(d);
        d.Type(L"\x1b");  // a change to be asked about
        Hold(d, {L"Vendor"});
        Changes(d);
        // Answered with the button down: on it goes.
        Go(d, {{HoldOver(1), L"mouse=captured, row 1, image"},
               {Press(VK_ESCAPE), L"box=" CONFIRM_CANCEL L" focus=elsewhere mouse=row 1, image"},
               {Answer(IDNO), L"focus=tree mouse=captured, row 1, image"},
               {MoveOver(0), L"mouse=captured, row 0, image"},
               {LetGo, L"mouse= rows=Branch|HKCU\\T\\Vendor|; Branch|HKCU\\a|; Branch|HKCU\\b|;"}});
        // Its buttons can be clicked, and the drag is over by then; so with a box of the host's, and with the gap.
        for (const Act& box : {Press(VK_ESCAPE), Act(ShowHostBox)}) {
            for (const Act& hold : {HoldOver(1), Act(HoldGap)}) {
                Changes(d);
                hold(d);
                box(d);
                d.ExpectBox();
                EXPECT_EQ(d.Capture(), nullptr);
                d.Release();
                Go(d, {{ClickNo, L""}, {MoveGap, L""}});
            }
        }
        d.Click(IDCANCEL);
        d.AnswerBox(IDYES);
    });
}

TEST_F(Mouse, AReleaseThatTheDialogDidNotSeeEndsWhatItHeld) {
    Show([&](Dialog& d) {
        // Seen by a move over a control or over the dialog itself.
        const RECT cancel = Frame(d.Control(IDCANCEL));
        for (const POINT back : {Dialog::Centre(d.Control(IDC_NEW_KEY)), POINT{cancel.left - 200, cancel.top}}) {
            HoldOver(1)(d);
            LoseCapture(d);
            d.Release();
            d.Move({back.x + 1, back.y});
            GiveBack(d);
            d.Move(back);
            EXPECT_EQ(Changes(d), L"") << "no drop";
        }
        Go(d, {{HoldOver(1), L"mouse=captured, row 1, image"},
               // Still down: the drag goes on.
               {LoseCapture, L"mouse=row 1, image"},
               {MoveOver(0), L""},
               {ComeBackOver(0), L"mouse=captured, row 0, image"},
               {LetGo,
                L"delete=live, tab dirty=yes mouse= rows=Branch|HKCU\\T\\Vendor|; Branch|HKCU\\a|; Branch|HKCU\\b|; "
                L"selected=0"},
               {HoldOver(1), L"mouse=captured, row 1, image"},
               {MoveWithoutButton, L"mouse="},
               {LetGo, L""},
               // The gap stays where the capture was lost.
               {HoldGap, L"mouse=captured, clipped"},
               {LoseCapture, L"mouse="},
               {MoveGap, L""},
               {LetGo, L""},
               {GiveBack, L""},
               {Click(IDCANCEL), L"box=" CONFIRM_CANCEL, IDYES}});
    });
}

TEST_F(Mouse, TheEndOfTheDialogOrOfTheProgramEndsWhatItHolds) {
    const Act ends[] = {Press(VK_ESCAPE), Press(L'O', VK_MENU),
                        [](Dialog& d) { d.OnGuiThread([] { PostQuitMessage(0); }); },
                        [](Dialog& d) { d.OnGuiThread([&] { DestroyWindow(d.Window()); }); }};
    const HCURSOR own = LoadCursorW(nullptr, IDC_CROSS);
    for (const Act& end : ends) {
        for (const Act& hold : {HoldOver(1), Act(HoldGap)}) {
            SetCursor(own);
            Show([&](Dialog& d) {
                hold(d);
                end(d);
                d.WaitUntilClosed();
            });
            EXPECT_NE(GetCursor(), LoadCursorW(nullptr, IDC_SIZEWE));
            EXPECT_EQ(GetCapture(), nullptr);
            // The next run begins at rest: the gap answers, and a drag works.
            Show([&](Dialog& d) {
                EXPECT_EQ(look[L"mouse"], L"");
                MoveToGap(d);
                EXPECT_TRUE(CursorIs(d, IDC_SIZEWE));
                Go(d, {{HoldOver(1), L"mouse=captured, row 1, image"}, {MoveToGap, L"mouse=captured, image"}});
                d.Release();
                d.Click(IDCANCEL);
            });
        }
        // A refused key that goes down with the dialog asks nobody.
        if (&end == &ends[1]) continue;
        Show([&](Dialog& d) {
            Open(0, 1)(d);
            d.Type(L"x");
            &end == &ends[0] ? void(PostMessageW(d.Window(), WM_COMMAND, IDCANCEL, 0)) : end(d);
            d.WaitUntilClosed();
        });
        EXPECT_EQ(driver.BoxTexts(), Texts{});
    }
    SetCursor(own);
    Work({{MoveToGap, L""}, {Press(VK_ESCAPE)}});
    EXPECT_EQ(GetCursor(), own) << "the host's own is back when the dialog ends over the gap";
}

TEST_F(Mouse, OnlyYesGivesTheEditsUpAndTheOwnerIsBackBeforeTheDialogGoes) {
    static bool s_enabled = false;
    const auto seeEnd = [](int code, WPARAM wParam, LPARAM lParam) {
        const auto& sent = *reinterpret_cast<const CWPSTRUCT*>(lParam);
        const HWND owner = GetWindow(sent.hwnd, GW_OWNER);
        if (sent.message == WM_DESTROY && owner != nullptr) s_enabled = IsWindowEnabled(owner) != FALSE;
        return CallNextHookEx(nullptr, code, wParam, lParam);
    };
    const HHOOK hook = SetWindowsHookExW(WH_CALLWNDPROC, seeEnd, nullptr, GetCurrentThreadId());
    Show([&](Dialog& d) {
        EXPECT_FALSE(IsWindowEnabled(host.Window()));
        Open(0, 2)(d);
        d.Type(L"\x1b");
        Changes(d);
        d.Key(VK_ESCAPE);
        EXPECT_EQ(d.ExpectBox(), CONFIRM_CANCEL);
        const HWND box = GetForegroundWindow();
        d.Key(VK_ESCAPE);
        if (IsWindowVisible(box)) d.AnswerBox(IDNO);  // Windows leaves it open; Wine 8.0 closes it
        {
            const ImportPatch<decltype(&MessageBoxW)> cannotShow(LoadedModule(L"RegistryRulesFramework.dll"),
                                                                 "MessageBoxW",
                                                                 [](HWND, LPCWSTR, LPCWSTR, UINT) { return 0; });
            d.Key(VK_ESCAPE);
        }
        EXPECT_EQ(Changes(d), L"") << "the dialog is still there, and its rows";
        d.Click(IDCANCEL);
        d.AnswerBox(IDYES);
    });
    UnhookWindowsHookEx(hook);
    EXPECT_TRUE(s_enabled);
}

TEST_F(Mouse, MovesTheGapWithinItsBoundsAndTheHeadsFollow) {
    // Which edges follow.
    constexpr struct {
        int id;
        bool left, right;
    } controls[] = {{IDC_REGISTRY_TREE, false, true}, {IDC_RULE_LIST, true, false},   {IDC_NEW_TYPE, true, true},
                    {IDC_TYPE_LABEL, true, true},     {IDC_TYPE_FRAME, true, true},   {IDC_NEW_KEY, true, false},
                    {IDC_KEY_LABEL, true, false},     {IDC_KEY_FRAME, true, false},   {IDC_NEW_VALUE, false, false},
                    {IDC_VALUE_LABEL, false, false},  {IDC_VALUE_FRAME, false, false}};
    Show([&](Dialog& d) {
        std::map<int, RECT> before;
        for (const auto& c : controls) before[c.id] = Frame(d.Control(c.id));
        const auto moved = [&](LONG by) {
            for (const auto& [id, left, right] : controls) {
                RECT expected = before[id];
                expected.left += left ? by : 0;
                expected.right += right ? by : 0;
                const RECT now = Frame(d.Control(id));
                EXPECT_TRUE(EqualRect(&now, &expected)) << id << " " << by;
            }
        };
        // The strip stands under heads that are as high as the font asks for, and over the list.
        const LONG spacing = before[IDC_NEW_TYPE].top - before[IDC_VALUE_FRAME].bottom;
        EXPECT_EQ(before[IDC_VALUE_FRAME].bottom - before[IDC_VALUE_FRAME].top, (spacing + 13) * 2);
        EXPECT_EQ(before[IDC_VALUE_LABEL].top - before[IDC_VALUE_FRAME].top, 13 / 2 + 2 * spacing);
        EXPECT_EQ(before[IDC_RULE_LIST].top, before[IDC_NEW_TYPE].bottom + spacing);
        EXPECT_EQ(before[IDC_RULE_LIST].bottom, before[IDC_REGISTRY_TREE].bottom);
        const POINT gap = Gap(d);
        d.DragTo(gap, {gap.x - 90, gap.y + 30});
        d.Release();
        moved(-90);
        d.Move(gap);
        EXPECT_FALSE(CursorIs(d, IDC_SIZEWE)) << "the hit rectangle has travelled along";
        const RECT list = Frame(d.Control(IDC_RULE_LIST));
        d.Move({list.left - 1, gap.y});
        EXPECT_TRUE(CursorIs(d, IDC_SIZEWE)) << "up to its right edge";
        d.DragTo({gap.x - 90, gap.y}, gap);
        d.Release();
        moved(0);
        HoldGap(d);
        EXPECT_EQ(Changes(d), L" mouse=captured, clipped");
        const RECT bounds = Frame(d.Control(IDC_SPLITTER_BOUNDS));
        d.Move({bounds.left - 500, gap.y});
        moved(bounds.left - gap.x);
        d.Move({bounds.right + 500, bounds.bottom + 500});
        moved(bounds.right - 1 - gap.x);
        d.Move(gap);
        d.Release();
        moved(0);
        // A press outside the gap neither captures nor clips.
        d.Move({gap.x, Frame(d.Control(IDC_REGISTRY_TREE)).bottom});
        EXPECT_TRUE(CursorIs(d, IDC_ARROW));
        d.Press();
        EXPECT_EQ(Changes(d), L" mouse=");
        d.Release();
        d.Click(IDCANCEL);
    });
}

// The resolution is that of the process from its beginning on.
TEST(SplitterPicture, EqualsAFreshPaintAfterEveryMove) {
    for (const DWORD dpi : {96u, 120u, 144u, 192u}) {
        RegSetKeyValueW(HKEY_CURRENT_USER, L"Control Panel\\Desktop", L"LogPixels", REG_DWORD, &dpi, sizeof dpi);
        EXPECT_IN_FRESH_PROCESS([dpi] {
            SetProcessDPIAware();
            const HostWindow host;
            CRegistryRulesCtrl control;
            for (short row = 0; row < 30; ++row) control.AddKeyRule((L"HKCU\\" + std::to_wstring(row)).c_str(), 1, row);
            DialogDriver driver;
            driver.Run([&] { control.Show(); },
                       [&](Dialog& d) {
                           EXPECT_EQ(GetDpiForWindow(d.Window()), dpi);
                           const POINT gap = Gap(d);
                           d.Move(gap);
                           d.Press();
                           for (const int by : {-1, 3, -40, -120, 60, -7, 90, 150, 0, -60}) {
                               d.Move({gap.x + by, gap.y});
                               d.OnGuiThread([&] { EXPECT_EQ(ComparePicture(d.Window()), L"fresh") << by; });
                           }
                           d.Release();
                           d.Key(VK_ESCAPE);
                       });
        });
    }
    RegDeleteKeyValueW(HKEY_CURRENT_USER, L"Control Panel\\Desktop", L"LogPixels");
}
