// Exceptions on the heap, seen and ended.
#pragma once

#include <afx.h>

// Whether `work` throws an exception of the class; `see` looks at it.
template <class Exception, class Work, class See>
bool Throws(Work work, See see) {
    try {
        work();
    } catch (Exception* problem) {
        see(*problem);
        problem->Delete();
        return true;
    }
    return false;
}

template <class Exception, class Work>
bool Throws(Work work) {
    return Throws<Exception>(work, [](const Exception&) {});
}
