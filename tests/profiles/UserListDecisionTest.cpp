#include "profiles/UserListDecision.h"

#include <cstdint>
#include <gtest/gtest.h>

// All combinations of the four answers: new and existing user, each with a hive (first) and with one to be loaded.
TEST(UserListDecision, OnlyTwoOfSixteenCombinationsLookAtTheHivesAlone) {
    constexpr auto kLow = INT64_MIN;
    constexpr auto kHigh = INT64_MAX;
    for (int bits = 0; bits < 16; ++bits) {
        const auto decide = [bits](std::int64_t newPrecedence, std::int64_t existingPrecedence, bool samePath) {
            return DecideDuplicate({(bits & 8) != 0, (bits & 4) != 0, newPrecedence},
                                   {(bits & 2) != 0, (bits & 1) != 0, existingPrecedence}, samePath);
        };
        SCOPED_TRACE(bits);
        if (bits == 0b1110 || bits == 0b0011) {
            const auto outcome =
                bits == 0b1110 ? DuplicateOutcome::SkipHiveToBeLoaded : DuplicateOutcome::ReplaceHiveToBeLoaded;
            EXPECT_EQ(decide(kHigh, kLow, true), outcome);
            EXPECT_EQ(decide(kLow, kHigh, false), outcome);
            continue;
        }
        EXPECT_EQ(decide(kHigh, kLow, true), DuplicateOutcome::SkipSamePath);
        EXPECT_EQ(decide(kHigh, kLow, false), DuplicateOutcome::ExistingBecomesSubordinate);
        EXPECT_EQ(decide(kLow, kHigh, false), DuplicateOutcome::NewBecomesSubordinate);
        EXPECT_EQ(decide(kLow, kLow, false), DuplicateOutcome::NewBecomesSubordinate) << "a tie";
    }
}
