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

TEST(PtrCollections, FindRemoveAndRefuse) {
    int things[3] = {};
    CTypedPtrArray<CPtrArray, int*> array;
    CMapPtrToPtr map;
    for (int& thing : things) {
        array.Add(&thing);
        map.SetAt(&thing, nullptr);
    }
    array.RemoveAt(1);
    EXPECT_EQ(array.GetAt(1), &things[2]);
    EXPECT_THROW(array.GetAt(2), CInvalidArgException*);
    EXPECT_TRUE(map.RemoveKey(&things[0]));
    void* value = &map;
    EXPECT_FALSE(map.RemoveKey(&things[0]) || map.Lookup(&things[0], value));
    EXPECT_EQ(value, &map);
    map.SetAt(&things[1], &things[2]);
    EXPECT_TRUE(map.Lookup(&things[1], value));
    EXPECT_EQ(value, &things[2]);
    void* key = nullptr;
    POSITION place = map.GetStartPosition();
    for (int* const thing : {&things[1], &things[2]}) {
        map.GetNextAssoc(place, key, value);
        EXPECT_EQ(key, thing);
    }
    EXPECT_EQ(place, nullptr);
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
