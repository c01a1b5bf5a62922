// Making rules by typing in the strip above the list.
#include <gtest/gtest.h>

#include "dialog/RulesDialog.h"

namespace {
class Strip : public RulesDialog {
protected:
    static Act Focus(int id) {
        return [=](Dialog& d) { d.OnGuiThread([&] { SetFocus(d.Control(id)); }); };
    }
};
}  // namespace

TEST_F(Strip, ReturnMakesTheTopRowOfWhatIsTyped) {
    Work({{Click(IDC_NEW_TYPE), L"focus=kind"},
          {Type(L"\x1b\t"), L"focus=key"},
          // By the keyboard the watermark stays, and is no key.
          {Type(L"\r"), L"strip=Branch|...|"},
          {Type(L"\tname"), L"focus=value strip=Value|(...)|name"},
          // In the value box it asks for the key: the watermark goes, the value stays.
          {Type(L"\r"), L"focus=key strip=Value|()|name"},
          {Type(L"\r"), L"strip=Value||name"},
          {Type(L"hkey_users\\k\t"), L"focus=value strip=Value|hkey_users\\k|name"},
          {Type(L"\r"), L"delete=live, tab dirty=yes focus=key rows=Value|HKU\\k|name; selected=0 strip=Value||"},
          // A small abbreviation shows in capitals, a value without a name as the default.
          {Pick(ofStrip, 2), L"focus=kind strip=Value|(...)|"},
          {Click(IDC_NEW_KEY), L"delete=dead focus=key strip=Value||"},
          {Type(L"hkcu\\k  \r"), L"delete=live, tab rows=Value|HKCU\\k|(Default); Value|HKU\\k|name;"},
          // The same rule again moves to the top, and the new text wins.
          {Type(L"HKU\\K\tNAME\r"), L"rows=Value|HKU\\K|NAME; Value|HKCU\\k|(Default);"},
          {Press(VK_ESCAPE), L""},  // Escape in the strip does nothing
          {Click(IDCANCEL), L"box=" CONFIRM_CANCEL, IDYES}});
}

TEST_F(Strip, TheKindFollowsTheValueBoxAndTheValueBoxTheKind) {
    Work({{Pick(ofStrip, 1), L"focus=kind strip=Key|(...)|"},
          {Click(IDC_NEW_VALUE), L"focus=value"},
          {Type(L" n"), L"strip=Value|(...)| n"},
          {Type(L"\b"), L"strip=Key|(...)| "},  // blanks alone are no name; the last choice is back
          {Type(L"n"), L"strip=Value|(...)| n"},
          {Pick(ofStrip, 0), L"focus=kind strip=Branch|(...)|"},
          {Pick(ofStrip, 2), L"strip=Value|(...)|"},
          {Click(IDC_NEW_VALUE), L"focus=value"},
          {Type(L"n\b"), L"strip=Branch|(...)|"},  // Value itself is never remembered
          {Click(IDCANCEL)}});
}

TEST_F(Strip, TheWatermarkComesBackWhenTheKeyBoxIsLeftEmpty) {
    Work({{Click(IDC_NEW_KEY), L"focus=key strip=Branch||"},
          {Click(IDC_NEW_VALUE), L"focus=value strip=Branch|(...)|"},
          {[](Dialog& d) { SendMessageW(d.Control(IDC_NEW_KEY), WM_RBUTTONDOWN, MK_RBUTTON, 0x30003); },
           L"strip=Branch||"},
          {Click(IDC_NEW_KEY), L"focus=key"},
          {Click(IDC_NEW_VALUE), L"focus=value strip=Branch|(...)|"},
          // An empty key box keeps the value; one with blanks counts as text when the strip is reset, so it goes.
          {Type(L"kept"), L"strip=Value|(...)|kept"},
          {Click(IDC_NEW_KEY), L"focus=key strip=Value||kept"},
          {Click(IDC_REGISTRY_TREE), L"focus=tree strip=Value|(...)|kept"},
          {Click(IDC_NEW_KEY), L"focus=key strip=Value||kept"},
          {Type(L"   "), L"strip=Value|   |kept"},
          {Click(IDC_REGISTRY_TREE), L"focus=tree strip=Value|(...)|"},
          // Reached by Tab and typed into, the watermark turns black and stays a part of the text.
          {Click(IDC_NEW_TYPE), L"focus=kind"},
          {Type(L"\x1b\t"), L"focus=key"},
          {Press(VK_END), L"strip=Value|...|"},
          {Type(L"!"), L"strip=Value|...!|"},
          {Click(IDCANCEL)}});
}

TEST_F(Strip, ARefusedKeyKeepsFocusAndTextForReturnTabAndOk) {
    const struct {
        const wchar_t* typed;
        const wchar_t* message;
        std::pair<int, int> selection;
        const wchar_t* afterCancel;
    } cases[] = {
        {L"Software", UNKNOWN_HIVE, {0, 8}, L""},
        {L" HKCU\\a", UNKNOWN_HIVE, {0, 5}, L""},  // the box itself is checked, blanks and all
        {L"HKCU", BARE_HIVE, {4, 4}, L"HKCU"},
    };
    Show([&](Dialog& d) {
        for (const auto& c : cases) {
            for (const Act& check : {Press(VK_RETURN), Press(VK_TAB), Click(IDOK)}) {
                d.Click(IDC_NEW_KEY);
                d.Key(VK_HOME);
                d.Key(VK_END, {VK_SHIFT});
                d.Type(c.typed);
                Changes(d);
                Go(d, {{check, std::wstring(L"box=") + c.message, IDOK}});
                EXPECT_EQ(Dialog::EditSelection(d.Control(IDC_NEW_KEY)), c.selection) << c.typed;
                check(d);
                EXPECT_EQ(d.AnswerBox(IDCANCEL), c.message);
                EXPECT_EQ(d.Text(IDC_NEW_KEY), c.afterCancel);
            }
        }
        // Such a key never holds up a close.
        d.Click(IDC_NEW_KEY);
        d.Type(L"x");
        d.Key(VK_F4, {VK_MENU});
    });
    EXPECT_EQ(HostRules(), Texts{});
}

TEST_F(Strip, TabGoesRoundAndFocusInEitherBoxSelectsTheValueAndDisablesDelete) {
    AddBranches({L"HKCU\\a"});
    Show([&](Dialog& d) {
        // The list is brought to the top, which makes it the first in the order.
        Go(d, {{Click(IDC_NEW_TYPE), L"focus=kind"}, {Press(VK_ESCAPE), L""}});
        for (const wchar_t* next : {L"key", L"value", L"list", L"kind"})
            Go(d, {{Press(VK_TAB), std::wstring(L"focus=") + next}});
        for (const wchar_t* next : {L"list", L"tree", L"cancel", L"ok", L"value", L"key", L"kind"})
            Go(d, {{Press(VK_TAB, VK_SHIFT), std::wstring(L"focus=") + next}});
        Go(d, {{Click(IDC_NEW_VALUE), L"focus=value"},
               {Type(L"name"), L"strip=Value|(...)|name"},
               {Focus(IDC_RULE_LIST), L"focus=list"},
               {Press(VK_HOME), L"delete=live, tab selected=0"}});
        for (const auto& [box, name] : {std::pair(IDC_NEW_KEY, L"key"), std::pair(IDC_NEW_VALUE, L"value")}) {
            Go(d, {{Focus(box), std::wstring(L"delete=dead focus=") + name}});
            EXPECT_EQ(Dialog::EditSelection(d.Control(IDC_NEW_VALUE)), std::make_pair(0, 4));
            Go(d, {{Focus(IDC_RULE_LIST), L"delete=live, tab focus=list"}});
        }
        d.Click(IDCANCEL);
    });
}
