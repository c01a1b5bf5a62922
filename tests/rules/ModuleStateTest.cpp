// A host with an application object and resources of its own, under the library's numbers: each exported member must
// work in the library's module state and give the host its own back.
#include <afxwin.h>

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "resources/resource.h"
#include "rules/RegistryRulesCtrl.h"
#include "support/DialogDriver.h"
#include "support/ImportPatch.h"
#include "support/Throws.h"
#include "support/WindowText.h"

namespace {

class CTestHostApp : public CWinApp {
public:
    CTestHostApp() : CWinApp(L"Test host") {}
};
CTestHostApp g_app;

constexpr char SetModuleStateName[] = "_Z17AfxSetModuleStateP16AFX_MODULE_STATE";

std::vector<AFX_MODULE_STATE*> g_statesSet;

AFX_MODULE_STATE* NoteState(AFX_MODULE_STATE* state) {
    g_statesSet.push_back(state);
    return AfxSetModuleState(state);
}

class ModuleState : public testing::Test {
protected:
    // Runs one exported member and checks which states it made current on the way.
    void ExpectLibraryStateDuring(const char* member, const std::function<void()>& call) {
        SCOPED_TRACE(member);
        g_statesSet.clear();
        {
            const HMODULE library = LoadedModule(L"RegistryRules.dll");
            const ImportPatch<decltype(&AfxSetModuleState)> patch(library, SetModuleStateName, NoteState);
            call();
            ASSERT_GE(g_statesSet.size(), 2u);
            const AFX_MODULE_STATE* const during = g_statesSet.front();
            ASSERT_NE(during, nullptr);
            EXPECT_EQ(during->m_hCurrentResourceHandle, library);
            ASSERT_NE(during->m_pCurrentWinApp, nullptr);
            EXPECT_STREQ(during->m_pCurrentWinApp->m_pszAppName, L"Registry Rules");
        }
        ExpectHostState();
    }

    static void ExpectHostState() {
        EXPECT_EQ(AfxGetApp(), &g_app);
        EXPECT_EQ(AfxGetInstanceHandle(), GetModuleHandleW(nullptr));
        EXPECT_EQ(AfxGetResourceHandle(), GetModuleHandleW(nullptr));
        CString name;
        EXPECT_TRUE(name.LoadString(IDS_APP_NAME));
        EXPECT_STREQ(name, L"Host's name");
    }
};

TEST_F(ModuleState, EachExportedMemberWorksInTheLibrarysStateAndGivesTheHostItsOwnBack) {
    ExpectHostState();
    std::unique_ptr<CRegistryRulesCtrl> editor;
    CString key;
    CString value;
    int isBranch = 0;
    long position = 0;
    ExpectLibraryStateDuring("constructor", [&] { editor = std::make_unique<CRegistryRulesCtrl>(); });
    ExpectLibraryStateDuring("AddKeyRule", [&] { editor->AddKeyRule(L"HKCU\\a", 1, 0); });
    ExpectLibraryStateDuring("AddValueRule", [&] { editor->AddValueRule(L"HKCU\\a", L"", 0); });
    ExpectLibraryStateDuring("GetKeyRuleCount", [&] { editor->GetKeyRuleCount(); });
    ExpectLibraryStateDuring("GetValueRuleCount", [&] { editor->GetValueRuleCount(); });
    ExpectLibraryStateDuring("GetKeyRule", [&] { editor->GetKeyRule(0, key, &isBranch, &position); });
    ExpectLibraryStateDuring("GetValueRule", [&] { editor->GetValueRule(0, key, value, &position); });
    EXPECT_TRUE(value.IsEmpty()) << "the default value's text is the library's";
    ExpectLibraryStateDuring("GetKeyRule that raises", [&] {
        EXPECT_TRUE(Throws<CInvalidArgException>([&] { editor->GetKeyRule(-1, key, &isBranch, &position); }));
    });
    ExpectLibraryStateDuring("GetValueRule that raises", [&] {
        EXPECT_TRUE(Throws<CInvalidArgException>([&] { editor->GetValueRule(-1, key, value, &position); }));
    });
    ExpectLibraryStateDuring("destructor", [&] { editor.reset(); });
}

TEST_F(ModuleState, TheDialogAndItsBoxesShowTheLibrarysResources) {
    CRegistryRulesCtrl editor;
    editor.AddValueRule(L"HKCU\\a", nullptr, 0);
    DialogDriver driver;
    ExpectLibraryStateDuring("Show", [&] {
        driver.Run([&] { EXPECT_EQ(editor.Show(), 0); },
                   [](Dialog& d) {
                       EXPECT_EQ(AfxGetApp(), &g_app) << "this thread has a state of its own";
                       EXPECT_EQ(WindowText(d.Window()), L"Registry Rules");
                       EXPECT_EQ(d.Text(IDC_NEW_KEY), L"Click here to create a new rule");
                       const std::vector<std::wstring> row{L"Value", L"HKCU\\a", L"(Default)"};
                       EXPECT_EQ(d.List(IDC_RULE_LIST).Row(0), row);
                       d.List(IDC_RULE_LIST).Click(0, 1);
                       d.Click(IDC_DELETE_RULE);
                       d.Click(IDCANCEL);
                       EXPECT_TRUE(d.ExpectBox().starts_with(L"Changes have been made to the Registry Rules."));
                       EXPECT_EQ(WindowText(GetForegroundWindow()), L"Registry Rules");
                       d.AnswerBox(IDYES);
                   });
    });
}

}  // namespace
