#include "crypto/Scrambler.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

using Block = std::array<uint8_t, kScramblerBlockBytes>;

// Three passes in one: two of the three reversals cancel out, the turns add up to 9 bits, which is 1, and what the
// table contributes to each place depends on the block's length alone. Doing the passes one by one takes four times as
// long.
Block MaskOf(size_t bytes) {
    Block mask{};
    for (size_t i = 0; i < bytes; ++i) {
        const uint8_t here = kScramblerTable[i];
        const uint8_t mirrored = kScramblerTable[bytes - 1 - i];
        mask[i] = static_cast<uint8_t>(std::rotr(here, 6) ^ std::rotr(mirrored, 3) ^ here);
    }
    return mask;
}

constexpr uint64_t kLowBits = 0x0101010101010101;

uint64_t LoadWord(const uint8_t* bytes) {
    uint64_t word;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
}

void StoreWord(uint8_t* bytes, uint64_t word) {
    std::memcpy(bytes, &word, sizeof(word));
}

uint64_t TurnBytesRight(uint64_t word) {
    return (word >> 1 & ~(kLowBits << 7)) | (word & kLowBits) << 7;
}

uint64_t TurnBytesLeft(uint64_t word) {
    return (word & ~(kLowBits << 7)) << 1 | (word >> 7 & kLowBits);
}

void ScrambleBlock(std::span<uint8_t> block, const Block& mask) {
    Block work;
    const size_t bytes = block.size();
    size_t i = 0;
    for (; i + sizeof(uint64_t) <= bytes; i += sizeof(uint64_t)) {
        const uint64_t word = __builtin_bswap64(LoadWord(&block[bytes - sizeof(uint64_t) - i]));
        StoreWord(&work[i], TurnBytesRight(word) ^ LoadWord(&mask[i]));
    }
    for (; i < bytes; ++i) work[i] = static_cast<uint8_t>(std::rotr(block[bytes - 1 - i], 1) ^ mask[i]);
    std::copy_n(work.begin(), bytes, block.begin());
}

void UnscrambleBlock(std::span<uint8_t> block, const Block& mask) {
    Block work;
    const size_t bytes = block.size();
    size_t i = 0;
    for (; i + sizeof(uint64_t) <= bytes; i += sizeof(uint64_t)) {
        const uint64_t word = TurnBytesLeft(LoadWord(&block[i]) ^ LoadWord(&mask[i]));
        StoreWord(&work[bytes - sizeof(uint64_t) - i], __builtin_bswap64(word));
    }
    for (; i < bytes; ++i) work[bytes - 1 - i] = std::rotl(static_cast<uint8_t>(block[i] ^ mask[i]), 1);
    std::copy_n(work.begin(), bytes, block.begin());
}

template <class Transform>
void ForEachBlock(std::span<uint8_t> buffer, Transform transform) {
    if (buffer.size() >= kScramblerBlockBytes) {
        const Block mask = MaskOf(kScramblerBlockBytes);
        for (; buffer.size() >= kScramblerBlockBytes; buffer = buffer.subspan(kScramblerBlockBytes)) {
            transform(buffer.first(kScramblerBlockBytes), mask);
        }
    }
    if (!buffer.empty()) transform(buffer, MaskOf(buffer.size()));
}

}  // namespace

void Scramble(std::span<uint8_t> buffer) {
    ForEachBlock(buffer, ScrambleBlock);
}

void Unscramble(std::span<uint8_t> buffer) {
    ForEachBlock(buffer, UnscrambleBlock);
}
