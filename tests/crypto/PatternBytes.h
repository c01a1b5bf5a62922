// Buffers and hexadecimal text as the vectors give them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

// Byte i is (31 i + i / 256) mod 256; `capacity` bytes are there, those behind `length` zero.
inline std::vector<uint8_t> PatternBuffer(size_t length, size_t capacity) {
    std::vector<uint8_t> buffer(capacity);
    for (size_t i = 0; i < length; ++i) buffer[i] = static_cast<uint8_t>(31 * i + i / 256);
    return buffer;
}

inline std::string Hex(std::span<const uint8_t> bytes) {
    std::string hex;
    for (const uint8_t byte : bytes) {
        hex += "0123456789abcdef"[byte >> 4];
        hex += "0123456789abcdef"[byte & 15];
    }
    return hex;
}
