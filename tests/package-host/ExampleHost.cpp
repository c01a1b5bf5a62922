#include <registry-rules/RegistryRulesCtrl.h>

#include <cstdio>
#include <vector>

struct SavedRule {
    enum Kind { Branch, Key, Value } kind;
    CString key;
    CString value;  // of the kind Value; empty for the key's default value
    long position;
};

void HandIn(CRegistryRulesCtrl& editor, const std::vector<SavedRule>& rules) {
    for (const SavedRule& rule : rules) {
        const auto position = static_cast<short>(rule.position);
        if (rule.kind == SavedRule::Value) {
            editor.AddValueRule(rule.key, rule.value, position);
        } else {
            editor.AddKeyRule(rule.key, rule.kind == SavedRule::Branch, position);
        }
    }
}

std::vector<SavedRule> ReadBack(CRegistryRulesCtrl& editor) {
    std::vector<SavedRule> rules;
    CString key;
    CString value;
    int isBranch = 0;
    long position = 0;
    for (long i = 0; i < editor.GetKeyRuleCount(); ++i) {
        editor.GetKeyRule(i, key, &isBranch, &position);
        rules.push_back({isBranch ? SavedRule::Branch : SavedRule::Key, key, L"", position});
    }
    for (long i = 0; i < editor.GetValueRuleCount(); ++i) {
        editor.GetValueRule(i, key, value, &position);
        rules.push_back({SavedRule::Value, key, value, position});
    }
    return rules;
}

int main() {
    std::vector<SavedRule> rules{
        {SavedRule::Branch, L"HKCU\\Software\\Fernhollow", L"", 0},
        {SavedRule::Value, L"HKCU\\Environment", L"TEMP", 1},
    };
    try {
        CRegistryRulesCtrl editor;
        HandIn(editor, rules);
        if (editor.Show() == 1) rules = ReadBack(editor);
    } catch (CException* problem) {
        problem->Delete();
        std::puts("The rule editor failed.");
        return 1;
    }
    for (const SavedRule& rule : rules) {
        std::printf("%ld: %ls %ls\n", rule.position, rule.key.GetString(), rule.value.GetString());
    }
    return 0;
}
