// The application object of the window tests: keeps message boxes instead of showing them.
#pragma once

#include <afxwin.h>

#include <vector>

class CWindowTestApp : public CWinApp {
public:
    std::vector<CString> m_boxes;

    int DoMessageBox(LPCWSTR text, UINT, UINT) override {
        m_boxes.push_back(text);
        return IDOK;
    }
};

extern CWindowTestApp theWindowTestApp;
