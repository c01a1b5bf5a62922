#include "rules/RegistryRulesApp.h"

#include <cstdlib>
#include <cwchar>

#include "helpers/ResourceString.h"
#include "resources/resource.h"

namespace {
CRegistryRulesApp g_app;
}

BOOL CRegistryRulesApp::InitInstance() {
    const BOOL result = CWinApp::InitInstance();
    if (!result) return result;
    // The framework frees the name with free, so the copy comes from malloc.
    std::free(const_cast<wchar_t*>(m_pszAppName));
    m_pszAppName = _wcsdup(LoadResourceString(IDS_APP_NAME).GetString());
    return result;
}
