// A scrambler over a fixed table. One pass over a block of up to 1024 bytes reverses it, turns each byte right by 3
// bits and XORs byte i with byte i of the table; a block is scrambled by three passes. It hides data from a glance and
// from nobody who has this program.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

constexpr size_t kScramblerBlockBytes = 1024;

// Made by scripts/make-scrambler-table, whose rule is documented there. Data that is stored anywhere depends on it.
extern const std::array<uint8_t, kScramblerBlockBytes> kScramblerTable;

// Scrambles in place, block by block: each block starts again at the table's first byte, and the last may be shorter.
void Scramble(std::span<uint8_t> buffer);

// The exact inverse of Scramble for a buffer of the same length.
void Unscramble(std::span<uint8_t> buffer);
