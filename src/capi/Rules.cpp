// Rule sets, errors, and the facts of the system.
#include <mutex>

#include "capi/Arguments.h"
#include "capi/RuleStore.h"
#include "files/PathVariables.h"
#include "helpers/TextView.h"
#include "profiles/ProfilePathHelper.h"
#include "registry/WindowsVersion.h"

namespace {

short TakePosition(std::int32_t position) {
    if (position < 0 || position > 32767) throw StatusError{RR_E_ARGUMENT, "a position is from 0 to 32767"};
    return static_cast<short>(position);
}

template <class Entries>
const auto& At(const Entries& entries, std::size_t index) {
    if (index >= entries.size()) throw StatusError{RR_E_INDEX, "there is no such rule"};
    return entries[index];
}

template <class Value>
void PutIfWanted(std::int32_t* to, Value value) {
    if (to != nullptr) *to = value;
}

// The toolkit's facts are for one thread at a time.
std::mutex& FactsMutex() {
    static std::mutex& mutex = *new std::mutex;
    return mutex;
}

template <class Ask>
rr_status PutFact(wchar_t* buffer, size_t capacity, size_t* length, Ask ask) {
    return Guard([&] {
        RequirePointer(length);
        const std::lock_guard lock(FactsMutex());
        const CString text = ask();
        return PutText({ViewOf(text), buffer, capacity, length});
    });
}

}  // namespace

uint32_t rr_api_version(void) {
    return RR_API_VERSION;
}

rr_status rr_last_error(wchar_t* buffer, size_t capacity, size_t* length) {
    return Guard([&] { return PutText({LastError(), buffer, capacity, length}); });
}

rr_status rr_rules_create(rr_rules* rules) {
    return Guard([&] {
        RequirePointer(rules);
        *rules = OpenRules();
        return RR_OK;
    });
}

rr_status rr_rules_close(rr_rules rules) {
    return Guard([&] {
        CloseRules(rules);
        return RR_OK;
    });
}

rr_status rr_rules_clear(rr_rules rules) {
    return Guard([&] {
        *LockedRules(rules) = {};
        return RR_OK;
    });
}

rr_status rr_rules_add_key(rr_rules rules, const wchar_t* key, size_t key_length, int32_t is_branch, int32_t position) {
    return Guard([&] {
        KeyRuleEntry rule{TakeText(key, key_length, kLongestPath), is_branch != 0, TakePosition(position)};
        LockedRules(rules)->keys.push_back(std::move(rule));
        return RR_OK;
    });
}

rr_status rr_rules_add_value(rr_rules rules, const wchar_t* key, size_t key_length, const wchar_t* value,
                             size_t value_length, int32_t position) {
    return Guard([&] {
        ValueRuleEntry rule{TakeText(key, key_length, kLongestPath), TakeText(value, value_length, kLongestValueName),
                            TakePosition(position)};
        LockedRules(rules)->values.push_back(std::move(rule));
        return RR_OK;
    });
}

rr_status rr_rules_count(rr_rules rules, size_t* keys, size_t* values) {
    return Guard([&] {
        RequirePointer(keys);
        RequirePointer(values);
        const LockedRules entries(rules);
        *keys = entries->keys.size();
        *values = entries->values.size();
        return RR_OK;
    });
}

rr_status rr_rules_get_key(rr_rules rules, size_t index, wchar_t* key, size_t key_capacity, size_t* key_length,
                           int32_t* is_branch, int32_t* position) {
    return Guard([&] {
        const LockedRules entries(rules);
        const KeyRuleEntry& rule = At(entries->keys, index);
        const rr_status status = PutText({rule.key, key, key_capacity, key_length});
        if (status != RR_OK) return status;
        PutIfWanted(is_branch, rule.isBranch ? 1 : 0);
        PutIfWanted(position, rule.position);
        return status;
    });
}

rr_status rr_rules_get_value(rr_rules rules, size_t index, wchar_t* key, size_t key_capacity, size_t* key_length,
                             wchar_t* value, size_t value_capacity, size_t* value_length, int32_t* position) {
    return Guard([&]() -> rr_status {
        const LockedRules entries(rules);
        const ValueRuleEntry& rule = At(entries->values, index);
        const Output outputs[] = {{rule.key, key, key_capacity, key_length},
                                  {rule.value, value, value_capacity, value_length}};
        for (const Output& output : outputs) output.Check();
        const bool hasKey = outputs[0].Measure();
        if (!outputs[1].Measure() || !hasKey) return RR_E_BUFFER;
        for (const Output& output : outputs) output.Put();
        PutIfWanted(position, rule.position);
        return RR_OK;
    });
}

rr_status rr_windows_version(rr_version* version) {
    return Guard([&] {
        RequirePointer(version);
        CheckOutput(version);
        const std::lock_guard lock(FactsMutex());
        const SystemVersion facts = CWindowsVersion::GetVersion();
        PutStruct(version, {.size = 0,
                            .major = facts.major,
                            .minor = facts.minor,
                            .build = facts.build,
                            .is_server = facts.IsServer() ? 1 : 0});
        return RR_OK;
    });
}

rr_status rr_expand_path(const wchar_t* path, size_t path_length, wchar_t* buffer, size_t capacity, size_t* length) {
    return PutFact(buffer, capacity, length,
                   [&] { return ExpandPath(TextOf(TakeText(path, path_length, kLongestPath))); });
}

rr_status rr_profile_path(const wchar_t* sid, size_t sid_length, wchar_t* buffer, size_t capacity, size_t* length) {
    return PutFact(buffer, capacity, length, [&] {
        const std::wstring text = TakeText(sid, sid_length, kLongestPath);
        return text.empty() ? CProfilePathHelper::GetCurrentProfilePath()
                            : CProfilePathHelper::GetLocalProfilePath(TextOf(text));
    });
}
