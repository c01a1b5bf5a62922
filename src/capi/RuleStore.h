// The rule sets behind the handles. A handle is a number that is never given out twice, so one that was closed or made
// up is told from one that is open.
#pragma once

#include <string>
#include <vector>

#include "capi/Guard.h"

struct KeyRuleEntry {
    std::wstring key;
    bool isBranch;
    short position;
};

struct ValueRuleEntry {
    std::wstring key;
    std::wstring value;
    short position;
};

struct RuleEntries {
    std::vector<KeyRuleEntry> keys;
    std::vector<ValueRuleEntry> values;
};

rr_rules OpenRules();
void CloseRules(rr_rules handle);

// The set, for as long as the lock lives, which all threads wait for. Throws StatusError when the handle is of none.
class LockedRules {
public:
    explicit LockedRules(rr_rules handle);
    ~LockedRules();
    LockedRules(const LockedRules&) = delete;
    LockedRules& operator=(const LockedRules&) = delete;

    RuleEntries& operator*() const { return *m_entries; }
    RuleEntries* operator->() const { return m_entries; }

private:
    RuleEntries* m_entries;
};
