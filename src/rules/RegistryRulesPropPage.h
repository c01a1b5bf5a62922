// The property page that a control would have: a placeholder. It stands in the library, with the factory that would
// make it, but nothing leads to it: the library exports no class objects and does not register itself.
#pragma once

#include <afxctl.h>

class CRegistryRulesPropPage : public COlePropertyPage {
    DECLARE_DYNCREATE(CRegistryRulesPropPage)
    DECLARE_MESSAGE_MAP()

public:
    CRegistryRulesPropPage();

protected:
    class CRegistryRulesPropPageFactory : public COleObjectFactory {
    public:
        using COleObjectFactory::COleObjectFactory;
        BOOL IsRegistered() const override;
        // Registers the page for this library, or removes it.
        BOOL UpdateRegistry(BOOL registers) override;
    };
    static CRegistryRulesPropPageFactory factory;

    void DoDataExchange(CDataExchange* exchange) override;
    // Always S_OK.
    HRESULT GetClassID(LPCLSID clsid) override;
};
