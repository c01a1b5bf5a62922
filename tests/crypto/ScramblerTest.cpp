#include "crypto/Scrambler.h"

#include <gtest/gtest.h>
#include <vector>

#include "crypto/Vectors.h"

TEST(Scrambler, AgreesWithPassesDoneOneByOne) {
    std::vector<uint8_t> buffer(13);
    for (size_t i = 0; i < buffer.size(); ++i) buffer[i] = static_cast<uint8_t>(31 * i);
    Scramble(buffer);
    std::string hex;
    for (const uint8_t byte : buffer) {
        hex += "0123456789abcdef"[byte >> 4];
        hex += "0123456789abcdef"[byte & 15];
    }
    EXPECT_EQ(hex, kScrambledThirteen);
}

TEST(Scrambler, EveryLengthComesBackAndStaysWithinItsBounds) {
    for (size_t length = 0; length <= 2 * kScramblerBlockBytes + 9; ++length) {
        std::vector<uint8_t> original(length);
        for (size_t i = 0; i < length; ++i) original[i] = static_cast<uint8_t>(i * i + length);
        std::vector<uint8_t> buffer = original;
        Scramble(buffer);
        Unscramble(buffer);
        ASSERT_EQ(buffer, original) << length;
    }
}
