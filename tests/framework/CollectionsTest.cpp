#include <afxcoll.h>
#include <afxmt.h>
#include <afxtempl.h>

#include <gtest/gtest.h>
#include <random>
#include <thread>
#include <vector>

// Against a vector; the remembered place of the last FindIndex must not outlive a change in front of it.
TEST(List, KeepsItsOrderAndIndexesOverRandomChanges) {
    std::mt19937 random(3);
    CList<int> list(10);
    for (int round = 0; round < 3; ++round) {  // new nodes come to lie where old ones were
        std::vector<int> expected;
        for (int i = 0; i < 1000; ++i) {
            const bool atHead = random() % 2 == 0;
            atHead ? list.AddHead(i) : list.AddTail(i);
            expected.insert(atHead ? expected.begin() : expected.end(), i);
            const size_t index = random() % expected.size();
            ASSERT_EQ(list.GetAt(list.FindIndex(static_cast<INT_PTR>(index))), expected[index]) << i;
        }
        for (POSITION place = list.GetHeadPosition(); const int i : expected) ASSERT_EQ(list.GetNext(place), i);
        EXPECT_EQ(list.Find(expected[20]), list.FindIndex(20));
        EXPECT_TRUE(list.FindIndex(-1) == nullptr && list.FindIndex(1000) == nullptr);
        list.RemoveAll();
        EXPECT_THROW(list.GetTail(), CInvalidArgException*);
    }
}

// As a peer's handles, which the system gives out again.
TEST(MapPtrToPtr, AKeyThatIsSetAgainHasItsLastValueAndGoesOnce) {
    int things[2] = {};
    CMapPtrToPtr map;
    for (int& value : things) map.SetAt(&things[0], &value);
    void* value = nullptr;
    EXPECT_TRUE(map.Lookup(&things[0], value) && value == &things[1]);
    EXPECT_TRUE(map.RemoveKey(&things[0]) && !map.RemoveKey(&things[0]) && map.GetStartPosition() == nullptr);
}

TEST(SingleLock, KeepsOtherThreadsOutAndMayBeTakenAgainByItsOwn) {
    CCriticalSection section;
    int count = 0;
    const auto work = [&] {
        for (int i = 0; i < 500; ++i) {
            const CSingleLock lock(&section, TRUE), again(&section, TRUE);
            const int before = count;
            std::this_thread::yield();  // the others' chance, all threads being on one processor
            count = before + 1;
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(count, 2 * 500);
}
