// Owns a handle that CloseHandle closes.
#pragma once

#include <windows.h>

#include <memory>

struct HandleCloser {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using UniqueHandle = std::unique_ptr<void, HandleCloser>;

// Empty for null and for INVALID_HANDLE_VALUE, so that one test serves all calls that make handles.
inline UniqueHandle MakeUniqueHandle(HANDLE handle) {
    return UniqueHandle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}
