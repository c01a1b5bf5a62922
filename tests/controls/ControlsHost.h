// A modal dialog with the list where the real one has it, which does what the list needs of its parent and records what
// the list tells it.
#pragma once

#include <afxdialogex.h>

#include <mutex>
#include <vector>

#include "controls/ComboListCtrl.h"

class CControlsHost : public CDialogEx {
public:
    CControlsHost();

    CComboListCtrl m_list;
    // Set before DoModal. The list has the rules dialog's three columns, all in view, and column 0 is a drop-down.
    std::vector<std::vector<CString>> m_rows;

    // The private messages that the list has sent since the last call.
    std::vector<UINT> TakeTold();

protected:
    void DoDataExchange(CDataExchange* exchange) override;
    BOOL OnInitDialog() override;
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    std::mutex m_mutex;
    std::vector<UINT> m_told;
};
