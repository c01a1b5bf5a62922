// Opens and ends the dialog many times and compares what was created with what was destroyed.
#include <gtest/gtest.h>

#include "dialog/RulesDialog.h"
#include "support/ResourceCounter.h"

namespace {
class Openings : public RulesDialog {
protected:
    static std::vector<HMODULE> Modules() {
        return {LoadedModule(L"framework.dll"), LoadedModule(L"ZmUiCtrl.dll"), LoadedModule(L"RegistryRules.dll")};
    }
};
}  // namespace

TEST_F(Openings, TwoHundredLeaveNothingBehind) {
    constexpr int openings = 200;
    ShowAndPress(IDCANCEL);  // what is made once per process is made now
    const ResourceCounter counter(Modules());
    {
        CRegistryRulesCtrl shown;
        shown.AddKeyRule(L"HKCU\\a", 1, 0);
        shown.AddValueRule(L"HKCU\\b", L"v", 1);
        for (int i = 0; i < openings; ++i) {
            Show(shown, [&](Dialog& d) {
                if (i % 4 == 0) d.Tree(IDC_REGISTRY_TREE).Expand({L"HKEY_CURRENT_USER"});
                if (i % 4 == 1) OpenCellEdit(d, 0, 1);  // and ends with the cell in edit
                if (i % 4 == 2) {
                    OpenCellCombo(d, 1);
                    d.Key(VK_ESCAPE);
                }
                if (i % 4 == 3) {
                    d.Click(IDC_NEW_KEY);
                    d.Type(L"HKCU\\c");
                    d.Key(VK_RETURN);
                }
                d.Click(i % 2 ? IDOK : IDCANCEL);
                if (i % 4 == 2) d.AnswerBox(IDYES);
            });
        }
        EXPECT_EQ(counter.Alive("window"), 0);
    }
    EXPECT_GE(counter.Created("window"), openings);
    EXPECT_GE(counter.Created("image list"), openings);
    EXPECT_GT(counter.Created("registry handle"), 0);
    EXPECT_GT(counter.Created("gdi object"), 0);
    EXPECT_EQ(counter.Report(), "");
}

// What stays open by design: the key that an expansion opened, and the image of the last drag.
TEST_F(Openings, AnExpandedKeyAndTheLastDragImageAreWhatStays) {
    constexpr int openings = 20;
    ShowAndPress(IDCANCEL);
    const ResourceCounter counter(Modules());
    {
        CRegistryRulesCtrl shown;
        for (int i = 0; i < openings; ++i) {
            Show(shown, [&](Dialog& d) {
                TreeSteps tree = d.Tree(IDC_REGISTRY_TREE);
                const POINT behind = d.List(IDC_RULE_LIST).BehindRows();
                tree.Expand({L"HKEY_CURRENT_USER", L"Software"});
                d.Drag(tree.Centre(tree.Item({L"HKEY_CURRENT_USER", L"Software"})), behind);
                Discard(d);
            });
        }
    }
    EXPECT_EQ(counter.Alive("registry handle"), openings) << "one per run: the hive itself needs no handle";
    EXPECT_EQ(counter.Alive("image list"), 1);
    for (const char* kind : {"window", "gdi object", "memory dc", "window dc", "icon", "hook"})
        EXPECT_EQ(counter.Alive(kind), 0) << kind;
}
