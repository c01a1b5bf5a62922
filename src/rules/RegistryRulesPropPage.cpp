#include "rules/RegistryRulesPropPage.h"

#include "resources/resource.h"

namespace {
constexpr CLSID kClassId = {0x3EBF27D3, 0x6DD2, 0x4531, {0x88, 0x01, 0x28, 0x55, 0x18, 0x17, 0x34, 0x10}};
}

IMPLEMENT_DYNCREATE(CRegistryRulesPropPage, COlePropertyPage)

BEGIN_MESSAGE_MAP(CRegistryRulesPropPage, COlePropertyPage)
END_MESSAGE_MAP()

CRegistryRulesPropPage::CRegistryRulesPropPageFactory CRegistryRulesPropPage::factory(
    kClassId, RUNTIME_CLASS(CRegistryRulesPropPage), FALSE, L"REGISTRYRULES.RegistryRulesPropPage.1");

CRegistryRulesPropPage::CRegistryRulesPropPage() : COlePropertyPage(IDD_PROPERTY_PAGE, IDS_PROPERTY_PAGE_CAPTION) {}

void CRegistryRulesPropPage::DoDataExchange(CDataExchange* exchange) {
    DDP_PostProcessing(exchange);
}

HRESULT CRegistryRulesPropPage::GetClassID(LPCLSID clsid) {
    *clsid = kClassId;
    return S_OK;
}

BOOL CRegistryRulesPropPage::CRegistryRulesPropPageFactory::IsRegistered() const {
    return COleObjectFactory::IsRegistered();
}

BOOL CRegistryRulesPropPage::CRegistryRulesPropPageFactory::UpdateRegistry(BOOL registers) {
    AFX_MANAGE_STATE(AfxGetStaticModuleState())
    if (!registers) return AfxOleUnregisterClass(m_clsid, nullptr);
    return AfxOleRegisterPropertyPageClass(AfxGetInstanceHandle(), m_clsid, IDS_PROPERTY_PAGE_TYPE);
}
