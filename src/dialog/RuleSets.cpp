// One pair of sets serves every control of the process, so the sets are static although the dialog object offers them.
#include "dialog/RegistryRulesDlg.h"
#include "dialog/Rule.h"
#include "dialog/RuleSet.h"

RuleSet<CKeyRule> CRegistryRulesDlg::s_keyRules;
RuleSet<CValueRule> CRegistryRulesDlg::s_valueRules;

int CRegistryRulesDlg::AddKeyRecord(CKeyRule* rule) {
    return s_keyRules.Add(rule);
}

int CRegistryRulesDlg::AddValueRecord(CValueRule* rule) {
    return s_valueRules.Add(rule);
}

int CRegistryRulesDlg::KeyRuleCount() {
    return s_keyRules.Count();
}

int CRegistryRulesDlg::ValueRuleCount() {
    return s_valueRules.Count();
}

CKeyRule* CRegistryRulesDlg::KeyRuleAt(int index) {
    return s_keyRules.At(index);
}

CValueRule* CRegistryRulesDlg::ValueRuleAt(int index) {
    return s_valueRules.At(index);
}

void CRegistryRulesDlg::ClearRules() {
    s_keyRules.Clear();
    s_valueRules.Clear();
}
