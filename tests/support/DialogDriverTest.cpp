#include "support/DialogDriver.h"

#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

#include "support/PlainDialog.h"
#include "support/ScopedTestDir.h"

namespace {

constexpr UINT kSecondQuestion = WM_APP + 7;

// The dialog's procedure notes what it saw here.
struct Seen {
    int doubleClicks = 0;
    int deletes = 0;
    bool ctrlWasDown = false;
    bool asyncShiftWasDown = false;
    int answer = 0;
    bool dragBegan = false;
};
Seen s_seen;

void Fill(HWND dialog) {
    const HWND list = GetDlgItem(dialog, IDC_ROWS);
    for (int column = 0; column < 2; ++column) {
        LVCOLUMNW header{};
        header.mask = LVCF_WIDTH;
        header.cx = 80;
        SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&header));
    }
    for (int row = 0; row < 30; ++row) {
        std::wstring text = L"row " + std::to_wstring(row);
        if (row == 1) text = std::wstring(5000, L'z');
        LVITEMW item{};
        item.mask = LVIF_TEXT;
        item.iItem = row;
        item.pszText = text.data();
        SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
        std::wstring second = L"cell " + std::to_wstring(row);
        item.iSubItem = 1;
        item.pszText = second.data();
        SendMessageW(list, LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    }
    HTREEITEM parent = TVI_ROOT;
    for (const wchar_t* const text : {L"root", L"branch", L"leaf"}) {
        TVINSERTSTRUCTW entry{};
        entry.hParent = parent;
        entry.hInsertAfter = TVI_LAST;
        entry.item.mask = TVIF_TEXT;
        entry.item.pszText = const_cast<LPWSTR>(text);
        parent = reinterpret_cast<HTREEITEM>(
            SendDlgItemMessageW(dialog, IDC_ITEMS, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&entry)));
    }
    for (const wchar_t* const text : {L"first", L"second", L"third"}) {
        SendDlgItemMessageW(dialog, IDC_CHOICE, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
    }
}

void OnNotify(const NMHDR& header) {
    if (header.idFrom == IDC_ROWS && header.code == NM_DBLCLK) ++s_seen.doubleClicks;
    if (header.idFrom == IDC_ITEMS && header.code == TVN_BEGINDRAGW) s_seen.dragBegan = true;
    if (header.idFrom != IDC_ROWS || header.code != LVN_KEYDOWN) return;
    const WORD key = reinterpret_cast<const NMLVKEYDOWN&>(header).wVKey;
    if (key == VK_DELETE) {
        ++s_seen.deletes;
        s_seen.ctrlWasDown = GetKeyState(VK_CONTROL) < 0;
    }
    if (key == 'Q') s_seen.asyncShiftWasDown = GetAsyncKeyState(VK_SHIFT) < 0;
}

INT_PTR CALLBACK PlainProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            Fill(dialog);
            return TRUE;
        case WM_NOTIFY:
            OnNotify(*reinterpret_cast<const NMHDR*>(lParam));
            return FALSE;
        case kSecondQuestion:
            MessageBoxW(dialog, L"Second question", L"Plain", MB_OK);
            return TRUE;
        case WM_COMMAND:
            if (LOWORD(wParam) == IDC_ASK) {
                s_seen.answer = MessageBoxW(dialog, L"First question", L"Plain", MB_YESNO);
                if (s_seen.answer == IDYES) PostMessageW(dialog, kSecondQuestion, 0, 0);
            }
            if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) EndDialog(dialog, LOWORD(wParam));
            return TRUE;
        default:
            return FALSE;
    }
}

// Runs the plain dialog with the script and gives how it ended.
INT_PTR RunPlain(DialogDriver& driver, const std::function<void(Dialog&)>& script) {
    s_seen = {};
    INT_PTR result = 0;
    driver.Run(
        [&] {
            result =
                DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_PLAIN), nullptr, PlainProcedure, 0);
        },
        script);
    return result;
}

TEST(DialogDriver, TypesAndTabsThroughTheDialog) {
    DialogDriver driver;
    const INT_PTR result = RunPlain(driver, [](Dialog& d) {
        EXPECT_EQ(d.FocusId(), IDC_NAME);
        d.Type(L"Größe 中 ");
        d.Type(std::wstring(300, L'x'));
        EXPECT_EQ(d.Text(IDC_NAME), L"Größe 中 " + std::wstring(300, L'x'));
        d.Key(VK_HOME, {VK_SHIFT});
        EXPECT_EQ(Dialog::EditSelection(d.Control(IDC_NAME)), std::make_pair(0, 308));
        d.Key(VK_DELETE);
        EXPECT_EQ(d.Text(IDC_NAME), L"");
        d.Key(VK_TAB);
        EXPECT_EQ(d.FocusId(), IDC_ROWS);
        d.Key(VK_TAB, {VK_SHIFT});
        EXPECT_EQ(d.FocusId(), IDC_NAME);
        d.Key(VK_RETURN);
    });
    EXPECT_EQ(result, IDOK);
}

TEST(DialogDriver, ReadsAndClicksCellsOfTheList) {
    DialogDriver driver;
    const INT_PTR result = RunPlain(driver, [](Dialog& d) {
        ListSteps list = d.List(IDC_ROWS);
        ASSERT_EQ(list.RowCount(), 30);
        EXPECT_EQ(list.Row(2), (std::vector<std::wstring>{L"row 2", L"cell 2"}));
        EXPECT_EQ(list.Text(1, 0), std::wstring(5000, L'z'));
        list.Click(0, 0);
        EXPECT_EQ(list.SelectedRow(), 0);
        list.Click(29, 0);
        EXPECT_EQ(list.SelectedRow(), 29);
        list.Click(29, 0);
        EXPECT_EQ(s_seen.doubleClicks, 0) << "two clicks of a script are no double click";
        list.DoubleClick(29, 0);
        EXPECT_EQ(s_seen.doubleClicks, 1);
        d.Key(VK_DELETE, {VK_CONTROL});
        EXPECT_EQ(s_seen.deletes, 1);
        EXPECT_TRUE(s_seen.ctrlWasDown);
        d.Click(IDCANCEL);
    });
    EXPECT_EQ(result, IDCANCEL);
}

TEST(DialogDriver, ModifiersAreSeenByAsyncState) {
    DialogDriver driver;
    RunPlain(driver, [](Dialog& d) {
        d.List(IDC_ROWS).Click(0, 0);
        for (int i = 0; i < 20; ++i) {
            s_seen.asyncShiftWasDown = false;
            d.OnGuiThread([] { EXPECT_GE(GetAsyncKeyState(VK_SHIFT), 0); });
            d.Key('Q', {VK_SHIFT});
            ASSERT_TRUE(s_seen.asyncShiftWasDown) << i;
        }
        d.Click(IDOK);
    });
}

TEST(DialogDriver, PutsTheCursorOnThePixel) {
    DialogDriver driver;
    RunPlain(driver, [](Dialog& d) {
        for (int i = 0; i < 200; i += 7) {
            d.Move({300 + i, 200 + i});
            POINT cursor{};
            GetCursorPos(&cursor);
            ASSERT_EQ(cursor.x, 300 + i);
            ASSERT_EQ(cursor.y, 200 + i);
        }
        d.Click(IDOK);
    });
}

TEST(DialogDriver, WalksTheTreeAndDragsFromIt) {
    DialogDriver driver;
    RunPlain(driver, [](Dialog& d) {
        TreeSteps tree = d.Tree(IDC_ITEMS);
        EXPECT_EQ(tree.Find({L"root", L"twig"}), nullptr);
        tree.Expand({L"root"});
        EXPECT_TRUE(tree.IsExpanded(tree.Item({L"root"})));
        EXPECT_EQ(tree.Children(tree.Item({L"root"})), std::vector<std::wstring>{L"branch"});
        d.Key(VK_DOWN);
        tree.Click(tree.Item({L"root", L"branch"}));
        EXPECT_EQ(tree.SelectedText(), L"branch");
        d.Key(VK_RIGHT);
        EXPECT_TRUE(tree.IsExpanded(tree.Item({L"root", L"branch"})));
        EXPECT_FALSE(s_seen.dragBegan);
        d.Drag(tree.Centre(tree.Item({L"root", L"branch", L"leaf"})), d.List(IDC_ROWS).Centre(1, 0));
        EXPECT_TRUE(s_seen.dragBegan);
        EXPECT_EQ(d.Capture(), nullptr);
        d.Click(IDOK);
    });
}

TEST(DialogDriver, PicksFromADropDownList) {
    DialogDriver driver;
    RunPlain(driver, [](Dialog& d) {
        d.Click(IDC_CHOICE);
        d.PickFromPopup(d.Control(IDC_CHOICE), 2);
        EXPECT_EQ(d.Text(IDC_CHOICE), L"third");
        d.Click(IDOK);
    });
}

TEST(DialogDriver, AnswersExpectedBoxesInTheirOrder) {
    DialogDriver driver;
    RunPlain(driver, [](Dialog& d) {
        d.Alt(L'A');
        EXPECT_EQ(d.AnswerBox(IDYES), L"First question");
        EXPECT_EQ(d.AnswerBox(IDOK), L"Second question");
        EXPECT_EQ(s_seen.answer, IDYES);
        d.Click(IDC_ASK);
        EXPECT_EQ(d.ExpectBox(), L"First question");
        d.Alt(L'n');
        d.WaitFor("the answer No", [] { return s_seen.answer == IDNO; });
        d.Click(IDOK);
    });
    EXPECT_EQ(driver.BoxTexts(), (std::vector<std::wstring>{L"First question", L"Second question", L"First question"}));
}

TEST(DialogDriver, TakesAPicture) {
    const ScopedTestDir folder;
    DialogDriver driver;
    RunPlain(driver, [&](Dialog& d) {
        d.Screenshot(folder.Path(L"plain.png"));
        d.Click(IDOK);
    });
    WIN32_FILE_ATTRIBUTE_DATA file{};
    ASSERT_TRUE(GetFileAttributesExW(folder.Path(L"plain.png").c_str(), GetFileExInfoStandard, &file));
    EXPECT_GT(file.nFileSizeLow, 1000u);
}

// Whatever a script does wrong fails the test and leaves no dialog behind.
TEST(DialogDriver, ClosesTheDialogAfterAFailedStep) {
    static DialogDriver* s_driver;
    static INT_PTR s_result;
    DialogDriver driver;
    s_driver = &driver;
    EXPECT_NONFATAL_FAILURE(s_result = RunPlain(*s_driver, [](Dialog& d) { d.Click(999); }), "no control 999");
    EXPECT_EQ(s_result, IDCANCEL);
    EXPECT_NONFATAL_FAILURE(s_result = RunPlain(*s_driver,
                                                [](Dialog& d) {
                                                    d.Click(IDC_ASK);
                                                    d.Click(IDC_NAME);
                                                }),
                            "an unexpected message box: First question");
    EXPECT_EQ(s_result, IDCANCEL);
    EXPECT_NONFATAL_FAILURE(
        s_result = RunPlain(*s_driver, [](Dialog&) { throw std::runtime_error("thrown by a script"); }),
        "thrown by a script");
    EXPECT_EQ(s_result, IDCANCEL);
    EXPECT_NONFATAL_FAILURE(s_result = RunPlain(*s_driver,
                                                [](Dialog& d) {
                                                    d.Click(IDOK);
                                                    d.WaitUntilClosed();
                                                    d.Click(IDC_NAME);
                                                }),
                            "the dialog is closed");
    EXPECT_EQ(s_result, IDOK);
    EXPECT_NONFATAL_FAILURE(s_driver->Run([] {}, [](Dialog& d) { d.Click(IDOK); }), "closed while waiting");
}

TEST(DialogDriver, PassesOnWhatTheModalCallThrows) {
    DialogDriver driver;
    EXPECT_THROW(driver.Run(
                     [] {
                         DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_PLAIN), nullptr,
                                         PlainProcedure, 0);
                         throw std::logic_error("after the dialog");
                     },
                     [](Dialog& d) { d.Click(IDOK); }),
                 std::logic_error);
}

TEST(DialogDriver, RunsManyDialogsInARow) {
    DialogDriver driver;
    for (int i = 0; i < 20; ++i) {
        const INT_PTR result = RunPlain(driver, [&](Dialog& d) {
            d.Type(L"abc");
            d.List(IDC_ROWS).Click(i, 0);
            d.Click(IDC_ASK);
            d.AnswerBox(IDNO);
            EXPECT_EQ(d.Text(IDC_NAME), L"abc");
            d.Key(VK_ESCAPE);
        });
        EXPECT_EQ(result, IDCANCEL);
    }
}

}  // namespace
