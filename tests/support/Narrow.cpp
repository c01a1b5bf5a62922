#include "support/Narrow.h"

#include <windows.h>

std::string Narrow(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, narrow.data(), bytes, nullptr, nullptr);
    return narrow;
}
