#pragma once

#include <cstdint>
#include <span>
#include <string>

// Of the bytes, in hexadecimal, asked of the system without the code under test.
std::string Sha256(std::span<const uint8_t> bytes);
