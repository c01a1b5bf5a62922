// Runs a check in a new process of the same program, because facts that are found at first use stay for the life of a
// process:
//
//     EXPECT_IN_FRESH_PROCESS([] {
//         const ImportPatch<decltype(&GetVersionExW)> patch(GetModuleHandleW(nullptr), "GetVersionExW",
//         AnswerWindows8); EXPECT_TRUE(CWindowsVersion::IsWindows8OrLater());
//     });
//
// The new process repeats the test up to this place, so nothing before it in the test may use those facts. What fails
// in the check is printed, and fails the test.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

[[noreturn]] inline void EndFreshProcess() {
    std::fflush(stdout);
    std::_Exit(testing::Test::HasFailure() ? 1 : 0);
}

#define EXPECT_IN_FRESH_PROCESS(...) \
    EXPECT_EXIT(                     \
        {                            \
            (__VA_ARGS__)();         \
            EndFreshProcess();       \
        },                           \
        testing::ExitedWithCode(0), "")
