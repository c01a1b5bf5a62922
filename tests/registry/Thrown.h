// What the registry layer throws.
#pragma once

#include "registry/RegistryException.h"

// The status of the CRegistryException that the function throws, or ERROR_SUCCESS when it throws none.
template <class Function>
DWORD StatusThrownBy(Function function) {
    try {
        function();
    } catch (CRegistryException* problem) {
        const DWORD status = problem->GetStatus();
        problem->Delete();
        return status;
    }
    return ERROR_SUCCESS;
}
