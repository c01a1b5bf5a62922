// What the framework's window tests share: their application object, which keeps message boxes instead of showing them,
// and the numbers of their dialogs. Also read by the resource compiler.
#pragma once

#define IDD_PROBE 300
#define IDD_NO_PLACE 301
#define IDD_BAD_INIT 302
#define IDC_PROBE_COMBO 312

#ifndef RC_INVOKED
#include <afxwin.h>

#include <vector>

class CFrameworkTestApp : public CWinApp {
public:
    std::vector<CString> m_boxes;

    int DoMessageBox(LPCWSTR text, UINT, UINT) override { return m_boxes.emplace_back(text), IDOK; }
};

inline CFrameworkTestApp theFrameworkTestApp;

inline BOOL CreateHidden(CWnd& window) {
    return window.CreateEx(0, nullptr, L"", WS_POPUP, CRect(10, 20, 110, 70), nullptr, 0);
}
#endif
