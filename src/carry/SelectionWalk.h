// Goes through what rules select and shows each key and value.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "carry/CarryReport.h"
#include "carry/KeyAccess.h"
#include "carry/RegistryTarget.h"
#include "carry/RuleSelection.h"
#include "carry/ValueBuffer.h"

class RegistryVisitor {
public:
    virtual void OnKey(const std::wstring& path) = 0;  // with the long name of its hive; its values follow
    virtual void OnValue(const ValueBuffer& value) = 0;
    // What is left out. The rest goes on.
    virtual void OnNote(CarryNote note) = 0;

protected:
    ~RegistryVisitor() = default;
};

// Shows the part in the order in which the system enumerates: a key's values, then its subkeys, each with all below it.
// Memory grows with the depth of the registry and its largest value, not with the number of keys.
void WalkPart(const RegistryTarget& target, const SelectedPart& part, RegistryVisitor& visitor);

// Why the key or value that a rule names is not to be had, whatever lies below it; none when it is, and for a rule that
// selects nothing.
std::optional<CarryNote> FindMissing(const RegistryTarget& target, CarryRule rule);

// The same as WalkPart for one branch that lies at `place` and is called `path`.
void WalkBranch(const KeyPlace& place, const std::wstring& path, RegistryVisitor& visitor);
