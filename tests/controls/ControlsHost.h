// A modal dialog with the list and the tree where the real one has them, which does what the list needs of its parent
// and records what the list tells it.
#pragma once

#include <afxdialogex.h>

#include <mutex>
#include <vector>

#include "controls/ComboListCtrl.h"
#include "controls/RegistryTree.h"

// A private message as it arrived; of RRM_CELL_CHANGED also the record that came with it.
struct ToldMessage {
    UINT message;
    WPARAM wParam;
    NMLVDISPINFOW cell;
};

class CControlsHost : public CDialogEx {
public:
    CControlsHost();

    CComboListCtrl m_list;
    CRegistryTree m_tree;
    // Set before DoModal. The list has the rules dialog's three columns, all in view, and column 0 is a drop-down.
    std::vector<std::vector<CString>> m_rows;
    bool m_fillTree = false;
    bool m_fillCombo = true;

    // What the list has told since the last call.
    std::vector<UINT> TakeTold();
    std::vector<ToldMessage> TakeToldMessages();

protected:
    void DoDataExchange(CDataExchange* exchange) override;
    BOOL OnInitDialog() override;
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    std::mutex m_mutex;
    std::vector<ToldMessage> m_told;
};
