// The list of rules and the editors in its cells: when one opens, how each key and click ends it, what is told, and
// what may happen while it ends. In a dialog that does what they need of theirs and writes down what they tell.
#include <afxdialogex.h>

#include <sstream>

#include "controls/ComboListCtrl.h"
#include "entry/HiveText.h"
#include "entry/Hives.h"
#include "entry/InPlaceCombo.h"
#include "entry/InPlaceEdit.h"
#include "entry/PrivateMessages.h"
#include "resources/resource.h"
#include "support/DialogSteps.h"

#define UNKNOWN_HIVE L"The specified Hive is not valid."
#define TRAILING L"The specified key is invalid. Trailing backslashes are not allowed."

namespace {

constexpr int kType = 0, kKey = 1, kValue = 2;  // columns

bool IsPrivate(UINT message) {
    return message >= RRM_ENABLE_CELL_EDIT && message <= RRM_FILL_COMBO;
}

// Private messages to the list are told as "list:8102", ends of edits as "end ROW,COLUMN 'TEXT'".
class CWatchedList : public CComboListCtrl {
public:
    std::wostringstream m_told;
    std::function<void()> m_onEndEdit;  // called once

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (IsPrivate(message)) m_told << " list:" << std::hex << message;
        if (message == WM_NOTIFY && reinterpret_cast<const NMHDR*>(lParam)->code == LVN_ENDLABELEDITW) {
            const auto& [header, item] = *reinterpret_cast<const NMLVDISPINFOW*>(lParam);
            const std::wstring text = item.pszText;
            m_told << " end " << item.iItem << ',' << item.iSubItem << " '" << text << '\'';
            EXPECT_TRUE(header.hwndFrom == m_hWnd && header.idFrom == IDC_RULE_LIST && item.mask == LVIF_TEXT &&
                        item.cchTextMax == static_cast<int>(text.size()));
            if (m_onEndEdit) std::exchange(m_onEndEdit, {})();
        }
        return CComboListCtrl::WindowProc(message, wParam, lParam);
    }
};

// Private messages to the dialog are told as "8104", keys released that an editor reports as "key13".
class CCellsHost : public CDialogEx {
public:
    CCellsHost() : CDialogEx(IDD_REGISTRY_RULES) {}

    CWatchedList m_list;
    std::vector<std::vector<CString>> m_rows{
        {L"Branch", L"HKCU\\a", L""}, {L"Value", L"HKCU\\b", L"v"}, {L"Key", L"HKCU\\c", L""}};

protected:
    void DoDataExchange(CDataExchange* exchange) override {
        CDialogEx::DoDataExchange(exchange);
        DDX_Control(exchange, IDC_RULE_LIST, m_list);
    }
    BOOL OnInitDialog() override {
        CDialogEx::OnInitDialog();
        m_list.SetExtendedStyle(LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT);
        for (const auto& [column, width] : {std::pair{kType, 61}, {kKey, 250}, {kValue, 95}})
            m_list.InsertColumn(column, L"", LVCFMT_LEFT, width);
        m_list.SetComboColumns(kType, true);
        m_list.SetReadOnlyColumns(kType, true);
        for (const auto& row : m_rows) {
            const int index = m_list.InsertItem(m_list.GetItemCount(), row[kType]);
            for (const int column : {kKey, kValue}) m_list.SetItemText(index, column, row[static_cast<size_t>(column)]);
        }
        m_list.SetFocus();
        return FALSE;
    }
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_KEYUP) m_list.m_told << " key" << std::dec << wParam;
        if (!IsPrivate(message)) return CDialogEx::WindowProc(message, wParam, lParam);
        if (message != RRM_LIST_KEY_UP) m_list.m_told << ' ' << std::hex << message;
        if (message != RRM_FILL_COMBO) return 0;
        for (const wchar_t* kind : {L"Branch", L"Key", L"Value"}) reinterpret_cast<CStringList*>(lParam)->AddTail(kind);
        return 1;
    }
};

class Cells : public DialogSteps {
protected:
    void Run(const std::function<void(Dialog&)>& script) {
        driver.Run([this] { m_host.DoModal(); },
                   [&](Dialog& d) {
                       look = Seen(d);
                       script(d);
                       d.Click(IDCANCEL);
                   });
    }
    // "cell" has the open editor's text or kind, with what is selected in brackets.
    Look LookAt(Dialog& d) override {
        Look seen;
        const std::wstring told = std::exchange(m_list.m_told, std::wostringstream()).str();
        seen[L"told"] = told.substr(told.empty() ? 0 : 1);
        const auto rows = d.List(IDC_RULE_LIST).Rows();
        for (size_t i = 0; i < std::min<size_t>(rows.size(), 3); ++i)
            seen[L"row" + std::to_wstring(i)] = rows[i][0] + L"|" + rows[i][1] + L"|" + rows[i][2];
        seen[L"selected"] = std::to_wstring(d.List(IDC_RULE_LIST).SelectedRow());
        const HWND editor = Editor();
        std::wstring cell = editor != nullptr ? WindowText(editor) : L"";
        if (editor == Edit() && editor != nullptr) {
            const auto [start, end] = Dialog::EditSelection(editor);
            if (start != end) cell.insert(static_cast<size_t>(end), L"]").insert(static_cast<size_t>(start), L"[");
        }
        seen[L"cell"] = cell;
        EXPECT_EQ(CInPlaceEdit::IsActive(), Edit() != nullptr);
        const HWND focus = GetFocus();
        seen[L"focus"] = focus == nullptr         ? L"none"
                         : focus == editor        ? L"cell"
                         : focus == m_list.m_hWnd ? L"list"
                                                  : L"elsewhere";
        return seen;
    }
    // The editor that stands in the list, or null.
    HWND Edit() { return Dialog::FindBelow(m_list, L"Edit"); }
    HWND Combo() { return Dialog::FindBelow(m_list, L"ComboBox"); }
    HWND Editor() { return Edit() != nullptr ? Edit() : Combo(); }

    Act Click(int row, int column) {
        return [=](Dialog& d) { d.List(IDC_RULE_LIST).Click(row, column); };
    }
    Act OpenEdit(int row, int column, const wchar_t* text, const wchar_t* validChars = L"") {
        return OnGui([=, this] {
            m_list.SetValidEditCtrlCharacters(validChars);
            m_list.ShowInPlaceEdit(row, column, text);
        });
    }
    Act OpenCombo(int row, const wchar_t* text, int selection = -1) {
        return [=, this](Dialog& d) {
            d.OnGuiThread([&] {
                CStringList kinds(10);
                for (const wchar_t* kind : {L"Branch", L"Key", L"Value"}) kinds.AddTail(kind);
                CInPlaceCombo* const combo = m_list.ShowInPlaceCombo(row, kType, kinds, text, selection);
                if (selection == -1) combo->SelectString(-1, text);
            });
            d.Move(Dialog::Centre(d.Control(IDOK)));  // away from the list that drops down
        };
    }
    // Puts a text in place of the edit's, without a key.
    Act Put(const wchar_t* text) {
        return OnGui([=, this] {
            SendMessageW(Edit(), EM_SETSEL, 0, -1);
            SendMessageW(Edit(), EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(text));
        });
    }
    // Without the mouse: a button of Wine 8.0 that is clicked takes the capture after the box that its focus change
    // brought up, and then swallows the next click.
    static void Leave(Dialog& d) {
        PostMessageW(d.Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(d.Control(IDC_NEW_VALUE)), TRUE);
    }

    CCellsHost m_host;
    CWatchedList& m_list = m_host.m_list;
};

}  // namespace

TEST_F(Cells, KeysEndAnEditOrAreRefused) {
    const Act ctrlM = Press('M', VK_CONTROL);  // Return that comes as a character
    Run([&](Dialog& d) {
        // Escape on a refused key is asked about, and stays in force until a key is accepted.
        Go(d, {{OpenEdit(0, kKey, L"HKCU\\old"), L"cell=[HKCU\\old] focus=cell"},
               {Type(L"wrong\x1b"), L"box=" UNKNOWN_HIVE L" cell=[wrong] told=8107 8109", IDOK},
               {Type(L"HKCU\\new\r"),
                L"cell= focus=list row0=Branch|HKCU\\old| told=8108 end 0,1 'HKCU\\old' 8104 8106 8110"}});
        // Tab checks in every column and moves nothing; its box asks once, though the focus moves with it.
        for (const int column : {kValue, kKey}) {
            Go(d, {{OpenEdit(2, column, L"HKCU\\c"), L"cell=[HKCU\\c] focus=cell"},
                   {Type(L"\t"), L"told=8108 list:8102"},
                   {Press(VK_TAB, VK_SHIFT), L"told=8108 list:8105"},
                   {Put(L"HKCU\\a\\"), L"cell=HKCU\\a\\"},
                   {Type(L"\t"), L"box=" TRAILING L" cell=HKCU\\a[\\] told=8107", IDOK},
                   {Type(L"\t"), L"box=" TRAILING L" told=8108", IDCANCEL},
                   {Put(L""), L"cell="}});
            if (column == kValue)
                Go(d, {{Type(L"\r"), L"focus=list told=end 2,2 '' 8104 8106 8110"}});
            else  // an emptied key
                Go(d, {{Type(L"\r"), L"box=" UNKNOWN_HIVE L" told=8107 8109", IDOK},
                       {Type(L"\r"), L"box=" UNKNOWN_HIVE L" focus=list told=8108", IDCANCEL}});
        }
        Go(d, {{OpenEdit(2, kKey, L"HKCU\\c"), L"cell=[HKCU\\c] focus=cell"},
               {ctrlM, L"cell= focus=list told=8108 end 2,1 'HKCU\\c' 8104 8106 8110 key13"},
               // Characters outside the allowed ones; what is pasted is not looked at.
               {OpenEdit(2, kValue, L"", L"abc"), L"focus=cell"},
               {Type(L"a"), L"cell=a"},
               {Type(L"x"), L"box=%s is not allowed is not allowed", IDOK},
               {Type(L"cb\b"), L"cell=ac"},
               {Put(L"xyz"), L"cell=xyz"},
               {OnGui([&] { SendMessageW(Edit(), EM_SETSEL, 0, -1); }), L"cell=[xyz]"},
               {Press('C', VK_CONTROL), L""},
               {Press('V', VK_CONTROL), L"cell=xyz"},
               {Press('V', VK_CONTROL), L"cell=xyzxyz"},
               // The focus goes to no window of ours.
               {OnGui([] { SetFocus(nullptr); }), L"focus=none"},
               {[&](Dialog& on) { on.Click(Edit()); }, L"focus=cell"}});
    });
}

TEST_F(Cells, AnEditsBoxMayMoveTheFocusOrOutliveIt) {
    Run([&](Dialog& d) {
        for (const bool byTab : {true, false}) {
            const auto check = [&](const std::function<void()>& meanwhile) -> Act {
                return [&, meanwhile](Dialog& on) {
                    byTab ? on.Type(L"\t") : Leave(on);
                    on.ExpectBox();
                    on.OnGuiThread(meanwhile);
                };
            };
            // The focus comes and goes while the box is up: that asks nothing again.
            const Act moveFocus = check([&] {
                SetFocus(Edit());
                SetFocus(m_list);
            });
            Go(d, {{OpenEdit(0, kKey, L"HKCU\\a\\"), L"cell=[HKCU\\a\\] focus=cell"},
                   {moveFocus, std::wstring(L"box=" TRAILING L" cell=HKCU\\a[\\] told=8107") + (byTab ? L"" : L" 8109"),
                    IDOK},
                   {moveFocus,
                    byTab ? L"box=" TRAILING L" told=8108" : L"box=" TRAILING L" cell= focus=elsewhere told=8108 8110",
                    IDCANCEL}});
            if (byTab) Go(d, {{Type(L"\x1b"), L"box=" TRAILING L" cell= focus=list told=8108 8110", IDCANCEL}});
            // The editors are deleted while the box is up, and wanted again before it is answered.
            for (const wchar_t* text : {L"not a key", L""}) {
                if (byTab && *text == L'\0') continue;  // Tab finds nothing wrong with an empty text
                for (const int answer : {IDOK, IDCANCEL}) {
                    CInPlaceEdit* next = nullptr;
                    OpenEdit(0, kKey, text)(d);
                    check([&] {
                        CInPlaceEdit::DeleteInstance();
                        EXPECT_EQ(Editor(), nullptr);
                        next = CInPlaceEdit::GetInstance();
                    })(d);
                    EXPECT_EQ(d.AnswerBox(answer), UNKNOWN_HIVE);
                    EXPECT_EQ(CInPlaceEdit::GetInstance(), next);
                    EXPECT_EQ(Seen(d)[L"told"], L"");
                }
            }
        }
    });
}

TEST_F(Cells, AnEndThatIsUnderWayIsNotRepeated) {
    Run([&](Dialog& d) {
        Go(d, {{OpenEdit(1, kValue, L"old"), L"cell=[old] focus=cell"}});
        // As the dialog may: the focus comes and goes, another cell is asked for, a box comes up.
        m_list.m_onEndEdit = [&, edit = Edit()] {
            EXPECT_EQ(CInPlaceEdit::IsActive(), 0);
            SetFocus(edit);
            SetFocus(m_list);
            m_list.ShowInPlaceEdit(0, kValue, L"other");
            MessageBoxW(m_host, L"while the edit ends", L"", MB_OK);
        };
        Go(d, {{Type(L"new\r"),
                L"box=while the edit ends cell= focus=list row1=Value|HKCU\\b|new told=end 1,2 'new' 8104 8106 8110",
                IDOK}});
        // The handler deletes the editors, as a list that goes away does.
        m_list.m_onEndEdit = [] { CInPlaceCombo::DeleteInstance(); };
        Go(d, {{OpenCombo(2, L"Key"), L"cell=Key focus=cell"},
               {Type(L"\r"), L"cell= focus=list told=end 2,0 'Key' 8104 8106"}});
    });
}

TEST_F(Cells, KeysAndClicksEndADropDownWithWhatTheyLeave) {
    constexpr WORD elsewhere = 0;  // a click
    const struct {
        const wchar_t* text;
        std::vector<WORD> keys;
        std::wstring left;
    } cases[] = {
        {L"Branch", {VK_DOWN, VK_ESCAPE}, L"Branch"},  // the text from the start
        {L"Branch", {VK_DOWN, VK_RETURN}, L"Key"},     // the flag of the last edit is gone
        {L"Branch", {VK_F4, VK_DOWN, VK_DOWN, VK_ESCAPE}, L"Branch"},
        {L"Branch", {VK_F4, VK_DOWN, VK_RETURN}, L"Key"},
        {L"Branch", {VK_DOWN, VK_TAB}, L"Key"},
        {L"Branch", {VK_DOWN, elsewhere}, L"Key"},
        // Closing the list ends the edit with the item from before.
        {L"Key", {VK_F4, VK_DOWN, elsewhere}, L"Key"},
        {L"Branch", {VK_F4, VK_TAB, elsewhere}, L"Branch"},
    };
    Run([&](Dialog& d) {
        const auto ends = [&](int row, const std::wstring& left) {
            d.WaitFor("the drop-down's end", [&] { return Editor() == nullptr; });
            EXPECT_EQ(Seen(d)[L"told"], L"end " + std::to_wstring(row) + L",0 '" + left + L"' 8104 8106");
        };
        for (const auto& [text, keys, left] : cases) {
            OpenCombo(0, text)(d);
            Changes(d);
            EXPECT_EQ(look[L"focus"], L"cell");
            EXPECT_EQ(SendMessageW(Combo(), CB_GETCOUNT, 0, 0), 3) << "none is left of the last edit";
            EXPECT_EQ(SendMessageW(Combo(), WM_GETFONT, 0, 0), m_list.SendMessage(WM_GETFONT));
            for (const WORD key : keys) key == elsewhere ? d.Click(IDC_NEW_VALUE) : d.Key(key);
            ends(0, left);
            EXPECT_TRUE(keys.back() == elsewhere || keys.back() == VK_TAB || d.FocusId() == IDC_RULE_LIST);
        }
        for (const int selection : {3, -2}) {
            OpenCombo(1, L"Key", selection)(d);
            Changes(d);
            EXPECT_EQ(SendMessageW(Combo(), CB_GETCURSEL, 0, 0), CB_ERR) << "no such entry selects nothing";
            d.Key(VK_RETURN);
            ends(1, L"");
        }
        OpenCombo(1, L"", 2)(d);
        Changes(d);
        d.Type(L"B\x1b");
        ends(1, L"Value");
    });
}

TEST_F(Cells, AnEditorGoesDownWithItsListAndLeavesTheNextOneFree) {
    const auto withBox = [&](Dialog& d) {
        OpenEdit(0, kKey, L"not a key")(d);
        Leave(d);
        d.ExpectBox();
    };
    const auto dropped = [&](Dialog& d) {
        OpenCombo(0, L"Branch")(d);
        d.Key(VK_F4);
    };
    for (const Act& open : {OpenEdit(0, kValue, L"x"), Act(withBox), OpenCombo(0, L"Branch"), Act(dropped)}) {
        Run([&](Dialog& d) {
            const auto boxes = driver.BoxTexts().size();
            open(d);
            const HWND editor = Editor();
            if (Combo() != nullptr) {
                d.OnGuiThread([] { CInPlaceCombo::DeleteInstance(); });
                EXPECT_FALSE(IsWindow(editor));
                EXPECT_EQ(Seen(d)[L"told"], L"") << "without a word";
                open(d);
            }
            d.OnGuiThread([&] { m_list.DestroyWindow(); });
            EXPECT_FALSE(IsWindow(editor));
            EXPECT_EQ(CInPlaceEdit::IsActive(), 0);
            if (boxes != driver.BoxTexts().size()) d.AnswerBox(IDOK);
        });
    }
    Run([&](Dialog& d) {
        d.OnGuiThread([&] {
            CWnd gone;  // no window: no parent for a child
            EXPECT_FALSE(
                CInPlaceEdit::GetInstance()->ShowEditCtrl(0, CRect(0, 0, 9, 9), &gone, 0, 0, kValue, L"", L"x"));
        });
        Go(d, {{OpenEdit(2, kValue, L"next"), L"cell=[next] focus=cell"}});
    });
}

TEST_F(Cells, ClicksSelectThenEditAndTheirEditsEndWithEachOther) {
    Run([&](Dialog& d) {
        ListSteps list = d.List(IDC_RULE_LIST);
        Go(d, {{Click(1, kValue), L"selected=1 told=8100"},
               {Click(1, kValue), L"cell=[v] focus=cell told=8100"},
               {Type(L"w x\r"), L"cell= focus=list row1=Value|HKCU\\b|w x told=end 1,2 'w x' 8104 8106 8110"},
               // A row selected by keyboard was not selected at the last click.
               {Press(VK_DOWN), L"selected=2"},
               {Click(2, kKey), L"told=8100"},
               {Click(2, kKey), L"cell=[HKCU\\c] focus=cell told=8100"},
               // A click on a neighbour ends the edit and the next one edits there; the old window is on its way out.
               {Put(L"HKLM\\New"), L"cell=HKLM\\New"},
               {Click(2, kValue),
                L"cell= focus=list row2=Key|HKLM\\New| told=8108 end 2,1 'HKLM\\New' 8104 8106 8110 8100"},
               {Click(2, kValue), L"focus=cell told=8100"},
               {Click(2, kType), L"cell=Key told=end 2,2 '' 8104 8106 8110 83fc 8100"},
               {Press(VK_ESCAPE), L"cell= focus=list told=end 2,0 'Key' 8104 8106"}});
        // With Shift or Ctrl a click neither edits nor tells, and the row of the last plain click stays the same.
        for (const WORD modifier : {WORD{VK_SHIFT}, WORD{VK_CONTROL}}) {
            d.KeyDown(modifier);
            for (const int row : {2, 0}) Click(row, kKey)(d);
            d.KeyUp(modifier);
            Changes(d);
            EXPECT_TRUE(look[L"told"].empty() && Editor() == nullptr) << modifier;
        }
        Go(d, {{Click(2, kKey), L"cell=[HKLM\\New] focus=cell selected=2 told=8100"},
               {Press(VK_ESCAPE), L"cell= focus=list told=8108 end 2,1 'HKLM\\New' 8104 8106 8110"},
               // A double click edits at once, also where the focus is on another row than the one that is selected; so
               // does a click.
               {[&](Dialog&) { list.DoubleClick(1, kKey); }, L"cell=[HKCU\\b] focus=cell selected=1 told=8100 8100"},
               {Press(VK_ESCAPE), L"cell= focus=list told=8108 end 1,1 'HKCU\\b' 8104 8106 8110"},
               {OnGui([&] { m_list.SetItemState(0, LVIS_SELECTED, LVIS_SELECTED); }), L"selected=0"},
               {[&](Dialog&) { list.DoubleClick(0, kKey); }, L"cell=[HKCU\\a] focus=cell told=8100 8100"},
               {Press(VK_ESCAPE), L"cell= focus=list told=8108 end 0,1 'HKCU\\a' 8104 8106 8110"},
               {OnGui([&] { m_list.SetItemState(1, LVIS_FOCUSED, LVIS_FOCUSED); }), L""},
               {Click(0, kKey), L"cell=[HKCU\\a] focus=cell told=8100"},
               {Press(VK_ESCAPE), L"cell= focus=list told=8108 end 0,1 'HKCU\\a' 8104 8106 8110"},
               // Beside the rows: nothing, and the selection stays.
               {[&](Dialog& on) { on.DoubleClick(list.BehindRows()); }, L"told=8100"}});
    });
}

TEST_F(Cells, AnEditorEndsWithScrollingAndWithItsRow) {
    for (int row = 3; row < 60; ++row) m_host.m_rows.push_back({L"Value", L"HKCU\\row", L"old"});
    Run([&](Dialog& d) {
        ListSteps list = d.List(IDC_RULE_LIST);
        OpenEdit(3, kValue, L"new")(d);
        RECT area{};
        GetWindowRect(m_list, &area);
        d.Click(POINT{area.right - 8, area.bottom - 8});  // the arrow at the bottom of the scroll bar
        EXPECT_EQ(Editor(), nullptr);
        EXPECT_EQ(list.Text(3, kValue), L"new");
        EXPECT_EQ(ListView_GetTopIndex(m_list.m_hWnd), 1);
        OpenEdit(3, kValue, L"newer")(d);
        d.OnGuiThread([&] { m_list.SendMessage(WM_HSCROLL, SB_LINERIGHT); });
        d.Settle();
        EXPECT_EQ(Editor(), nullptr);
        EXPECT_EQ(list.Text(3, kValue), L"newer");

        const auto before = list.Rows();
        OpenEdit(59, kValue, L"late")(d);
        d.OnGuiThread([&] { m_list.DeleteItem(59); });
        d.Type(L"\r");
        EXPECT_EQ(list.Rows(), decltype(before)(before.begin(), before.end() - 1));
        OpenCombo(1, L"Key")(d);
        d.OnGuiThread([&] { ListView_DeleteAllItems(m_list.m_hWnd); });
        d.Type(L"\r");
        EXPECT_EQ(Editor(), nullptr);
        EXPECT_EQ(list.RowCount(), 0);
    });
}

TEST_F(Cells, AnEditorNeedsAFocusedRowACellThatExistsAndLeaveAndIsScrolledTo) {
    Run([&](Dialog& d) {
        Click(1, kKey)(d);
        d.OnGuiThread([&] {
            const auto opens = [&](int row, int column) {
                m_list.EditCell(row, column);
                return Editor() != nullptr;
            };
            m_list.SetItemState(0, LVIS_SELECTED, LVIS_SELECTED);
            for (const auto& [row, column] : {std::pair{0, 1}, {-1, 1}, {3, 1}, {1, 3}, {1, -1}, {1, 1000000}})
                EXPECT_FALSE(opens(row, column)) << row << ", " << column;
            m_list.EnableCellEdit(false);
            EXPECT_FALSE(opens(1, 1));
            m_list.EnableCellEdit(true);
            m_list.ModifyStyle(LVS_EDITLABELS, 0);
            EXPECT_FALSE(opens(1, 1));
            m_list.ModifyStyle(0, LVS_EDITLABELS);
            ListView_SetColumnWidth(m_list.m_hWnd, kType, 9);
            EXPECT_FALSE(opens(1, kType)) << "too narrow for a drop-down";
            EXPECT_EQ(m_list.ShowInPlaceCombo(7, kType, CStringList(), L"", -1), nullptr);
            for (const int column : {-1, 3, 1000000}) {
                EXPECT_EQ(m_list.ShowInPlaceCombo(1, column, CStringList(), L"", -1), nullptr) << column;
                CRect rect(1, 2, 3, 4);
                m_list.ScrollToView(column, rect);
                EXPECT_FALSE(m_list.CalculateCellRect(column, 1, rect));
                EXPECT_EQ(rect, CRect(1, 2, 3, 4)) << column;
            }
            // The system's own label edit keeps off read-only columns; a cancelled one comes without a text.
            EXPECT_EQ(ListView_EditLabel(m_list, 0), nullptr);
            m_list.SetReadOnlyColumns(kType, false);
            const HWND label = ListView_EditLabel(m_list, 0);
            SetWindowTextW(label, L"other");
            SendMessageW(label, WM_KEYDOWN, VK_ESCAPE, 0);
            m_list.SetReadOnlyColumns(kType, true);
        });
        d.WaitFor("the label edit to end", [&] { return Editor() == nullptr; });
        EXPECT_EQ(d.List(IDC_RULE_LIST).Text(0, kType), L"Branch");
        d.OnGuiThread([&] {
            const auto place = [&](HWND editor) {
                CRect rect;
                GetWindowRect(editor, &rect);
                m_list.ScreenToClient(&rect);
                return rect;
            };
            CRect row;
            m_list.SetItemState(1, LVIS_FOCUSED, LVIS_FOCUSED);
            ListView_SetColumnWidth(m_list.m_hWnd, kType, 10);
            ListView_SetColumnWidth(m_list.m_hWnd, kKey, 1000);
            ListView_SetColumnWidth(m_list.m_hWnd, kValue, 2000);
            m_list.EditCell(1, kValue);
            m_list.GetItemRect(1, &row, LVIR_BOUNDS);
            EXPECT_EQ(row.left, -1010);
            EXPECT_EQ(place(Edit()), CRect(0, row.top, 2000, row.bottom - 1));
            m_list.SetFocus();
            m_list.EditCell(1, kType);
            m_list.GetItemRect(1, &row, LVIR_BOUNDS);
            EXPECT_EQ(row.left, 0);
            EXPECT_EQ(place(Combo()).TopLeft(), row.TopLeft());
            CRect dropped;
            SendMessageW(Combo(), CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&dropped));
            EXPECT_GT(dropped.Height(), 10 * row.Height()) << "room for more entries than there are";
        });
    });
}

TEST_F(Cells, AnEditPaintsWithTheColoursThatEachCallSets) {
    constexpr COLORREF black = 0, grey = 0x808080, white = 0xFFFFFF, red = 0x0201C8, blue = 0xFA0403;
    constexpr wchar_t watermark[] = L"Click here to create a new rule";
    const struct {
        void (*change)(CInPlaceEdit&);
        const wchar_t* text;
        COLORREF letters, background;
    } steps[] = {
        {[](CInPlaceEdit&) {}, L"text", black, white},
        {[](CInPlaceEdit& edit) { edit.SetTextColor(red); }, L"text", red, white},
        {[](CInPlaceEdit& edit) { edit.SetBackgroundColor(blue); }, L"text", red, blue},
        {[](CInPlaceEdit& edit) { edit.SetReadOnly(true); }, L"text", red, blue},
        {[](CInPlaceEdit& edit) { edit.SetReadOnly(false); }, L"text", red, white},
        {[](CInPlaceEdit& edit) { edit.SetBackgroundColor(blue), edit.ShowWatermark(); }, watermark, grey, white},
        // A key clears nothing, and shows it as if it were typed.
        {[](CInPlaceEdit& edit) { edit.SendMessage(WM_KEYDOWN, VK_RIGHT); }, watermark, black, white},
        {[](CInPlaceEdit& edit) { edit.SetTextColor(red), edit.ClearWatermark(); }, L"", black, white},
    };
    Run([&](Dialog& d) {
        OpenEdit(0, kValue, L"text")(d);
        d.OnGuiThread([&] {
            CDC dc;
            dc.CreateCompatibleDC(nullptr);
            for (const auto& step : steps) {
                step.change(*CInPlaceEdit::GetInstance());
                const LRESULT brush = m_list.SendMessage(WM_CTLCOLOREDIT, reinterpret_cast<WPARAM>(dc.m_hDC),
                                                         reinterpret_cast<LPARAM>(Edit()));
                LOGBRUSH solid{};
                GetObjectW(reinterpret_cast<HGDIOBJ>(brush), sizeof solid, &solid);
                EXPECT_EQ(WindowText(Edit()), step.text) << &step - steps;
                EXPECT_EQ(GetTextColor(dc.m_hDC), step.letters) << &step - steps;
                EXPECT_TRUE(GetBkColor(dc.m_hDC) == step.background && solid.lbColor == step.background)
                    << &step - steps;
                EXPECT_EQ((CInPlaceEdit::GetInstance()->GetStyle() & ES_READONLY) != 0, &step - steps == 3);
            }
        });
    });
}

TEST(HiveText, TheTableIsFilledFromTheStringTable) {
    for (std::size_t row = 0; row < Hives().size(); ++row) {
        EXPECT_EQ(Hives()[row].rootKey, ShippedHives()[row].rootKey);
        EXPECT_EQ(Hives()[row].fullName + Hives()[row].abbreviation,
                  ShippedHives()[row].fullName + ShippedHives()[row].abbreviation);
    }
}
