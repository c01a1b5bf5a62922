// The property page has no way in from outside the library, so the test has it compiled in; that the library carries it
// is seen in its image.
#include "rules/RegistryRulesPropPage.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <objbase.h>
#include <psapi.h>
#include <string>

#include "support/ImportPatch.h"

namespace {

constexpr wchar_t kClassId[] = L"{3EBF27D3-6DD2-4531-8801-285518173410}";

CLSID ParsedClassId() {
    CLSID clsid{};
    EXPECT_EQ(CLSIDFromString(kClassId, &clsid), S_OK);
    return clsid;
}

struct OpenPage : CRegistryRulesPropPage {
    using CRegistryRulesPropPage::factory;
    using CRegistryRulesPropPage::GetClassID;
};

std::wstring DefaultValue(const std::wstring& path) {
    wchar_t text[1000] = {};
    DWORD bytes = sizeof text;
    RegGetValueW(HKEY_CLASSES_ROOT, (std::wstring(L"CLSID\\") + kClassId + path).c_str(), nullptr, RRF_RT_REG_SZ,
                 nullptr, text, &bytes);
    return text;
}

bool Holds(HMODULE module, const void* bytes, size_t size) {
    MODULEINFO info{};
    GetModuleInformation(GetCurrentProcess(), module, &info, sizeof info);
    const auto* const image = static_cast<const BYTE*>(info.lpBaseOfDll);
    const auto* const wanted = static_cast<const BYTE*>(bytes);
    return std::search(image, image + info.SizeOfImage, wanted, wanted + size) != image + info.SizeOfImage;
}

}  // namespace

TEST(PropertyPage, IsMadeByItsClassAndTellsItsIdentifier) {
    const std::unique_ptr<CObject> page(RUNTIME_CLASS(CRegistryRulesPropPage)->CreateObject());
    ASSERT_NE(page, nullptr);
    EXPECT_TRUE(page->IsKindOf(RUNTIME_CLASS(COlePropertyPage)));
    CLSID clsid{};
    EXPECT_EQ(OpenPage().GetClassID(&clsid), S_OK);
    EXPECT_TRUE(IsEqualCLSID(clsid, ParsedClassId()));
}

TEST(PropertyPage, RegistersItselfOnlyWhenTheFactoryIsAsked) {
    EXPECT_FALSE(OpenPage::factory.IsRegistered());
    EXPECT_EQ(DefaultValue(L""), L"");
    AfxGetStaticModuleState()->m_hCurrentResourceHandle = LoadedModule(L"RegistryRules.dll");
    EXPECT_TRUE(OpenPage::factory.UpdateRegistry(TRUE));
    AfxGetStaticModuleState()->m_hCurrentResourceHandle = GetModuleHandleW(nullptr);
    EXPECT_EQ(DefaultValue(L""), L"RegistryRules Property Page");
    EXPECT_TRUE(DefaultValue(L"\\InprocServer32").ends_with(L"\\rules_test.exe")) << "the module that has the page";
    EXPECT_TRUE(OpenPage::factory.UpdateRegistry(FALSE));
    EXPECT_EQ(DefaultValue(L""), L"");
    EXPECT_FALSE(OpenPage::factory.UpdateRegistry(FALSE)) << "nothing left to remove";
    EXPECT_FALSE(OpenPage::factory.UpdateRegistry(TRUE)) << "this program has no such string";
}

TEST(PropertyPage, IsInTheLibraryButOutOfReach) {
    const HMODULE library = LoadedModule(L"RegistryRules.dll");
    const CLSID clsid = ParsedClassId();
    EXPECT_TRUE(Holds(library, &clsid, sizeof clsid));
    constexpr wchar_t kProgId[] = L"REGISTRYRULES.RegistryRulesPropPage.1";
    EXPECT_TRUE(Holds(library, kProgId, sizeof kProgId));
    for (const char* entry : {"DllGetClassObject", "DllRegisterServer", "DllUnregisterServer"}) {
        EXPECT_EQ(GetProcAddress(library, entry), nullptr) << entry;
    }
}
