// What the mouse holds on the dialog, a rule or the gap, and every way in which it lets go: the release, also one that
// nobody saw, a box, the end of the dialog and of the program.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include "dialog/RulesDialog.h"
#include "support/FreshProcess.h"
#include "support/ImportPatch.h"
#include "support/ScopedRegistryKey.h"

namespace {

class Mouse : public RulesDialog {
protected:
    Mouse() {
        registry.AddKey(L"Vendor");
        for (const wchar_t* key : {L"HKCU\\a", L"HKCU\\b"}) control.AddKeyRule(key, 1, 32767);
    }
    // Where to take hold of the vendor's key.
    POINT Vendor(Dialog& d) {
        TreeSteps tree = d.Tree(IDC_REGISTRY_TREE);
        TreeSteps::Path path{L"HKEY_CURRENT_USER", L"Software", registry.Name()};
        tree.Expand(path);
        path.push_back(L"Vendor");
        return tree.Centre(tree.Item(path));
    }
    // Takes it and stops over a row of the list.
    void HoldOver(Dialog& d, int row) {
        const POINT from = Vendor(d);
        d.Move(from);
        Changes(d);
        d.Press();
        d.Move({from.x + 12, from.y + 12});
        d.Move(d.List(IDC_RULE_LIST).Centre(row, 1));
    }
    // Lets the host's own box come up, by a timer, and waits for it.
    static void ShowHostBox(Dialog& d) {
        d.OnGuiThread([] {
            SetTimer(nullptr, 0, 1, [](HWND, UINT, UINT_PTR timer, DWORD) {
                KillTimer(nullptr, timer);
                MessageBoxW(GetActiveWindow(), L"of the host", L"", MB_OK);
            });
        });
        EXPECT_EQ(d.ExpectBox(), L"of the host");
    }
    static void ClickBoxButton(Dialog& d, int button) {
        const HWND pressed = GetDlgItem(GetForegroundWindow(), button);
        d.Click(Dialog::Centre(pressed));
        d.WaitFor("the end of the box", [&] { return !IsWindow(pressed); });
    }

    ScopedRegistryKey registry;
    const std::wstring vendor = L"Branch|HKCU\\Software\\" + registry.Name() + L"\\Vendor|; ";
};

}  // namespace

TEST_F(Mouse, ADragEndsAnOpenEditorFirst) {
    Show([&](Dialog& d) {
        Vendor(d);
        OpenCellEdit(d, 1, 1);
        d.Type(L"HKCU\\new");
        HoldOver(d, 0);
        EXPECT_EQ(Rows(d), (Texts{L"Branch|HKCU\\a|", L"Branch|HKCU\\new|"})) << "the text is in its own row";
        d.Release();
        EXPECT_EQ(Changes(d), (Look{{"rows", vendor + L"Branch|HKCU\\a|; Branch|HKCU\\new|; "},
                                    {"selected", L"0"},
                                    {"dirty", L"yes"},
                                    {"cell", L""},
                                    {"focus", L"list"}}));
        // A kind that asks for its name is ended with the edit that it opens.
        OpenCellCombo(d, 1);
        d.Key(VK_END);
        HoldOver(d, 2);
        EXPECT_EQ(CellEdit(d), nullptr);
        EXPECT_EQ(Rows(d)[1], L"Value|HKCU\\a|(Default)");
        d.Release();
        // A refused key is held, and no drag begins.
        OpenCellEdit(d, 1, 1);
        d.Type(L"x");
        const POINT from = Vendor(d);
        Changes(d);
        d.Move(from);
        d.Press();
        d.Move({from.x + 12, from.y + 12});
        EXPECT_EQ(d.AnswerBox(IDOK), unknownHive);
        d.Move(d.List(IDC_RULE_LIST).Centre(0, 1));
        Look changes = Changes(d);
        changes.erase("picture");  // the tip of a tree item may have come and gone
        EXPECT_EQ(changes, Look{}) << "neither captured nor dragged";
        d.Release();
        EXPECT_EQ(Changes(d), Look{});
        d.Type(L"HKCU\\y\r");
        Discard(d);
    });
}

TEST_F(Mouse, TheWheelEndsAnOpenEditorWhereverItIsDelivered) {
    for (short row = 2; row < 40; ++row) control.AddKeyRule((L"HKCU\\" + std::to_wstring(row)).c_str(), 1, row);
    Show([&](Dialog& d) {
        ListSteps list = d.List(IDC_RULE_LIST);
        const auto top = [&] { return ListView_GetTopIndex(list.Window()); };
        // To the window under the cursor: a row, and the editor itself.
        for (const int over : {2, 1}) {
            OpenCellEdit(d, 1, 1);
            d.Type(L"HKCU\\new" + std::to_wstring(over));
            d.Wheel(list.Centre(over, 1), 1);
            EXPECT_EQ(CellEdit(d), nullptr);
            EXPECT_GT(top(), 0);
            EXPECT_EQ(Rows(d)[1], L"Branch|HKCU\\new" + std::to_wstring(over) + L"|");
            d.Wheel(list.Centre(3, 1), -2);
        }
        // To the window with the focus, wherever the cursor is.
        const HWND edit = OpenCellEdit(d, 1, 1);
        d.OnGuiThread([&] { SendMessageW(edit, WM_MOUSEWHEEL, MAKEWPARAM(0, -WHEEL_DELTA), 0); });
        EXPECT_GT(top(), 0);
        d.WaitFor("the end of the edit", [&] { return CellEdit(d) == nullptr; });
        // A refused key stays in view, over its own row.
        d.Wheel(list.Centre(3, 1), -2);
        OpenCellEdit(d, 1, 1);
        d.Type(L"x");
        d.Wheel(list.Centre(2, 1), 1);
        EXPECT_EQ(d.AnswerBox(IDOK), unknownHive);
        EXPECT_EQ(top(), 0);
        EXPECT_NE(CellEdit(d), nullptr);
        d.Type(L"HKCU\\y\r");
        Discard(d);
    });
}

TEST_F(Mouse, ABoxTakesTheMouseAndADragGoesOnOnlyWithTheButton) {
    Show([&](Dialog& d) {
        SelectRow(d, 0);
        d.Key(VK_F2);  // nothing to be lost yet, but a change
        OpenCellEdit(d, 0, 1);
        d.Type(L"\x1b");
        // Answered with the button down: on it goes.
        HoldOver(d, 1);
        EXPECT_EQ(Changes(d), (Look{{"mouse", L"captured row 1 image "}}));
        d.Key(VK_ESCAPE);
        EXPECT_EQ(d.ExpectBox(), confirmCancel);
        EXPECT_EQ(d.Capture(), nullptr);
        d.Alt(L'N');
        d.WaitFor("the dialog in front", [&] { return GetForegroundWindow() == d.Window(); });
        EXPECT_EQ(Changes(d), Look{});
        d.Move(d.List(IDC_RULE_LIST).Centre(0, 1));
        d.Release();
        EXPECT_EQ(Changes(d), (Look{{"rows", vendor + L"Branch|HKCU\\a|; Branch|HKCU\\b|; "}, {"mouse", L""}}));
        // Its buttons can be clicked, and the drag is over by then; so with a box of the host's.
        for (const bool ofHost : {false, true}) {
            HoldOver(d, 1);
            if (ofHost) {
                ShowHostBox(d);
            } else {
                d.Key(VK_ESCAPE);
                d.ExpectBox();
            }
            EXPECT_EQ(d.Capture(), nullptr);
            d.Release();
            ClickBoxButton(d, ofHost ? IDOK : IDNO);
            EXPECT_EQ(Changes(d), Look{});
        }
        // The gap is let go of for good, whoever's box it is.
        for (const bool ofHost : {false, true}) {
            const POINT gap = Gap(d);
            d.Move(gap);
            d.Press();
            EXPECT_EQ(Changes(d), (Look{{"mouse", L"captured clipped "}}));
            if (ofHost) {
                ShowHostBox(d);
            } else {
                d.Key(VK_ESCAPE);
                d.ExpectBox();
            }
            EXPECT_EQ(d.Capture(), nullptr);
            d.Release();
            ClickBoxButton(d, ofHost ? IDOK : IDNO);
            d.Move({gap.x - 40, gap.y});
            EXPECT_EQ(Gap(d).x, gap.x);
            EXPECT_EQ(Changes(d), (Look{{"mouse", L""}}));
        }
        Discard(d);
    });
}

TEST_F(Mouse, AReleaseThatTheDialogDidNotSeeEndsWhatItHeld) {
    Show([&](Dialog& d) {
        // Seen by a move over a control, over the dialog itself, and by the next press.
        const POINT returns[] = {Dialog::Centre(d.Control(IDC_NEW_KEY)),
                                 d.List(IDC_RULE_LIST).Centre(0, 1),
                                 {Frame(d.Control(IDCANCEL)).left - 200, Dialog::Centre(d.Control(IDCANCEL)).y}};
        for (const POINT& back : returns) {
            HoldOver(d, 1);
            d.OnGuiThread([] { ReleaseCapture(); });
            d.Release();
            d.Move(back);
            EXPECT_EQ(Changes(d), Look{}) << "no drop";
        }
        // Still down: the drag goes on.
        HoldOver(d, 1);
        d.OnGuiThread([] { ReleaseCapture(); });
        d.Move(d.List(IDC_RULE_LIST).Centre(0, 2));
        d.Move(d.List(IDC_RULE_LIST).Centre(0, 1));
        EXPECT_EQ(Changes(d), (Look{{"mouse", L"captured row 0 image "}}));
        d.Release();
        EXPECT_EQ(Changes(d), (Look{{"rows", vendor + L"Branch|HKCU\\a|; Branch|HKCU\\b|; "},
                                    {"selected", L"0"},
                                    {"mouse", L""},
                                    {"dirty", L"yes"},
                                    {"delete", L"live, tab"}}));
        // The gap stays where the capture was lost.
        const POINT gap = Gap(d);
        d.Move(gap);
        d.Press();
        d.OnGuiThread([] { ReleaseCapture(); });
        d.Move({gap.x - 40, gap.y});
        EXPECT_EQ(Changes(d), Look{}) << "neither clipped nor captured";
        EXPECT_EQ(Gap(d).x, gap.x);
        d.Release();
        Discard(d);
    });
}

TEST_F(Mouse, TheEndOfTheDialogOrOfTheProgramIsTheEndOfWhatItHolds) {
    const std::function<void(Dialog&)> ends[] = {
        [](Dialog& d) { d.Key(VK_ESCAPE); },
        [](Dialog& d) { d.Alt(L'O'); },
        [](Dialog& d) { d.OnGuiThread([] { PostQuitMessage(0); }); },
        [](Dialog& d) { d.OnGuiThread([&] { DestroyWindow(d.Window()); }); },
    };
    for (const auto& end : ends) {
        for (const bool ofGap : {false, true}) {
            Show([&](Dialog& d) {
                if (ofGap) {
                    d.Move(Gap(d));
                    d.Press();
                } else {
                    HoldOver(d, 1);
                }
                end(d);
                d.WaitUntilClosed();
            });
            EXPECT_EQ(ImageList_GetDragImage(nullptr, nullptr), nullptr);
            EXPECT_EQ(GetCapture(), nullptr);
            RECT clip{};
            GetClipCursor(&clip);
            EXPECT_EQ(clip.right - clip.left, GetSystemMetrics(SM_CXSCREEN));
            Show([&](Dialog& d) {
                Changes(d);
                d.Move(Gap(d));
                EXPECT_TRUE(CursorIs(d, IDC_SIZEWE)) << "the gap answers";
                HoldOver(d, 1);
                d.Move(Gap(d));
                d.Release();
                EXPECT_EQ(Rows(d).size(), 2u);
                d.Click(IDCANCEL);
            });
        }
    }
}

TEST_F(Mouse, TheHostsCursorComesBackWhenTheDialogEndsOverTheGap) {
    const HCURSOR own = LoadCursorW(nullptr, IDC_CROSS);
    SetCursor(own);
    Show([&](Dialog& d) {
        d.Move(Gap(d));
        EXPECT_TRUE(CursorIs(d, IDC_SIZEWE));
        d.Key(VK_ESCAPE);
    });
    EXPECT_EQ(GetCursor(), own);
}

TEST_F(Mouse, TheOwnerIsEnabledBeforeTheDialogGoes) {
    static bool s_enabled = false;
    const HHOOK hook = SetWindowsHookExW(
        WH_CALLWNDPROC,
        [](int code, WPARAM wParam, LPARAM lParam) {
            const auto& sent = *reinterpret_cast<const CWPSTRUCT*>(lParam);
            const HWND owner = GetWindow(sent.hwnd, GW_OWNER);
            if (sent.message == WM_DESTROY && owner != nullptr) s_enabled = IsWindowEnabled(owner) != FALSE;
            return CallNextHookEx(nullptr, code, wParam, lParam);
        },
        nullptr, GetCurrentThreadId());
    Show([&](Dialog& d) {
        EXPECT_FALSE(IsWindowEnabled(host.Window()));
        d.Click(IDCANCEL);
    });
    UnhookWindowsHookEx(hook);
    EXPECT_TRUE(s_enabled);
}

TEST_F(Mouse, OnlyYesGivesTheEditsUp) {
    Show([&](Dialog& d) {
        SelectRow(d, 0);
        d.Key(VK_DELETE);
        Changes(d);
        d.Click(IDCANCEL);
        EXPECT_EQ(d.ExpectBox(), confirmCancel);
        const HWND box = GetForegroundWindow();
        d.Key(VK_ESCAPE);
        if (IsWindowVisible(box)) d.AnswerBox(IDNO);  // Windows leaves it open; Wine 8.0 closes it
        {
            // A box that cannot be shown.
            const ImportPatch<decltype(&MessageBoxW)> patch(LoadedModule(L"framework.dll"), "MessageBoxW",
                                                            [](HWND, LPCWSTR, LPCWSTR, UINT) { return 0; });
            d.Key(VK_ESCAPE);
        }
        EXPECT_EQ(Changes(d), (Look{{"focus", L"cancel"}})) << "the dialog is still there, and its rows";
        Discard(d);
    });
}

TEST_F(Mouse, ARefusedKeyThatGoesDownWithTheDialogAsksNobody) {
    const std::function<void(Dialog&)> ends[] = {
        [](Dialog& d) { d.OnGuiThread([] { PostQuitMessage(0); }); },
        [](Dialog& d) { d.OnGuiThread([&] { DestroyWindow(d.Window()); }); },
        [](Dialog& d) { PostMessageW(d.Window(), WM_COMMAND, IDCANCEL, 0); },
    };
    for (const auto& end : ends) {
        Show([&](Dialog& d) {
            OpenCellEdit(d, 0, 1);
            d.Type(L"x");
            end(d);
            d.WaitUntilClosed();
        });
        EXPECT_EQ(driver.BoxTexts(), Texts{});
    }
}

// The resolution is that of the process from its beginning on.
TEST(SplitterPicture, EqualsAFreshPaintAfterEveryMove) {
    for (const DWORD dpi : {96, 120, 144, 192}) {
        RegSetKeyValueW(HKEY_CURRENT_USER, L"Control Panel\\Desktop", L"LogPixels", REG_DWORD, &dpi, sizeof dpi);
        EXPECT_IN_FRESH_PROCESS([dpi] {
            SetProcessDPIAware();
            const HDC screen = GetDC(nullptr);
            ASSERT_EQ(GetDeviceCaps(screen, LOGPIXELSX), static_cast<int>(dpi));
            ReleaseDC(nullptr, screen);
            RulesDialog::MoveTheGapAbout();
        });
    }
    RegDeleteKeyValueW(HKEY_CURRENT_USER, L"Control Panel\\Desktop", L"LogPixels");
}
