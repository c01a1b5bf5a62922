#include "RulesExchange.h"

#include <algorithm>
#include <limits>

#include "Utf8.h"
#include "rules/RegistryRulesCtrl.h"

namespace {

short ToShort(int position) {
    using Limits = std::numeric_limits<short>;
    return static_cast<short>(std::clamp<int>(position, Limits::min(), Limits::max()));
}

std::string ToText(const CString& text) {
    return ToUtf8({text.GetString(), static_cast<std::size_t>(text.GetLength())});
}

}  // namespace

void AddRules(CRegistryRulesCtrl& editor, const std::vector<HostRule>& rules) {
    for (const HostRule& rule : rules) {
        const std::wstring key = FromUtf8(rule.key);
        if (rule.kind == HostRuleKind::Value) {
            editor.AddValueRule(key.c_str(), FromUtf8(rule.value).c_str(), ToShort(rule.position));
        } else {
            editor.AddKeyRule(key.c_str(), rule.kind == HostRuleKind::Branch ? 1 : 0, ToShort(rule.position));
        }
    }
}

std::vector<HostRule> ReadRules(CRegistryRulesCtrl& editor) {
    std::vector<HostRule> rules;
    CString key;
    long position = 0;
    int isBranch = 0;
    for (long index = 0; editor.GetKeyRule(index, key, &isBranch, &position) == 1; ++index) {
        rules.push_back(
            {isBranch != 0 ? HostRuleKind::Branch : HostRuleKind::Key, ToText(key), "", static_cast<int>(position)});
    }
    CString value;
    for (long index = 0; editor.GetValueRule(index, key, value, &position) == 1; ++index) {
        rules.push_back({HostRuleKind::Value, ToText(key), ToText(value), static_cast<int>(position)});
    }
    std::stable_sort(rules.begin(), rules.end(),
                     [](const HostRule& left, const HostRule& right) { return left.position < right.position; });
    return rules;
}
