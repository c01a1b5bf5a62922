#include "entry/EntryDialog.h"

#include <gtest/gtest.h>
#include <sstream>

#include "entry/PrivateMessages.h"
#include "support/Narrow.h"

void RecordPrivateMessage(EventLog& log, const char* receiver, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message < RRM_ENABLE_CELL_EDIT || message > RRM_FILL_COMBO) return;
    std::ostringstream line;
    line << receiver << ' ' << std::hex << message;
    if (wParam != 0 || lParam != 0) line << " with parameters";
    log.push_back(line.str());
}

BEGIN_MESSAGE_MAP(CCellList, CListCtrl)
ON_NOTIFY_REFLECT(LVN_ENDLABELEDITW, &CCellList::OnEndLabelEdit)
END_MESSAGE_MAP()

LRESULT CCellList::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    RecordPrivateMessage(*log, "list", message, wParam, lParam);
    return CListCtrl::WindowProc(message, wParam, lParam);
}

void CCellList::OnEndLabelEdit(NMHDR* header, LRESULT* result) {
    const auto& info = *reinterpret_cast<const NMLVDISPINFOW*>(header);
    EXPECT_EQ(header->hwndFrom, m_hWnd);
    EXPECT_EQ(header->idFrom, static_cast<UINT_PTR>(IDC_CELLS));
    EXPECT_EQ(info.item.mask, static_cast<UINT>(LVIF_TEXT));
    const std::wstring text = info.item.pszText;
    EXPECT_EQ(info.item.cchTextMax, static_cast<int>(text.size()));
    std::ostringstream line;
    line << "list end " << info.item.iItem << ',' << info.item.iSubItem << " '" << Narrow(text) << '\'';
    log->push_back(line.str());
    *result = 0;
    if (onEndEdit) onEndEdit();
}

BOOL CEntryDialog::OnInitDialog() {
    CDialogEx::OnInitDialog();
    list.SubclassWindow(::GetDlgItem(m_hWnd, IDC_CELLS));
    return TRUE;
}

LRESULT CEntryDialog::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    RecordPrivateMessage(m_log, "dialog", message, wParam, lParam);
    if (message == WM_KEYUP) m_log.push_back("dialog keyup " + std::to_string(wParam));
    return CDialogEx::WindowProc(message, wParam, lParam);
}
