// The new-rule strip: three controls above the list in which a rule is typed.
#include "dialog/KindNames.h"
#include "dialog/RegistryRulesDlg.h"
#include "dialog/StripRules.h"
#include "entry/HiveText.h"

bool CRegistryRulesDlg::IsStripAtRest() const {
    return ::IsStripAtRest(ViewOf(m_newKey), ViewOf(LoadResourceString(IDS_WATERMARK)));
}

bool CRegistryRulesDlg::ResetStrip() {
    UpdateData(TRUE);
    if (!IsStripAtRest()) m_newValue.Empty();
    m_keyEdit.SetTextColor(WATERMARK_COLOR);
    m_newKey = LoadResourceString(IDS_WATERMARK);
    UpdateData(FALSE);
    return true;
}

void CRegistryRulesDlg::SelectDefaultType() {
    m_typeCombo.SetCurSel(branchIndex);
}

bool CRegistryRulesDlg::CommitStrip() {
    UpdateData(TRUE);
    m_newKey.Trim(L' ');
    if (!IsStripAtRest()) {
        // The check reads the box itself: a leading blank makes an unknown hive there.
        if (m_keyEdit.ValidateKey() != KEY_OK) return false;
        const CString key = NormaliseAbbreviation(AbbreviateHive(m_newKey));
        if (m_newValue.IsEmpty() && m_typeCombo.GetCurSel() == valueIndex)
            m_newValue = LoadResourceString(IDS_DEFAULT_VALUE);
        InsertRuleRow(0, m_newType, key, m_newValue, 0, LVIS_SELECTED);
    }
    UpdateDeleteButton();
    return true;
}

void CRegistryRulesDlg::OnStripEnter() {
    UpdateData(TRUE);
    m_newKey.Trim(L' ');
    m_newValue.Trim(L' ');
    const CWnd* focused = GetFocus();
    const StripFocus focus = focused == &m_keyEdit     ? StripFocus::KeyBox
                             : focused == &m_valueEdit ? StripFocus::ValueBox
                                                       : StripFocus::Elsewhere;
    const StripReturn action = DecideStripReturn(focus, ViewOf(m_newKey), ViewOf(LoadResourceString(IDS_WATERMARK)));
    if (action.focusKeyBox) m_keyEdit.SetFocus();
    if (action.clearKeyBox) {
        m_newKey.Empty();
        UpdateData(FALSE);
    }
    if (!action.commit || !CommitStrip()) return;
    m_newKey.Empty();
    m_newValue.Empty();
    UpdateData(FALSE);
}

void CRegistryRulesDlg::OnStripTab() {
    const CWnd* focus = GetFocus();
    if (focus == &m_keyEdit)
        m_valueEdit.SetFocus();
    else if (focus == &m_valueEdit)
        m_ruleList.SetFocus();
}

void CRegistryRulesDlg::OnStripBackTab() {
    const CWnd* focus = GetFocus();
    if (focus == &m_keyEdit)
        m_typeCombo.SetFocus();
    else if (focus == &m_valueEdit)
        m_keyEdit.SetFocus();
}

void CRegistryRulesDlg::OnTypeFrameClicked() {}

// The text of the value box is selected whichever of the two boxes gets the focus.
void CRegistryRulesDlg::OnStripSetFocus() {
    DisableDeleteButton();
    m_valueEdit.SetSel(0, -1);
}

void CRegistryRulesDlg::OnKeyKillFocus() {
    UpdateData(TRUE);
    m_newKey.TrimLeft();
    if (IsStripAtRest()) ResetStrip();
}

void CRegistryRulesDlg::OnValueChange() {
    UpdateData(TRUE);
    m_newValue.Trim(L' ');
    m_typeCombo.SetCurSel(KindIndexForValue(ViewOf(m_newValue), m_savedTypeIndex));
}

void CRegistryRulesDlg::OnTypeSelChange() {
    UpdateData(TRUE);
    const int selected = m_typeCombo.GetCurSel();
    if (!IsRememberedKind(selected)) return;
    m_savedTypeIndex = selected;
    m_newValue.Empty();
    UpdateData(FALSE);
}

LRESULT CRegistryRulesDlg::OnStripEnterMessage(WPARAM, LPARAM) {
    OnStripEnter();
    return 0;
}

LRESULT CRegistryRulesDlg::OnStripTabMessage(WPARAM, LPARAM) {
    OnStripTab();
    return 0;
}

LRESULT CRegistryRulesDlg::OnStripBackTabMessage(WPARAM, LPARAM) {
    OnStripBackTab();
    return 0;
}
