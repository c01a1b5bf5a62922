// Reading a text whose length the source does not tell.
#pragma once

#include <string>

#include "framework/CString.h"

namespace afx {

// Calls `read(buffer, chars)` with growing buffers until what it returns, the number of characters put there without
// the terminator, shows that nothing was cut off.
template <typename Read>
CString GrowingText(Read read) {
    wchar_t small[256];
    int copied = read(small, static_cast<int>(std::size(small)));
    if (copied < static_cast<int>(std::size(small)) - 1) return CString(small, copied);
    std::wstring buffer(std::size(small), L'\0');
    while (copied >= static_cast<int>(buffer.size()) - 1) {
        buffer.resize(buffer.size() * 4);
        copied = read(buffer.data(), static_cast<int>(buffer.size()));
    }
    return CString(buffer.data(), copied);
}

}  // namespace afx
