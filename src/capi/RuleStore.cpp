#include "capi/RuleStore.h"

#include <mutex>
#include <unordered_map>

namespace {

struct Store {
    std::mutex mutex;
    std::unordered_map<std::uintptr_t, RuleEntries> sets;
    // Not near zero, where the small numbers of a caller's mistake lie.
    std::uintptr_t last = 0x52520000;
};

// Never destroyed: a host may call while the process ends.
Store& TheStore() {
    static Store& store = *new Store;
    return store;
}

std::uintptr_t NumberOf(rr_rules handle) {
    return reinterpret_cast<std::uintptr_t>(handle);
}

[[noreturn]] void RefuseHandle() {
    throw StatusError{RR_E_HANDLE, "this is not the handle of an open rule set"};
}

}  // namespace

rr_rules OpenRules() {
    Store& store = TheStore();
    const std::lock_guard lock(store.mutex);
    store.sets.try_emplace(++store.last);
    return reinterpret_cast<rr_rules>(store.last);
}

void CloseRules(rr_rules handle) {
    Store& store = TheStore();
    const std::lock_guard lock(store.mutex);
    if (store.sets.erase(NumberOf(handle)) == 0) RefuseHandle();
}

LockedRules::LockedRules(rr_rules handle) {
    Store& store = TheStore();
    std::unique_lock lock(store.mutex);
    const auto found = store.sets.find(NumberOf(handle));
    if (found == store.sets.end()) RefuseHandle();
    m_entries = &found->second;
    lock.release();
}

LockedRules::~LockedRules() {
    TheStore().mutex.unlock();
}
