// The text in UTF-8, for failure messages.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

inline std::string Narrow(std::wstring_view text) {
    std::string narrow(3 * text.size(), '\0');
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), narrow.data(),
                                          static_cast<int>(narrow.size()), nullptr, nullptr);
    return narrow.substr(0, static_cast<size_t>(bytes));
}
