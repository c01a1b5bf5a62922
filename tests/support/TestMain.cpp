// The main of every test program: GoogleTest plus a watchdog that names a test which hangs and ends the process.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>

namespace {

constexpr int kLimitInSeconds = 120;
std::atomic<const testing::TestInfo*> s_running = nullptr;
std::atomic<int> s_seconds = 0;

struct NoteRunning : testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo& test) override {
        s_seconds = 0;
        s_running = &test;
    }
    void OnTestEnd(const testing::TestInfo&) override { s_running = nullptr; }
};

// Ends the process with exit code 3 when one test runs longer than the limit.
void Watch() {
    for (;;) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        const testing::TestInfo* const test = s_running;
        if (test == nullptr || ++s_seconds < kLimitInSeconds) continue;
        std::printf("watchdog: %s.%s has run for %d s\n", test->test_suite_name(), test->name(), kLimitInSeconds);
        std::fflush(stdout);
        std::_Exit(3);
    }
}

}  // namespace

#ifdef _WIN32
int wmain(int argc, wchar_t** argv)
#else
int main(int argc, char** argv)
#endif
{
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new NoteRunning);
    std::thread(Watch).detach();
    return RUN_ALL_TESTS();
}
