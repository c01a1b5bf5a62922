#include <afxcoll.h>
#include <afxmt.h>
#include <afxtempl.h>

#include <gtest/gtest.h>
#include <random>
#include <set>
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
        EXPECT_EQ(list.GetCount(), 1000);
        list.RemoveAll();
        EXPECT_EQ(list.GetHeadPosition(), nullptr);
    }
}

TEST(List, HoldsTextsAndKnowsNoPlaceOutsideOfThem) {
    CStringList list(10);
    EXPECT_THROW(list.GetTail(), CInvalidArgException*);
    list.AddTail(L"Branch");
    list.AddTail(L"Key");
    EXPECT_EQ(list.Find(CString(L"Key")), list.FindIndex(1)) << "by the text, not the address";
    for (const INT_PTR index : {INT_PTR{-1}, INT_PTR{2}, INTPTR_MIN}) EXPECT_EQ(list.FindIndex(index), nullptr);
    EXPECT_EQ(list.GetAt(list.AddTail(nullptr)) + list.GetAt(list.AddHead(nullptr)), L"");
    POSITION place = list.GetHeadPosition();
    list.GetNext(place) = L"changed";
    EXPECT_EQ(list.GetAt(list.GetHeadPosition()), L"changed");
    place = nullptr;
    EXPECT_THROW(list.GetAt(place), CInvalidArgException*);
    EXPECT_THROW(list.GetNext(place), CInvalidArgException*);
}

TEST(PtrCollections, FindRemoveAndRefuse) {
    int things[3] = {};
    CTypedPtrArray<CPtrArray, int*> array;
    CMapPtrToPtr map;
    for (int& thing : things) {
        array.Add(&thing);
        map.SetAt(&thing, nullptr);
    }
    EXPECT_EQ(array.Add(nullptr), 3);
    array.RemoveAt(1);
    EXPECT_EQ(array.GetAt(1), &things[2]);
    for (const INT_PTR outside : {INT_PTR{-1}, INT_PTR{3}}) {
        EXPECT_THROW(array.GetAt(outside), CInvalidArgException*) << outside;
        EXPECT_THROW(array.RemoveAt(outside), CInvalidArgException*) << outside;
    }
    map.SetAt(&things[1], &things[2]);
    void* value = &map;
    EXPECT_TRUE(map.RemoveKey(&things[0]));
    EXPECT_FALSE(map.RemoveKey(&things[0]) || map.Lookup(&things[0], value));
    EXPECT_EQ(value, &map);
    EXPECT_TRUE(map.Lookup(&things[1], value));
    EXPECT_EQ(value, &things[2]);
    std::multiset<void*> keys;
    void* key = nullptr;
    for (POSITION place = map.GetStartPosition(); place != nullptr; keys.insert(key))
        map.GetNextAssoc(place, key, value);
    EXPECT_EQ(keys, (std::multiset<void*>{&things[1], &things[2]}));
}

TEST(SingleLock, KeepsOtherThreadsOutAndMayBeTakenAgainByItsOwn) {
    CCriticalSection section;
    int count = 0;
    const auto work = [&] {
        for (int i = 0; i < 500; ++i) {
            const CSingleLock lock(&section, TRUE);
            const CSingleLock again(&section, TRUE);
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
