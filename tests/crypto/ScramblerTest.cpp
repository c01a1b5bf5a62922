#include "crypto/Scrambler.h"

#include <gtest/gtest.h>

#include "crypto/Vectors.h"

TEST(Scrambler, AgreesWithPassesDoneOneByOneAndIsUndone) {
    for (const int length : {0, 1, 7, 8, 9, 13, 1023, 1024, 1025, 2048, 3000}) {
        std::string buffer = Plain(length);
        const std::span bytes(reinterpret_cast<uint8_t*>(buffer.data()), buffer.size());
        Scramble(bytes);
        EXPECT_EQ(buffer, Vector("scrambled-" + std::to_string(length))) << length;
        Unscramble(bytes);
        EXPECT_EQ(buffer, Plain(length)) << length;
    }
}
