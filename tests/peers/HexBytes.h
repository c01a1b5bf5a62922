// Bytes as text, as tests write and compare them.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

inline std::string ToHex(std::string_view bytes) {
    std::string hex;
    for (const char byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof(digits), "%02x", static_cast<unsigned char>(byte));
        hex += digits;
    }
    return hex;
}

// Blanks may stand between the bytes.
template <class Bytes = std::string>
Bytes FromHex(std::string_view hex) {
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += hex[i] == ' ' ? 1 : 2) {
        if (hex[i] == ' ') continue;
        bytes.push_back(static_cast<typename Bytes::value_type>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16)));
    }
    return bytes;
}
