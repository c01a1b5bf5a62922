// The editor as an administrator works it, from the host's rules to the host's rules: rows made, edited in place and
// deleted, and the ways of ending.
#include <gtest/gtest.h>
#include <oleacc.h>

#include "dialog/RulesDialog.h"

namespace {

class Administrator : public RulesDialog {
protected:
    // From the list: Wine 8's tree view keeps the keys that are pressed with Alt to itself.
    static void FocusList(Dialog& d) {
        d.OnGuiThread([&] { SetFocus(d.Control(IDC_RULE_LIST)); });
    }
    static void PressAltF4(Dialog& d) {
        FocusList(d);
        d.Key(VK_F4, {VK_MENU});
    }
    static void ClickCloseBox(Dialog& d) {
        const RECT frame = Frame(d.Window());
        d.Click(POINT{frame.right - 13, frame.top + 12});
    }
    // The name that a screen reader says of what has the focus.
    static Act Hear(const std::wstring& expected) {
        return [=](Dialog& d) {
            void* object = nullptr;
            BSTR name = nullptr;
            VARIANT self{};
            self.vt = VT_I4;
            CoInitialize(nullptr);
            AccessibleObjectFromWindow(d.Focus(), OBJID_CLIENT, __uuidof(IAccessible), &object);
            if (auto* const heard = static_cast<IAccessible*>(object)) {
                heard->get_accName(self, &name);
                heard->Release();
            }
            EXPECT_EQ(std::wstring(name, SysStringLen(name)), expected);
            SysFreeString(name);
            CoUninitialize();
        };
    }
};

}  // namespace

TEST_F(Administrator, FindsTheRowsOfTheHostAndGivesBackWhatTheyBecome) {
    control.AddKeyRule(L"HKEY_CURRENT_USER\\Software\\A", 7, 0);
    control.AddKeyRule(L"HKLM\\Software\\B", 0, 5);
    control.AddKeyRule(L"hkey_current_user\\SOFTWARE\\a", 1, 32767);  // the first one again
    control.AddKeyRule(L"HKCU\\Software\\C", 1, -1);
    control.AddKeyRule(L"HKCU\\Software\\C", 0, 2);  // another kind is another rule
    control.AddValueRule(L"HKEY_USERS\\.DEFAULT\\E", L"", 1);
    control.AddValueRule(L"HKCU\\Environment", L"TEMP", 1);
    control.AddValueRule(L"HKEY_USERS\\.default\\e", L"(DEFAULT)", 32767);
    const Texts given = HostRules();
    EXPECT_EQ(Work({{Press(VK_ESCAPE)}}), 0);
    EXPECT_EQ(HostRules(), given) << "as it was given";
    for (const int button : {IDOK, IDCANCEL}) {
        EXPECT_EQ(Show([&](Dialog& d) {
                      EXPECT_EQ(look, (Look{{L"rows",
                                             L"Branch|HKCU\\Software\\C|; Value|HKCU\\Environment|TEMP; "
                                             L"Key|HKLM\\Software\\B|; Key|HKCU\\Software\\C|; "
                                             L"Branch|HKCU\\SOFTWARE\\a|; Value|HKU\\.default\\e|(DEFAULT);"},
                                            {L"gap", look[L"gap"]},
                                            {L"selected", L""},
                                            {L"focus", L"tree"},
                                            {L"strip", L"Branch|(...)|"},
                                            {L"delete", L"dead"},
                                            {L"cell", L""},
                                            {L"mouse", L""},
                                            {L"dirty", L"no"},
                                            {L"picture", L"fresh"}}));
                      d.Click(button);
                  }),
                  0)
            << "nothing was changed";
    }
    EXPECT_EQ(HostRules(),
              (Texts{L"Branch|HKEY_CURRENT_USER\\Software\\C|0", L"Key|HKEY_LOCAL_MACHINE\\Software\\B|2",
                     L"Key|HKEY_CURRENT_USER\\Software\\C|3", L"Branch|HKEY_CURRENT_USER\\SOFTWARE\\a|4",
                     L"Value|HKEY_CURRENT_USER\\Environment|TEMP|1", L"Value|HKEY_USERS\\.default\\e||5"}));
    {
        const CRegistryRulesCtrl second;
    }
    EXPECT_EQ(HostRules(), Texts{}) << "the end of one control takes the rules of all";
    EXPECT_EQ(driver.BoxTexts(), Texts{});
}

TEST_F(Administrator, EntersTextsOfFortyThousandCharacters) {
    const std::wstring key = L"HKCU\\" + std::wstring(40000, L'k');
    const std::wstring name(40000, L'v');
    control.AddKeyRule(key.c_str(), 0, 0);
    const std::wstring stripKey = L"HKLM\\" + std::wstring(39995, L's');
    EXPECT_EQ(Show([&](Dialog& d) {
                  // In the place of an edit's text, as pasting does.
                  const auto put = [](HWND edit, const std::wstring& text) {
                      SendMessageW(edit, EM_SETSEL, 0, -1);
                      SendMessageW(edit, EM_REPLACESEL, 0, reinterpret_cast<LPARAM>(text.c_str()));
                  };
                  d.Click(IDC_NEW_KEY);
                  put(d.Control(IDC_NEW_KEY), stripKey);
                  put(d.Control(IDC_NEW_VALUE), name);
                  d.Type(L"\r");
                  Open(1, 1)(d);
                  put(CellEditor(d), key + L"x");
                  d.Type(L"\r");
                  EXPECT_EQ(RowsOf(d), L"Value|" + stripKey + L"|" + name + L"; Key|" + key + L"x|;");
                  d.Click(IDOK);
              }),
              1);
    EXPECT_EQ(HostRules(), (Texts{L"Key|HKEY_CURRENT_USER" + key.substr(4) + L"x|1",
                                  L"Value|HKEY_LOCAL_MACHINE" + stripKey.substr(4) + L"|" + name + L"|0"}));
}

TEST_F(Administrator, ChangesCellsByMouseAndKeys) {
    control.AddValueRule(L"HKCU\\a", L"old", 0);
    EXPECT_EQ(Work({
                  // Key has no name, and back to Value asks for a new one.
                  {Pick(0, 1), L"delete=live, tab dirty=yes focus=list rows=Key|HKCU\\a|; selected=0"},
                  {Pick(0, 2), L"cell=(Default) focus=cell rows=Value|HKCU\\a|(Default);"},
                  {Type(L"name\r"), L"cell= focus=list rows=Value|HKCU\\a|name;"},
                  // The value cell decides the kind; blanks count as nothing and stay.
                  {Open(0, 2), L"cell=name focus=cell"},
                  {Hear(L"Value")},
                  {Type(L"  \r"), L"cell= focus=list rows=Branch|HKCU\\a|  ;"},
                  {Open(0, 2), L"cell=   focus=cell"},
                  {Type(L" n \r"), L"cell= focus=list rows=Value|HKCU\\a| n ;"},
                  {Open(0, 2), L"cell= n  focus=cell"},
                  {Type(L"\b\r"), L"cell= focus=list rows=Branch|HKCU\\a|;"},
                  // By keys; what is left of the Return must not end the edit that it opens.
                  {Open(0, 0), L"cell=Branch focus=cell"},
                  {Hear(L"Type")},
                  {Press(VK_END), L"cell=Value"},
                  {Type(L"\r"), L"cell=(Default) rows=Value|HKCU\\a|(Default);"},
                  {Press(VK_ESCAPE), L"cell= focus=list"},
                  {Pick(0, 1), L"rows=Key|HKCU\\a|;"},
                  // A Key row whose empty value is looked into.
                  {Open(0, 2), L"focus=cell"},
                  {Type(L"\r"), L"focus=list rows=Branch|HKCU\\a|;"},
                  // The key is taken as typed, and Escape brings the old one back.
                  {Open(0, 1), L"cell=HKCU\\a focus=cell"},
                  {Type(L"hkcu\\b\x1b"), L"cell= focus=list"},
                  {Open(0, 1), L"cell=HKCU\\a focus=cell"},
                  {Type(L"hkcu\\b"), L"cell=hkcu\\b"},
                  {Click(IDC_REGISTRY_TREE), L"cell= focus=tree rows=Branch|hkcu\\b|;"},
                  {Click(IDOK)},
              }),
              1);
    EXPECT_EQ(HostRules(), Texts{L"Branch|hkcu\\b|0"}) << "a small abbreviation is nobody's to expand";
}

TEST_F(Administrator, MayMakeTwoRowsEqualOfWhichTheNextRunShowsOne) {
    AddBranches({L"HKCU\\a", L"HKCU\\b"});
    EXPECT_EQ(Work({{Open(1, 1), L"cell=HKCU\\b delete=live, tab focus=cell selected=1"},
                    {Type(L"HKCU\\a\r"), L"cell= dirty=yes focus=list rows=Branch|HKCU\\a|; Branch|HKCU\\a|;"},
                    {Click(IDOK)}}),
              1);
    EXPECT_EQ(HostRules(), (Texts{L"Branch|HKEY_CURRENT_USER\\a|0", L"Branch|HKEY_CURRENT_USER\\a|1"}));
    // A look into a cell is a change, also when Escape ends it.
    EXPECT_EQ(Work({{Open(0, 2), L"delete=live, tab focus=cell selected=0"},
                    {Type(L"x\x1b"), L"dirty=yes focus=list"},
                    {Press(VK_ESCAPE), L"box=" CONFIRM_CANCEL, IDYES}}),
              0);
}

TEST_F(Administrator, IsHeldInACellByARefusedKeyUntilItIsCorrectedOrGivenUp) {
    AddBranches({L"HKCU\\a", L"HKCU\\b"});
    const Step open{Open(0, 1), L"cell=HKCU\\a delete=live, tab focus=cell selected=0"};
    const Act altF4 = Press(VK_F4, VK_MENU);
    EXPECT_EQ(Work({open,
                    // An emptied key is an unknown hive, not a bare one, and holds a close as well.
                    {Type(L"\b"), L"cell="},
                    {altF4, L"box=" UNKNOWN_HIVE, IDOK},
                    {Type(L"HKLM"), L"cell=HKLM"},
                    {Click(1, 1), L"box=" BARE_HIVE L" selected=1", IDOK},
                    {altF4, L"box=" BARE_HIVE, IDOK},
                    // A key that is given up lets the close through, and the cell keeps its old text.
                    {altF4, L"box=" BARE_HIVE, IDCANCEL}}),
              0);
    EXPECT_EQ(HostRules(), (Texts{L"Branch|HKCU\\a|32767", L"Branch|HKCU\\b|32767"}));
    // A cell that is held at OK, which its letter presses whatever the cell says, does not hold the next run.
    EXPECT_EQ(Work({open,
                    {Type(L"x"), L"cell=x"},
                    {Click(IDC_REGISTRY_TREE), L"box=" UNKNOWN_HIVE, IDOK},
                    {Press(L'O', VK_MENU), L"box=" UNKNOWN_HIVE, IDOK}}),
              0);
    EXPECT_EQ(Work({{ClickCloseBox}}), 0);
}

TEST_F(Administrator, DeletesRowsAndTheButtonFollowsTheSelection) {
    AddBranches({}, 0, 4);
    Work({{FocusList, L"focus=list"},
          {[](Dialog& d) { d.KeyDown(VK_DOWN); }, L"delete=live selected=0"},  // the selection alone leaves the tab off
          {[](Dialog& d) { d.KeyUp(VK_DOWN); }, L"delete=live, tab"},
          {Click(1, 1), L"selected=1"},
          {Press(VK_DELETE), L"dirty=yes rows=Branch|HKCU\\0|; Branch|HKCU\\2|; Branch|HKCU\\3|;"},
          {Click(IDC_DELETE_RULE), L"focus=delete rows=Branch|HKCU\\0|; Branch|HKCU\\3|;"},
          {Press(L'D', VK_MENU), L"rows=Branch|HKCU\\0|; selected=0"},
          // A dead button must not keep the focus.
          {Press(VK_SPACE), L"delete=dead focus=list rows= selected="},
          {Press(VK_DELETE), L""},
          {Press(VK_ESCAPE), L"box=" CONFIRM_CANCEL, IDYES}});
    // With nothing selected the last row becomes selected, is brought into view, and it is a change.
    AddBranches({}, 4, 40);
    EXPECT_EQ(Show([&](Dialog& d) {
                  const HWND list = d.Control(IDC_RULE_LIST);
                  Go(d, {{FocusList, L"focus=list"}, {Press(VK_DELETE), L"delete=live, tab dirty=yes selected=39"}});
                  EXPECT_TRUE(ListView_IsItemVisible(list, 39));
                  // A key in the list and a click of the right button look at the selection and set the tab stop by it.
                  const auto select = [&](UINT state) {
                      return OnGui([=] { ListView_SetItemState(list, 39, state, LVIS_SELECTED); });
                  };
                  for (const UINT code : {NM_RCLICK, LVN_KEYDOWN}) {
                      const Act tell = OnGui([&] {
                          NMLVKEYDOWN notification{{list, IDC_RULE_LIST, code}, VK_F8, 0};
                          SendMessageW(d.Window(), WM_NOTIFY, IDC_RULE_LIST, reinterpret_cast<LPARAM>(&notification));
                      });
                      Go(d, {{select(0), L"delete=dead, tab selected="},
                             {tell, L"delete=dead"},
                             {select(LVIS_SELECTED), L"delete=live selected=39"},
                             {tell, L"delete=live, tab"}});
                  }
                  d.Click(IDOK);
              }),
              1);
}

TEST_F(Administrator, IsAskedAboutAChangedListAloneAndNoKeepsTheRows) {
    AddBranches({L"HKCU\\a", L"HKCU\\b"});
    const Act ways[] = {Click(IDCANCEL), Press(VK_ESCAPE), Press(L'C', VK_MENU), PressAltF4, ClickCloseBox};
    const auto deleteFirst = [](Dialog& d) {
        FocusList(d);
        d.Key(VK_HOME);
        d.Key(VK_DELETE);
    };
    const Texts given = HostRules();
    for (const Act& way : ways) {
        EXPECT_EQ(Work({{way}}), 0) << "without a change, no question";
        EXPECT_EQ(Show([&](Dialog& d) {
                      deleteFirst(d);
                      way(d);
                      EXPECT_EQ(d.AnswerBox(IDNO), CONFIRM_CANCEL);
                      EXPECT_EQ(RowsOf(d), L"Branch|HKCU\\b|;");
                      way(d);
                      d.AnswerBox(IDYES);
                  }),
                  0);
        EXPECT_EQ(HostRules(), given);
    }
    EXPECT_EQ(Show([&](Dialog& d) {
                  deleteFirst(d);
                  d.Click(IDCANCEL);
                  d.AnswerBox(IDNO);
                  // What is typed and left becomes the top row at OK.
                  d.Click(IDC_NEW_KEY);
                  d.Type(L"hkey_users\\x");
                  d.Click(IDC_REGISTRY_TREE);
                  d.Click(IDOK);
              }),
              1)
        << "OK counts after a cancel that was taken back";
    EXPECT_EQ(HostRules(), (Texts{L"Branch|HKEY_USERS\\x|0", L"Branch|HKEY_CURRENT_USER\\b|1"}));
    EXPECT_EQ(Work({{Click(IDOK)}}), 0) << "the next run begins clean";
}
