// A dialog with a list for cell editors, and a record of what they tell their parents.
#pragma once

#include <afxcmn.h>
#include <afxdialogex.h>

#include <functional>
#include <string>
#include <vector>

#include "entry/EntryDialogIds.h"

// One line per private message, end of a cell edit and key-up sent by an edit: "dialog 8101", "list end 2,1 'text'".
using EventLog = std::vector<std::string>;

// Records the private messages to a window and passes them on.
void RecordPrivateMessage(EventLog& log, const char* receiver, UINT message, WPARAM wParam, LPARAM lParam);

// The list under the cell editors: records what ends them.
class CCellList : public CListCtrl {
public:
    EventLog* log = nullptr;
    std::function<void()> onEndEdit;  // called at each end of an edit

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    afx_msg void OnEndLabelEdit(NMHDR* header, LRESULT* result);
    DECLARE_MESSAGE_MAP()
};

class CEntryDialog : public CDialogEx {
public:
    explicit CEntryDialog(EventLog& log) : CDialogEx(IDD_ENTRY), m_log(log) { list.log = &log; }

    CCellList list;

protected:
    BOOL OnInitDialog() override;
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    EventLog& m_log;
};
