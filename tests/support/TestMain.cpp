// The main of every test program: GoogleTest plus a watchdog that names a test which hangs and ends the process.
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <mutex>
#include <string>
#include <thread>

namespace {

constexpr std::chrono::seconds kTestLimit{120};

// Ends the process with exit code 3 when one test runs longer than kTestLimit.
class Watchdog : public testing::EmptyTestEventListener {
public:
    void OnTestStart(const testing::TestInfo& test) override {
        m_thread = std::jthread(Watch, std::string(test.test_suite_name()) + "." + test.name());
    }
    // Stops the thread and waits for it.
    void OnTestEnd(const testing::TestInfo&) override { m_thread = {}; }

private:
    static void Watch(std::stop_token stop, const std::string& name) {
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable_any().wait_for(lock, stop, kTestLimit, [] { return false; });
        if (stop.stop_requested()) return;
        std::printf("watchdog: %s has run for %lld s\n", name.c_str(), static_cast<long long>(kTestLimit.count()));
        std::fflush(stdout);
        std::_Exit(3);
    }

    std::jthread m_thread;
};

}  // namespace

#ifdef _WIN32
int wmain(int argc, wchar_t** argv)
#else
int main(int argc, char** argv)
#endif
{
    testing::InitGoogleTest(&argc, argv);
    Watchdog watchdog;
    testing::UnitTest::GetInstance()->listeners().Append(&watchdog);
    const int result = RUN_ALL_TESTS();
    testing::UnitTest::GetInstance()->listeners().Release(&watchdog);
    return result;
}
