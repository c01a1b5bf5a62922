// Exceptions on the heap, seen and ended.
#pragma once

#include <afx.h>

#include <functional>

// Whether `work` throws an exception of the class; `see` looks at it.
template <class Exception, class Work>
bool Throws(const Work& work, const std::function<void(const Exception&)>& see = [](const Exception&) {}) {
    try {
        work();
    } catch (Exception* problem) {
        see(*problem);
        problem->Delete();
        return true;
    }
    return false;
}
