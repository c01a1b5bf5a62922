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

// Ends the process with exit code 3 when one test runs longer than kLimit.
class Watchdog : public testing::EmptyTestEventListener {
public:
    Watchdog() = default;
    ~Watchdog() override {
        Restart("");
        m_thread.join();
    }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    void OnTestStart(const testing::TestInfo& test) override {
        Restart(std::string(test.test_suite_name()) + "." + test.name());
    }

private:
    static constexpr std::chrono::seconds kLimit{120};

    // An empty name ends the watch.
    void Restart(const std::string& running) {
        const std::lock_guard lock(m_mutex);
        m_running = running;
        ++m_round;
        m_changed.notify_all();
    }

    void Watch() {
        std::unique_lock lock(m_mutex);
        while (!m_running.empty()) {
            const int round = m_round;
            if (m_changed.wait_for(lock, kLimit, [&] { return m_round != round; })) continue;
            std::printf("watchdog: %s has run for %d s\n", m_running.c_str(), static_cast<int>(kLimit.count()));
            std::fflush(stdout);
            std::_Exit(3);
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_running = "the start";
    int m_round = 0;
    std::thread m_thread{[this] { Watch(); }};  // last: it uses the members above
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
