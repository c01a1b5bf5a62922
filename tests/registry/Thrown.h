// What the registry layer throws.
#pragma once

#include "registry/RegistryException.h"
#include "support/Throws.h"

// The status of the CRegistryException that the function throws, or ERROR_SUCCESS when it throws none.
template <class Function>
DWORD StatusThrownBy(const Function& function) {
    DWORD status = ERROR_SUCCESS;
    Throws<CRegistryException>(function, [&](const CRegistryException& problem) { status = problem.GetStatus(); });
    return status;
}
