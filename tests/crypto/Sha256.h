// Bytes and digests as the vectors give them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

// Byte i is (31 i + i / 256) mod 256; `capacity` bytes are there, those behind `length` zero.
std::vector<uint8_t> PatternBuffer(size_t length, size_t capacity);

std::string Hex(std::span<const uint8_t> bytes);

// Of the bytes, in hexadecimal, asked of the system without the code under test.
std::string Sha256(std::span<const uint8_t> bytes);
