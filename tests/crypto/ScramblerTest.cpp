#include "crypto/Scrambler.h"

#include <gtest/gtest.h>

#include "crypto/PatternBytes.h"
#include "crypto/Vectors.h"

TEST(Scrambler, AgreesWithPassesDoneOneByOne) {
    auto buffer = PatternBuffer(13, 13);
    Scramble(buffer);
    EXPECT_EQ(Hex(buffer), kScrambledThirteen);
}

TEST(Scrambler, EveryLengthComesBackAndStaysWithinItsBounds) {
    for (size_t length = 0; length <= 2 * kScramblerBlockBytes + 9; ++length) {
        const auto original = PatternBuffer(length, length);
        auto buffer = original;
        Scramble(buffer);
        Unscramble(buffer);
        ASSERT_EQ(buffer, original) << length;
    }
}
