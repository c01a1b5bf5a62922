// The edge that nothing thrown crosses: what fails becomes a status, and a text for rr_last_error.
#pragma once

#include <string>
#include <string_view>

#include "registry_rules.h"

// What an argument does wrong, thrown by value below Guard.
struct StatusError {
    rr_status status;
    const char* text;
};

// Calls the function, which gives a status. To be called in a handler: FailureOf gives the status of what was thrown
// and keeps its text for this thread.
rr_status FailureOf() noexcept;
std::wstring_view LastError();

template <class Function>
rr_status Guard(Function function) noexcept {
    try {
        return function();
    } catch (...) {
        return FailureOf();
    }
}
