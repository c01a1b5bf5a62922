// Runs a check in a new process of the same program, for facts that are found once in the life of a process:
//
//     EXPECT_IN_FRESH_PROCESS([] { EXPECT_TRUE(CWindowsVersion::IsWindows8OrLater()); });
//
// The new process repeats the test up to this place, so nothing before it in the test may use those facts. What fails
// in the check is printed, and fails the test.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

#include "support/WriteCoverage.h"

template <class Check>
[[noreturn]] void RunAndEnd(const Check& check) {
    check();
    // The framework prints nothing in the new process, so what failed goes out with its error output.
    const testing::TestResult& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
    for (int i = 0; i < result.total_part_count(); ++i) {
        const testing::TestPartResult& part = result.GetTestPartResult(i);
        if (part.failed()) std::fprintf(stderr, "%s:%d: %s\n", part.file_name(), part.line_number(), part.message());
    }
    std::fflush(stderr);
    WriteCoverage();
    std::_Exit(testing::Test::HasFailure() ? 1 : 0);
}

#define EXPECT_IN_FRESH_PROCESS(...)                                        \
    do {                                                                    \
        const auto freshCheck = __VA_ARGS__;                                \
        EXPECT_EXIT(RunAndEnd(freshCheck), testing::ExitedWithCode(0), ""); \
    } while (false)
