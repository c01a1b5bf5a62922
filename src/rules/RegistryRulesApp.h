// The library's application object: it gives the message boxes their title.
#pragma once

#include <afxwin.h>

class CRegistryRulesApp : public CWinApp {
public:
    // Names the application "Registry Rules" once the base class has succeeded; returns what the base class returned.
    BOOL InitInstance() override;
};
