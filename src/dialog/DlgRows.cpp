// The rows of the rules list: made from the sets, inserted, kept in step, deleted, and made into sets again.
#include "controls/ScopedRedrawOff.h"
#include "dialog/KindNames.h"
#include "dialog/LoadedRows.h"
#include "dialog/RegistryRulesDlg.h"
#include "dialog/Rule.h"
#include "entry/HiveText.h"

namespace {
// Pixels, whatever the scale of the display.
constexpr int typeWidth = 61;
constexpr int keyWidth = 373;
constexpr int valueWidth = 95;
}  // namespace

void CRegistryRulesDlg::InitRuleList() {
    {
        const ScopedRedrawOff redrawOff(m_ruleList);
        InsertColumns();
        FillRuleList();
    }
    // Each row that went in has marked the dialog dirty.
    m_dirty = 0;
    m_ruleList.BringWindowToTop();
}

void CRegistryRulesDlg::InsertColumns() {
    m_ruleList.SetExtendedStyle(m_ruleList.GetExtendedStyle() | LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT);
    m_ruleList.InsertColumn(typeColumn, LoadResourceString(IDS_COLUMN_TYPE), LVCFMT_CENTER, typeWidth);
    m_ruleList.InsertColumn(keyColumn, LoadResourceString(IDS_COLUMN_KEY), LVCFMT_LEFT, keyWidth);
    m_ruleList.InsertColumn(valueColumn, LoadResourceString(IDS_KIND_VALUE), LVCFMT_LEFT, valueWidth);
    m_ruleList.SetComboColumns(typeColumn, true);
    m_ruleList.SetReadOnlyColumns(typeColumn, true);
    m_ruleList.SetValidEditCtrlCharacters(CString());
}

void CRegistryRulesDlg::FillRuleList() {
    const KindNames kinds;
    LoadedRows rows(KeyRuleCount() + ValueRuleCount());
    for (int i = 0; i < KeyRuleCount(); ++i) {
        const CKeyRule& rule = *KeyRuleAt(i);
        rows.Add(rule.IsBranch() != 0 ? kinds.branch : kinds.key, AbbreviateHive(rule.GetKey()), CString(),
                 rule.GetPosition());
    }
    for (int i = 0; i < ValueRuleCount(); ++i) {
        const CValueRule& rule = *ValueRuleAt(i);
        rows.Add(kinds.value, AbbreviateHive(rule.GetKey()), rule.GetValue(), rule.GetPosition());
    }
    int end = 0;
    for (const LoadedRows::Row* row : rows.InFinalOrder())
        PutRow(end++, *row->kind, row->key, row->value, row->position);
}

bool CRegistryRulesDlg::InsertRuleRow(int row, const CString& type, const CString& key, const CString& value,
                                      int itemData, int state) {
    const auto isEqual = [&](int i) {
        return m_ruleList.GetItemText(i, keyColumn).CompareNoCase(key) == 0 &&
               m_ruleList.GetItemText(i, valueColumn).CompareNoCase(value) == 0 &&
               m_ruleList.GetItemText(i, typeColumn) == type;
    };
    const auto deleteRow = [&](int i) { m_ruleList.DeleteItem(i); };
    row = PutRow(DeleteEqualRows(m_ruleList.GetItemCount(), row, isEqual, deleteRow), type, key, value, itemData);
    if (state != 0) m_ruleList.SetItemState(row, static_cast<UINT>(state), static_cast<UINT>(state));
    return true;
}

int CRegistryRulesDlg::PutRow(int row, const CString& type, const CString& key, const CString& value, int itemData) {
    // The number goes in with the row: set afterwards, the list would report every row as changed once more.
    const int at = m_ruleList.InsertItem(LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM, row, type, 0, 0, 0, itemData);
    m_ruleList.SetItemText(at, keyColumn, key);
    m_ruleList.SetItemText(at, valueColumn, value);
    return at;
}

void CRegistryRulesDlg::HarvestRules() {
    ClearRules();
    const KindNames kinds;
    const int count = m_ruleList.GetItemCount();
    for (int i = 0; i < count; ++i) {
        CString key = m_ruleList.GetItemText(i, keyColumn);
        ExpandHive(key);
        const RuleKind kind = KindOfCell(ViewOf(m_ruleList.GetItemText(i, typeColumn)), kinds.Texts());
        if (kind == RuleKind::Branch || kind == RuleKind::Key)
            AddKeyRecord(new CKeyRule(key, kind == RuleKind::Branch ? 1 : 0, i));
        else if (kind == RuleKind::Value)
            AddValueRecord(new CValueRule(key, m_ruleList.GetItemText(i, valueColumn), i));
    }
}

void CRegistryRulesDlg::OnCellChanged(int item, int subItem) {
    const KindNames kinds;
    const CString type = m_ruleList.GetItemText(item, typeColumn);
    const CString value = m_ruleList.GetItemText(item, valueColumn);
    const CString defaultValue = LoadResourceString(IDS_DEFAULT_VALUE);
    const CellFollowUp followUp =
        FollowCellChange(subItem, ViewOf(type), ViewOf(value), kinds.Texts(), ViewOf(defaultValue));
    if (followUp.column == -1) return;
    m_ruleList.SetItemText(item, followUp.column, TextOf(followUp.text));
    if (followUp.edit) m_ruleList.EditCell(item, followUp.column);
}

void CRegistryRulesDlg::OnFillCombo(int column, CStringList& strings) {
    strings.RemoveAll();
    const CWnd* focus = GetFocus();
    if (focus == nullptr || column != typeColumn) return;
    CRect focusRect;
    focus->GetWindowRect(&focusRect);
    CRect listRect;
    m_ruleList.GetWindowRect(&listRect);
    if (!listRect.PtInRect(focusRect.TopLeft())) return;
    const KindNames kinds;
    for (const CString& kind : {kinds.branch, kinds.key, kinds.value}) strings.AddTail(kind);
}

void CRegistryRulesDlg::DeleteSelectedRule() {
    m_dirty = 1;
    const int count = m_ruleList.GetItemCount();
    if (count == 1) DisableDeleteButton();
    const int selected = FirstSelectedRow();
    if (selected != -1) m_ruleList.DeleteItem(selected);
    const int next = RowAfterDeletion(selected != -1 ? selected : count, m_ruleList.GetItemCount());
    m_ruleList.SetItemState(next, LVIS_SELECTED, LVIS_SELECTED);
    m_ruleList.EnsureVisible(next, FALSE);
    if (m_ruleList.GetItemCount() == 0) DisableDeleteButton();
}

int CRegistryRulesDlg::FirstSelectedRow() {
    return m_ruleList.GetNextItem(-1, LVNI_SELECTED);
}

void CRegistryRulesDlg::UpdateDeleteButton() {
    if (FirstSelectedRow() != -1)
        EnableDeleteButton();
    else
        DisableDeleteButton();
}

void CRegistryRulesDlg::EnableDeleteButton() {
    m_deleteButton.EnableWindow(TRUE);
    m_deleteButton.ModifyStyle(0, WS_TABSTOP);
}

// Tabbing must not land on a dead button.
void CRegistryRulesDlg::DisableDeleteButton() {
    m_deleteButton.EnableWindow(FALSE);
    m_deleteButton.ModifyStyle(WS_TABSTOP, 0);
}

void CRegistryRulesDlg::OnListSetFocus(NMHDR*, LRESULT* result) {
    if (FirstSelectedRow() != -1) EnableDeleteButton();
    *result = 0;
}

// The tab stop is left alone here, unlike everywhere else.
void CRegistryRulesDlg::OnListItemChanged(NMHDR*, LRESULT* result) {
    m_deleteButton.EnableWindow(m_ruleList.GetSelectedCount() != 0);
    *result = 0;
}

void CRegistryRulesDlg::OnListSelectionMayChange(NMHDR*, LRESULT* result) {
    UpdateDeleteButton();
    *result = 0;
}

void CRegistryRulesDlg::OnListIgnored(NMHDR*, LRESULT* result) {
    *result = 0;
}

// While no row is selected the button is disabled for a moment, or for good, and a disabled window that has the focus
// leaves the keyboard dead.
void CRegistryRulesDlg::OnDeleteRule() {
    const bool hadFocus = GetFocus() == &m_deleteButton;
    DeleteSelectedRule();
    if (!hadFocus) return;
    if (m_deleteButton.IsWindowEnabled())
        m_deleteButton.SetFocus();
    else
        m_ruleList.SetFocus();
}

LRESULT CRegistryRulesDlg::OnListDelete(WPARAM, LPARAM) {
    DeleteSelectedRule();
    return 0;
}

LRESULT CRegistryRulesDlg::OnListKeyUp(WPARAM, LPARAM) {
    UpdateDeleteButton();
    return 0;
}

LRESULT CRegistryRulesDlg::OnCellChangedMessage(WPARAM, LPARAM displayInfo) {
    const LVITEMW& item = reinterpret_cast<const NMLVDISPINFOW*>(displayInfo)->item;
    OnCellChanged(item.iItem, item.iSubItem);
    return 0;
}

LRESULT CRegistryRulesDlg::OnFillComboMessage(WPARAM column, LPARAM strings) {
    OnFillCombo(static_cast<int>(column), *reinterpret_cast<CStringList*>(strings));
    return 1;
}
