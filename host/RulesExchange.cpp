#include "RulesExchange.h"

#include <algorithm>
#include <stdexcept>

#include "RulePositions.h"
#include "Utf8.h"
#include "rules/RegistryRulesCtrl.h"

namespace {

std::string ToText(const CString& text, bool& isExact) {
    const std::wstring_view view(text.GetString(), static_cast<std::size_t>(text.GetLength()));
    try {
        return ToUtf8(view);
    } catch (const std::runtime_error&) {
        isExact = false;
        return ToReadableUtf8(view);
    }
}

}  // namespace

void AddRules(CRegistryRulesCtrl& editor, const std::vector<HostRule>& rules) {
    for (const HostRule& rule : rules) {
        const std::wstring key = FromUtf8(rule.key);
        const short position = EditorPosition(rule.position);
        if (rule.kind == HostRuleKind::Value) {
            editor.AddValueRule(key.c_str(), FromUtf8(rule.value).c_str(), position);
        } else {
            editor.AddKeyRule(key.c_str(), rule.kind == HostRuleKind::Branch ? 1 : 0, position);
        }
    }
}

EditedRules ReadRules(CRegistryRulesCtrl& editor) {
    EditedRules edited;
    auto& [rules, isExact] = edited;
    CString key;
    long position = 0;
    int isBranch = 0;
    for (long index = 0; editor.GetKeyRule(index, key, &isBranch, &position) == 1; ++index) {
        rules.push_back({isBranch != 0 ? HostRuleKind::Branch : HostRuleKind::Key, ToText(key, isExact), "",
                         static_cast<int>(position)});
    }
    CString value;
    for (long index = 0; editor.GetValueRule(index, key, value, &position) == 1; ++index) {
        rules.push_back(
            {HostRuleKind::Value, ToText(key, isExact), ToText(value, isExact), static_cast<int>(position)});
    }
    std::stable_sort(rules.begin(), rules.end(),
                     [](const HostRule& left, const HostRule& right) { return left.position < right.position; });
    return edited;
}
