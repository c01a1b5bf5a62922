// Goes through what rules select and shows each key and value.
#pragma once

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

// The same for one branch that lies at `place` and is called `path`.
void WalkBranch(const KeyPlace& place, const std::wstring& path, RegistryVisitor& visitor);
