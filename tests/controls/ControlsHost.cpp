#include "controls/ControlsHost.h"

#include "entry/PrivateMessages.h"
#include "resources/resource.h"

CControlsHost::CControlsHost() : CDialogEx(IDD_REGISTRY_RULES) {}

void CControlsHost::DoDataExchange(CDataExchange* exchange) {
    CDialogEx::DoDataExchange(exchange);
    DDX_Control(exchange, IDC_RULE_LIST, m_list);
}

BOOL CControlsHost::OnInitDialog() {
    CDialogEx::OnInitDialog();
    m_list.SetExtendedStyle(LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT);
    m_list.InsertColumn(0, L"Type", LVCFMT_LEFT, 61);
    m_list.InsertColumn(1, L"Key", LVCFMT_LEFT, 250);
    m_list.InsertColumn(2, L"Value", LVCFMT_LEFT, 95);
    m_list.SetComboColumns(0, true);
    m_list.SetReadOnlyColumns(0, true);
    for (const auto& row : m_rows) {
        const int index = m_list.InsertItem(m_list.GetItemCount(), row[0]);
        m_list.SetItemText(index, 1, row[1]);
        m_list.SetItemText(index, 2, row[2]);
    }
    m_list.SetFocus();
    TakeTold();
    return FALSE;
}

LRESULT CControlsHost::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message < RRM_ENABLE_CELL_EDIT || message > RRM_FILL_COMBO)
        return CDialogEx::WindowProc(message, wParam, lParam);
    const std::lock_guard lock(m_mutex);
    m_told.push_back(message);
    if (message != RRM_FILL_COMBO) return 0;
    for (const wchar_t* kind : {L"Branch", L"Key", L"Value"}) reinterpret_cast<CStringList*>(lParam)->AddTail(kind);
    return 1;
}

std::vector<UINT> CControlsHost::TakeTold() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_told, {});
}
