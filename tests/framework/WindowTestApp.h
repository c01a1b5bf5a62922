// The application object of the window tests: keeps message boxes and commands instead of showing and handling them.
#pragma once

#include <afxwin.h>

#include <vector>

class CWindowTestApp : public CWinApp {
public:
    std::vector<CString> m_boxes;
    std::vector<UINT> m_commands;

    int DoMessageBox(LPCWSTR text, UINT, UINT) override {
        m_boxes.push_back(text);
        return IDOK;
    }
    BOOL OnCmdMsg(UINT id, int code, void* extra, AFX_CMDHANDLERINFO* info) override {
        m_commands.push_back(id);
        return CWinApp::OnCmdMsg(id, code, extra, info);
    }
};

extern CWindowTestApp theWindowTestApp;
