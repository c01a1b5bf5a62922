// What the tests of the records and of the exported class ask of a call.
#pragma once

#include <afx.h>

// Whether the call raises the invalid-argument exception.
template <class Call>
bool RaisesInvalidArgument(Call call) {
    try {
        call();
    } catch (CInvalidArgException* problem) {
        problem->Delete();
        return true;
    }
    return false;
}
