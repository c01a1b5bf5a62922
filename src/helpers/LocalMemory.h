// Owns memory that the system has handed out and that LocalFree takes back.
#pragma once

#include <windows.h>

#include <memory>

struct LocalMemoryCloser {
    void operator()(void* memory) const { LocalFree(memory); }
};
template <class T>
using LocalMemory = std::unique_ptr<T, LocalMemoryCloser>;
