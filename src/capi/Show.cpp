// The dialog, by the library's own class.
#include <windows.h>

#include <algorithm>
#include <atomic>

#include "capi/Arguments.h"
#include "capi/RuleStore.h"
#include "helpers/TextView.h"
#include "rules/RegistryRulesCtrl.h"

namespace {

std::atomic_flag g_isShown;

// The class has one set of rules for the process.
class OneDialog {
public:
    OneDialog() {
        if (g_isShown.test_and_set()) throw StatusError{RR_E_BUSY, "the dialog is open already"};
    }
    ~OneDialog() { g_isShown.clear(); }
    OneDialog(const OneDialog&) = delete;
    OneDialog& operator=(const OneDialog&) = delete;
};

// The dialog belongs to the active window of its thread.
void Activate(HWND owner) {
    if (owner == nullptr) return;
    if (GetWindowThreadProcessId(owner, nullptr) != GetCurrentThreadId()) {
        throw StatusError{RR_E_WINDOW, "the owner is no window of this thread"};
    }
    SetActiveWindow(GetAncestor(owner, GA_ROOT));
}

void HandIn(CRegistryRulesCtrl& editor, const RuleEntries& entries) {
    for (const KeyRuleEntry& rule : entries.keys) editor.AddKeyRule(rule.key.c_str(), rule.isBranch, rule.position);
    for (const ValueRuleEntry& rule : entries.values) {
        editor.AddValueRule(rule.key.c_str(), rule.value.c_str(), rule.position);
    }
}

// After an OK a position is a row; there may be more of them than the numbers that this interface takes.
short RowOf(long position) {
    return static_cast<short>(std::min(position, 32767L));
}

RuleEntries ReadBack(CRegistryRulesCtrl& editor) {
    RuleEntries entries;
    CString key;
    CString value;
    int isBranch = 0;
    long position = 0;
    for (long i = 0; editor.GetKeyRule(i, key, &isBranch, &position) == 1; ++i) {
        entries.keys.push_back({std::wstring(ViewOf(key)), isBranch != 0, RowOf(position)});
    }
    for (long i = 0; editor.GetValueRule(i, key, value, &position) == 1; ++i) {
        entries.values.push_back({std::wstring(ViewOf(key)), std::wstring(ViewOf(value)), RowOf(position)});
    }
    return entries;
}

}  // namespace

rr_status rr_show(rr_rules rules, void* owner, int32_t* answer) {
    return Guard([&] {
        RequirePointer(answer);
        const OneDialog one;
        const RuleEntries entries = *LockedRules(rules);
        Activate(static_cast<HWND>(owner));
        CRegistryRulesCtrl editor;
        HandIn(editor, entries);
        const bool isChanged = editor.Show() == 1;
        if (isChanged) *LockedRules(rules) = ReadBack(editor);
        *answer = isChanged ? RR_CHANGED : RR_UNCHANGED;
        return RR_OK;
    });
}
