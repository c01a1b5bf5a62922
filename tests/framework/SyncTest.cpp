#include <afxmt.h>

#include <gtest/gtest.h>
#include <thread>
#include <vector>

TEST(SingleLock, KeepsOtherThreadsOut) {
    CCriticalSection section;
    int count = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 500; ++i) {
                const CSingleLock lock(&section, TRUE);
                const int before = count;
                std::this_thread::yield();  // the others' chance, all threads being on one processor
                count = before + 1;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(count, 4 * 500);
}

TEST(SingleLock, MayBeTakenAgainByItsThreadAndEndsWithItsBlock) {
    CCriticalSection section;
    {
        const CSingleLock outer(&section, TRUE);
        const CSingleLock inner(&section, TRUE);
        const CSingleLock none(&section);
    }
    // Free for another thread now; were it not, this would hang.
    std::thread([&] { CSingleLock(&section, TRUE); }).join();
}
