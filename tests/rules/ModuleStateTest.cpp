// The library in a host that has an application object and resources of its own under the library's numbers: each
// exported member works in the library's module state and gives the host its own back. The property page has no way in
// from outside, so the test has it compiled in; that the library carries it is seen in its image.
#include <afxwin.h>

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <objbase.h>
#include <psapi.h>
#include <string>
#include <string_view>
#include <vector>

#include "resources/resource.h"
#include "rules/RegistryRulesCtrl.h"
#include "rules/RegistryRulesPropPage.h"
#include "support/DialogDriver.h"
#include "support/ImportPatch.h"
#include "support/Throws.h"
#include "support/WindowText.h"

namespace {

CWinApp g_app(L"Test host");

AFX_MODULE_STATE* g_firstSet = nullptr;

// Runs one exported member and checks which state it made current, and that the host's is back.
void ExpectLibraryStateDuring(const char* member, const std::function<void()>& call) {
    SCOPED_TRACE(member);
    const HMODULE library = LoadedModule(L"RegistryRules.dll");
    g_firstSet = nullptr;
    {
        const ImportPatch<decltype(&AfxSetModuleState)> patch(library, "_Z17AfxSetModuleStateP16AFX_MODULE_STATE",
                                                              [](AFX_MODULE_STATE* state) {
                                                                  if (g_firstSet == nullptr) g_firstSet = state;
                                                                  return AfxSetModuleState(state);
                                                              });
        call();
    }
    ASSERT_TRUE(g_firstSet != nullptr && g_firstSet->m_pCurrentWinApp != nullptr);
    EXPECT_EQ(g_firstSet->m_hCurrentResourceHandle, library);
    EXPECT_STREQ(g_firstSet->m_pCurrentWinApp->m_pszAppName, L"Registry Rules");
    CString name;
    EXPECT_TRUE(AfxGetApp() == &g_app && name.LoadString(IDS_APP_NAME));
    EXPECT_STREQ(name, L"Host's name");
}

struct OpenPage : CRegistryRulesPropPage {
    using CRegistryRulesPropPage::factory;
    using CRegistryRulesPropPage::GetClassID;
};

constexpr wchar_t kClassId[] = L"{3EBF27D3-6DD2-4531-8801-285518173410}";

std::wstring DefaultValue(const std::wstring& path) {
    wchar_t text[1000] = {};
    DWORD bytes = sizeof text;
    RegGetValueW(HKEY_CLASSES_ROOT, (std::wstring(L"CLSID\\") + kClassId + path).c_str(), nullptr, RRF_RT_REG_SZ,
                 nullptr, text, &bytes);
    return text;
}

}  // namespace

TEST(ModuleState, EachExportedMemberWorksInTheLibrarysStateAndGivesTheHostItsOwnBack) {
    std::unique_ptr<CRegistryRulesCtrl> editor;
    CString key, value;
    int isBranch = 0;
    long position = 0;
    const auto during = ExpectLibraryStateDuring;
    const auto raises = [](const auto& read) { EXPECT_TRUE(Throws<CInvalidArgException>(read)); };
    during("constructor", [&] { editor = std::make_unique<CRegistryRulesCtrl>(); });
    during("AddKeyRule", [&] { editor->AddKeyRule(L"HKCU\\a", 1, 0); });
    during("AddValueRule", [&] { editor->AddValueRule(L"HKCU\\a", L"", 1); });
    during("GetKeyRuleCount", [&] { editor->GetKeyRuleCount(); });
    during("GetValueRuleCount", [&] { editor->GetValueRuleCount(); });
    during("GetKeyRule", [&] { editor->GetKeyRule(0, key, &isBranch, &position); });
    during("GetValueRule", [&] { editor->GetValueRule(0, key, value, &position); });
    EXPECT_TRUE(value.IsEmpty()) << "the default value's text is the library's";
    during("GetKeyRule", [&] { raises([&] { editor->GetKeyRule(-1, key, &isBranch, &position); }); });
    during("GetValueRule", [&] { raises([&] { editor->GetValueRule(-1, key, value, &position); }); });
    DialogDriver driver;
    const auto useDialog = [](Dialog& d) {
        EXPECT_EQ(AfxGetApp(), &g_app) << "this thread has a state of its own";
        EXPECT_EQ(WindowText(d.Window()), L"Registry Rules");
        EXPECT_EQ(d.Text(IDC_NEW_KEY), L"Click here to create a new rule");
        EXPECT_EQ(d.List(IDC_RULE_LIST).Rows()[1], (std::vector<std::wstring>{L"Value", L"HKCU\\a", L"(Default)"}));
        d.List(IDC_RULE_LIST).Click(0, 1);
        d.Click(IDC_DELETE_RULE);
        d.Click(IDCANCEL);
        EXPECT_TRUE(d.ExpectBox().starts_with(L"Changes have been made to the Registry Rules."));
        EXPECT_EQ(WindowText(GetForegroundWindow()), L"Registry Rules");
        d.AnswerBox(IDYES);
    };
    during("Show", [&] { driver.Run([&] { EXPECT_EQ(editor->Show(), 0); }, useDialog); });
    during("destructor", [&] { editor.reset(); });
}

TEST(PropertyPage, IsInTheLibraryOutOfReachAndRegistersItselfOnlyWhenTheFactoryIsAsked) {
    const std::unique_ptr<CObject> page(RUNTIME_CLASS(CRegistryRulesPropPage)->CreateObject());
    EXPECT_TRUE(page != nullptr && page->IsKindOf(RUNTIME_CLASS(COlePropertyPage)));
    CLSID clsid{}, expected{};
    CLSIDFromString(kClassId, &expected);
    EXPECT_TRUE(OpenPage().GetClassID(&clsid) == S_OK && clsid == expected);
    const HMODULE library = LoadedModule(L"RegistryRules.dll");
    MODULEINFO info{};
    GetModuleInformation(GetCurrentProcess(), library, &info, sizeof info);
    const std::wstring_view image(static_cast<const wchar_t*>(info.lpBaseOfDll), info.SizeOfImage / sizeof(wchar_t));
    EXPECT_NE(image.find(L"REGISTRYRULES.RegistryRulesPropPage.1"), image.npos);

    EXPECT_FALSE(OpenPage::factory.IsRegistered());
    EXPECT_EQ(DefaultValue(L""), L"");
    AfxGetStaticModuleState()->m_hCurrentResourceHandle = library;
    EXPECT_TRUE(OpenPage::factory.UpdateRegistry(TRUE));
    AfxGetStaticModuleState()->m_hCurrentResourceHandle = GetModuleHandleW(nullptr);
    EXPECT_EQ(DefaultValue(L""), L"RegistryRules Property Page");
    EXPECT_TRUE(DefaultValue(L"\\InprocServer32").ends_with(L"\\rules_test.exe")) << "the module that has the page";
    EXPECT_TRUE(OpenPage::factory.UpdateRegistry(FALSE));
    EXPECT_EQ(DefaultValue(L""), L"");
    EXPECT_FALSE(OpenPage::factory.UpdateRegistry(FALSE)) << "nothing left to remove";
    EXPECT_FALSE(OpenPage::factory.UpdateRegistry(TRUE)) << "this program has no such string";
}
