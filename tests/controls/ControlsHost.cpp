#include "controls/ControlsHost.h"

#include "entry/PrivateMessages.h"
#include "resources/resource.h"

CControlsHost::CControlsHost() : CDialogEx(IDD_REGISTRY_RULES) {}

void CControlsHost::DoDataExchange(CDataExchange* exchange) {
    CDialogEx::DoDataExchange(exchange);
    DDX_Control(exchange, IDC_RULE_LIST, m_list);
    DDX_Control(exchange, IDC_REGISTRY_TREE, m_tree);
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
    if (m_fillTree) {
        m_tree.Initialize(true);
    }
    m_list.SetFocus();
    TakeTold();
    return FALSE;
}

LRESULT CControlsHost::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message >= RRM_ENABLE_CELL_EDIT && message <= RRM_FILL_COMBO) {
        ToldMessage told{message, wParam, {}};
        if (message == RRM_CELL_CHANGED) {
            told.cell = *reinterpret_cast<const NMLVDISPINFOW*>(lParam);
        }
        {
            const std::lock_guard lock(m_mutex);
            m_told.push_back(told);
        }
        if (message == RRM_FILL_COMBO) {
            auto& items = *reinterpret_cast<CStringList*>(lParam);
            if (m_fillCombo) {
                items.AddTail(L"Branch");
                items.AddTail(L"Key");
                items.AddTail(L"Value");
            }
            return 1;
        }
        return 0;
    }
    return CDialogEx::WindowProc(message, wParam, lParam);
}

std::vector<ToldMessage> CControlsHost::TakeToldMessages() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_told, {});
}

std::vector<UINT> CControlsHost::TakeTold() {
    std::vector<UINT> numbers;
    for (const ToldMessage& told : TakeToldMessages()) {
        numbers.push_back(told.message);
    }
    return numbers;
}
