// The editor as an administrator works it: by mouse and keyboard input alone, nothing of the dialog's inside called.
#include <gtest/gtest.h>

#include "dialog/RulesDialog.h"
#include "support/ScopedRegistryKey.h"

namespace {

class Administrator : public RulesDialog {
protected:
    Administrator() {
        registry.AddKey(L"Editor\\Recent");
        registry.AddKey(L"Viewer");
        registry.SetText(L"Editor", L"Theme", L"dark");
    }
    ScopedRegistryKey registry;
    const std::wstring base = L"HKCU\\Software\\" + registry.Name();
    const std::wstring fullBase = L"HKEY_CURRENT_USER\\Software\\" + registry.Name();

    // What both walks end with.
    void ExpectTheRulesOfTheWalk() {
        EXPECT_EQ(HostRules(),
                  (Texts{L"Key|" + fullBase + L"\\Viewer|0", L"Branch|" + fullBase + L"\\Editor\\Recent|2",
                         L"Branch|HKEY_LOCAL_MACHINE\\Software\\Tools|3", L"Value|" + fullBase + L"\\Editor|Theme|1"}));
    }
};

}  // namespace

TEST_F(Administrator, BuildsTheRulesByMouseAndKeyboard) {
    EXPECT_EQ(
        Show([&](Dialog& d) {
            ListSteps list = d.List(IDC_RULE_LIST);
            TreeSteps tree = d.Tree(IDC_REGISTRY_TREE);
            const TreeSteps::Path root{L"HKEY_CURRENT_USER", L"Software", registry.Name()};
            TreeSteps::Path editor = root;
            editor.push_back(L"Editor");
            const auto item = [&](TreeSteps::Path path, const wchar_t* name) {
                path.push_back(name);
                return tree.Centre(tree.Item(path));
            };
            tree.Expand(editor);
            // Three by drag: a key, a value before it, a key behind.
            d.Drag(item(editor, L"Recent"), list.BehindRows());
            d.Drag(item(editor, L"Theme"), list.Centre(0, 1));
            d.Drag(item(root, L"Viewer"), list.BehindRows());
            // Two typed, the first refused once and corrected.
            d.Click(IDC_NEW_KEY);
            d.Type(L"HKEY_LOCAL_MACHINE\\Software\\Tools\\");
            d.Key(VK_RETURN);
            EXPECT_EQ(d.AnswerBox(IDOK), L"The specified key is invalid. Trailing backslashes are not allowed.");
            d.Key(VK_DELETE);
            d.Key(VK_RETURN);
            d.Type(L"hkcu\\Obsolete  ");
            d.Key(VK_TAB);
            d.Type(L"TEMP");
            d.Key(VK_RETURN);
            EXPECT_EQ(Rows(d), (Texts{L"Value|HKCU\\Obsolete|TEMP", L"Branch|HKLM\\Software\\Tools|",
                                      L"Value|" + base + L"\\Editor|Theme", L"Branch|" + base + L"\\Editor\\Recent|",
                                      L"Branch|" + base + L"\\Viewer|"}));
            // Dropping a rule again moves it: the tools go to the end.
            d.Drag(item(editor, L"Recent"), list.Centre(1, 1));
            d.Drag(item(editor, L"Theme"), list.Centre(1, 1));
            d.Drag(item(root, L"Viewer"), list.Centre(1, 1));
            list.Click(0, 1);
            d.Click(IDC_DELETE_RULE);
            EXPECT_EQ(Rows(d), (Texts{L"Branch|" + base + L"\\Viewer|", L"Value|" + base + L"\\Editor|Theme",
                                      L"Branch|" + base + L"\\Editor\\Recent|", L"Branch|HKLM\\Software\\Tools|"}));
            // The viewer's key alone.
            d.PickFromPopup(OpenPopup(d, 0), 1);
            // A cell's key refused and corrected.
            OpenCellEdit(d, 3, 1);
            d.Key(VK_HOME);
            d.Key(VK_DELETE);
            d.Click(IDOK);
            EXPECT_EQ(d.AnswerBox(IDOK), unknownHive);
            d.Key(VK_HOME);
            d.Type(L"H");
            d.Key(VK_RETURN);
            d.Click(IDOK);
        }),
        1);
    ExpectTheRulesOfTheWalk();
}

// Every rule that a drag can make can be made without a mouse.
TEST_F(Administrator, BuildsTheSameRulesByKeyboardAlone) {
    EXPECT_EQ(Show([&](Dialog& d) {
                  const auto enter = [&](const std::wstring& key) {
                      d.Key(VK_HOME);
                      d.Key(VK_END, {VK_SHIFT});
                      d.Type(key);
                      d.Key(VK_RETURN);
                  };
                  // The focus begins in the tree; Tab goes to the list, the kind and the key.
                  for (int i = 0; i < 3; ++i) d.Key(VK_TAB);
                  enter(L"HKLM\\Software\\Tools");
                  enter(base + L"\\Editor\\Recent");
                  // A value, and the default value of a key by the kind alone.
                  d.Type(base + L"\\Editor");
                  d.Key(VK_TAB);
                  d.Type(L"Theme");
                  d.Key(VK_RETURN);
                  enter(base + L"\\Viewer");
                  EXPECT_EQ(Rows(d)[0], L"Value|" + base + L"\\Viewer|(Default)");
                  // Back to the kind: Key, then the same key again.
                  d.Key(VK_TAB, {VK_SHIFT});
                  d.Key(VK_UP);
                  d.Key(VK_TAB);
                  enter(base + L"\\Viewer");
                  // Through the value box to the list, and the row of the default value away by the Delete key.
                  d.Key(VK_TAB);
                  d.Key(VK_TAB);
                  d.Key(VK_HOME);
                  d.Key(VK_DOWN);
                  d.Key(VK_DELETE);
                  EXPECT_EQ(Rows(d),
                            (Texts{L"Key|" + base + L"\\Viewer|", L"Value|" + base + L"\\Editor|Theme",
                                   L"Branch|" + base + L"\\Editor\\Recent|", L"Branch|HKLM\\Software\\Tools|"}));
                  d.Alt(L'O');
              }),
              1);
    ExpectTheRulesOfTheWalk();
}
