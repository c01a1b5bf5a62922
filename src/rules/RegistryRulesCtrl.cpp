#include "rules/RegistryRulesCtrl.h"

#include <new>

#include "dialog/RegistryRulesDlg.h"
#include "dialog/Rule.h"
#include "helpers/ResourceString.h"
#include "resources/resource.h"

CRegistryRulesCtrl::CRegistryRulesCtrl() : m_dialog(nullptr) {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    // cppcheck-suppress noOperatorEq ; the shallow copy below is what the interface promises
    m_dialog = new CRegistryRulesDlg(nullptr);
}

CRegistryRulesCtrl::~CRegistryRulesCtrl() {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    if (m_dialog == nullptr) return;
    m_dialog->ClearRules();
    delete m_dialog;
}

// A shallow copy that also leaks the own dialog: that is what the interface promises.
CRegistryRulesCtrl& CRegistryRulesCtrl::operator=(const CRegistryRulesCtrl& other) = default;

int CRegistryRulesCtrl::AddKeyRule(const wchar_t* key, int isBranch, short position) {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    m_dialog->AddKeyRecord(::new (std::nothrow) CKeyRule(CString(key), isBranch, position));
    return 1;
}

int CRegistryRulesCtrl::AddValueRule(const wchar_t* key, const wchar_t* value, short position) {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    CString name(value);
    if (name.IsEmpty()) name = LoadResourceString(IDS_DEFAULT_VALUE);
    m_dialog->AddValueRecord(::new (std::nothrow) CValueRule(CString(key), name, position));
    return 1;
}

long CRegistryRulesCtrl::GetKeyRuleCount() {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    return m_dialog->KeyRuleCount();
}

long CRegistryRulesCtrl::GetValueRuleCount() {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    return m_dialog->ValueRuleCount();
}

int CRegistryRulesCtrl::GetKeyRule(long index, CString& key, int* isBranch, long* position) {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    const int count = m_dialog->KeyRuleCount();
    if (index > count - 1 || count == 0) return 0;
    const CKeyRule* rule = m_dialog->KeyRuleAt(index);
    if (rule == nullptr) return 0;
    key = rule->GetKey();
    *isBranch = rule->IsBranch();
    *position = rule->GetPosition();
    return 1;
}

int CRegistryRulesCtrl::GetValueRule(long index, CString& key, CString& value, long* position) {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    const int count = m_dialog->ValueRuleCount();
    if (index > count - 1 || count == 0) return 0;
    const CValueRule* rule = m_dialog->ValueRuleAt(index);
    if (rule == nullptr) return 0;
    CString name = rule->GetValue();
    if (name.CompareNoCase(LoadResourceString(IDS_DEFAULT_VALUE)) == 0) name.Empty();
    key = rule->GetKey();
    value = name;
    *position = rule->GetPosition();
    return 1;
}

long CRegistryRulesCtrl::Show() {
    AFX_MANAGE_STATE(AfxGetStaticModuleState());
    m_dialog->DoModal();
    if (m_dialog->GetResultCode() != RULES_RESULT_OK) return 0;
    return m_dialog->IsDirty() == 0 ? 0 : 1;
}
