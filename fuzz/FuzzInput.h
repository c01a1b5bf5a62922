// Turning the bytes of the fuzzer into what decisions take.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

// Two bytes, the lower first, make a UTF-16 unit; an odd byte at the end is left out.
inline std::wstring Utf16Units(const std::uint8_t* data, std::size_t size) {
    std::wstring text;
    for (std::size_t i = 0; i + 1 < size; i += 2) text += static_cast<wchar_t>(data[i] | data[i + 1] << 8);
    return text;
}

// Ends the run with the input when something that must hold does not.
inline void Require(bool holds) {
    if (!holds) std::abort();
}
