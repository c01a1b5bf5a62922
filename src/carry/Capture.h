// Puts what rules select into a registry file that every Windows imports:
//
//     const RegistryTarget target;
//     const CarryReport report = Capture(target, RuleSelection(rules, FoldKeyCase), L"C:\\settings.reg", {});
//
// Keys and values that are not there or cannot be read are told in the report, and the rest is captured. The memory
// does not grow with the registry.
#pragma once

#include "carry/CarryReport.h"
#include "carry/RegistryTarget.h"
#include "carry/RuleSelection.h"

struct CaptureOptions {
    bool replaceFile = false;  // an existing file is refused otherwise
    CarryProgressFunction progress{};
};

// The file is written beside its place and moved into it at the end, so it is whole or as it was. Throws
// CarryException.
CarryReport Capture(const RegistryTarget& target, const RuleSelection& selection, const std::wstring& file,
                    const CaptureOptions& options);
