// Opens and ends the dialog many times and compares what was created with what was destroyed.
#include <gtest/gtest.h>

#include "dialog/RulesDialog.h"
#include "support/ResourceCounter.h"

namespace {
class Openings : public RulesDialog {};
}  // namespace

TEST_F(Openings, LeaveTheLastDragImageAndTheKeysThatWereExpandedAlone) {
    constexpr int openings = 40;
    Work({{Click(IDCANCEL)}});  // what is made once per process is made now
    const ResourceCounter counter({LoadedModule(L"RegistryRulesFramework.dll"), LoadedModule(L"ZmUiCtrl.dll"),
                                   LoadedModule(L"RegistryRules.dll")});
    {
        CRegistryRulesCtrl shown;
        shown.AddKeyRule(L"HKCU\\a", 1, 0);
        shown.AddValueRule(L"HKCU\\b", L"v", 1);
        const std::vector<Act> visits[] = {{Open(0, 1), Click(IDOK)},  // ends with the cell in edit
                                           {Open(1, 0), Press(VK_ESCAPE), Click(IDCANCEL), Answer(IDYES)},
                                           {Click(IDC_NEW_KEY), Type(L"HKCU\\c\r"), Click(IDOK)},
                                           {Drop({L"Vendor"}, behindRows), Click(IDCANCEL), Answer(IDYES)}};
        for (int i = 0; i < openings; ++i) {
            driver.Run([&] { shown.Show(); },
                       [&](Dialog& d) {
                           for (const Act& act : visits[i % 4]) act(d);
                       });
        }
        EXPECT_EQ(counter.Alive("window"), 0);
    }
    for (const char* kind : {"window", "image list"}) EXPECT_GE(counter.Created(kind), openings);
    EXPECT_GT(counter.Created("gdi object"), 0);
    // The two keys that each run with a drag has opened; the hive above them needs no handle.
    EXPECT_EQ(counter.Report(), "image list: 1 alive\nregistry handle: 10 alive\n");
}
