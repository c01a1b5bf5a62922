// The main of every test program: GoogleTest plus a watchdog that names a test which hangs and ends the process.
#include <atomic>
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
    Watchdog() : m_thread([this] { Watch(); }) {}
    ~Watchdog() override {
        {
            const std::lock_guard lock(m_mutex);
            m_stop = true;
        }
        m_changed.notify_all();
        m_thread.join();
    }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    void OnTestStart(const testing::TestInfo& test) override {
        SetRunning(std::string(test.test_suite_name()) + "." + test.name());
    }
    void OnTestEnd(const testing::TestInfo&) override { SetRunning({}); }

private:
    void SetRunning(std::string name) {
        {
            const std::lock_guard lock(m_mutex);
            m_running = std::move(name);
            m_deadline = std::chrono::steady_clock::now() + kTestLimit;
        }
        m_changed.notify_all();
    }

    void Watch() {
        std::unique_lock lock(m_mutex);
        while (!m_stop) {
            if (m_running.empty()) {
                m_changed.wait(lock);
            } else if (m_changed.wait_until(lock, m_deadline) == std::cv_status::timeout && !m_running.empty() &&
                       std::chrono::steady_clock::now() >= m_deadline) {
                std::printf("watchdog: %s has run for %lld s\n", m_running.c_str(),
                            static_cast<long long>(kTestLimit.count()));
                std::fflush(stdout);
                std::_Exit(3);
            }
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_running;
    std::chrono::steady_clock::time_point m_deadline{};
    bool m_stop = false;
    std::thread m_thread;  // last: it uses the members above
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
