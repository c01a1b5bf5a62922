#include <afxcoll.h>
#include <afxtempl.h>

#include <gtest/gtest.h>
#include <random>
#include <set>
#include <vector>

namespace {

template <typename List>
std::vector<int> Elements(const List& list) {
    std::vector<int> elements;
    for (POSITION place = list.GetHeadPosition(); place != nullptr;) elements.push_back(list.GetNext(place));
    return elements;
}

using Ints = std::vector<int>;

}  // namespace

// Against a vector; the remembered place of the last FindIndex must not outlive a change in front of it.
TEST(List, KeepsItsOrderAndIndexesOverRandomChanges) {
    std::mt19937 random(3);
    CList<int> list(10);
    Ints expected;
    for (int i = 0; i < 3000; ++i) {
        const bool atHead = random() % 2 == 0;
        atHead ? list.AddHead(i) : list.AddTail(i);
        expected.insert(atHead ? expected.begin() : expected.end(), i);
        ASSERT_EQ(list.GetCount(), static_cast<INT_PTR>(expected.size()));
        for (int probe = 0; probe < 3; ++probe) {
            const size_t index = random() % expected.size();
            ASSERT_EQ(list.GetAt(list.FindIndex(static_cast<INT_PTR>(index))), expected[index]) << i;
        }
    }
    EXPECT_EQ(Elements(list), expected);
    EXPECT_EQ(list.Find(expected[20]), list.FindIndex(20));
    list.RemoveAll();
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    // New nodes come to lie where the old ones were, in the other order.
    for (const int i : {1, 2, 3}) list.AddHead(i);
    EXPECT_EQ(list.GetAt(list.FindIndex(0)), 3);
    list.RemoveAll();
    for (const int i : {4, 5, 6}) list.AddTail(i);
    EXPECT_EQ(list.GetAt(list.FindIndex(0)), 4);
}

TEST(List, NoPositionMeansAnInvalidArgument) {
    CList<int> list;
    EXPECT_THROW(list.GetTail(), CInvalidArgException*);
    list.AddTail(1);
    for (const INT_PTR index : {INT_PTR{-1}, INT_PTR{1}, INT_PTR{2}, INTPTR_MAX, INTPTR_MIN}) {
        EXPECT_EQ(list.FindIndex(index), nullptr) << index;
    }
    POSITION none = nullptr;
    EXPECT_THROW(list.GetAt(none), CInvalidArgException*);
    EXPECT_THROW(list.GetNext(none), CInvalidArgException*);
}

TEST(StringList, ComparesTextsNotAddresses) {
    CStringList list(10);
    list.AddTail(L"Branch");
    list.AddTail(L"Key");
    const CString key = L"Key";
    EXPECT_EQ(list.Find(key), list.FindIndex(1));
    EXPECT_EQ(list.Find(L"key"), nullptr);
    list.AddTail(nullptr);
    EXPECT_EQ(list.GetTail(), L"");
    EXPECT_EQ(list.GetAt(list.AddHead(nullptr)), L"");
    POSITION place = list.GetHeadPosition();
    list.GetNext(place) = L"changed";
    EXPECT_EQ(list.GetAt(list.GetHeadPosition()), L"changed");
}

TEST(PtrArray, RefusesAnIndexOutsideOfIt) {
    int values[3] = {};
    CTypedPtrArray<CPtrArray, int*> array;
    for (int& value : values) array.Add(&value);
    EXPECT_EQ(array.Add(nullptr), 3);
    array.RemoveAt(1);
    EXPECT_EQ(array.GetCount(), 3);
    EXPECT_EQ(array.GetAt(1), &values[2]);
    for (const INT_PTR index : {INT_PTR{-1}, INT_PTR{3}, INTPTR_MAX, INTPTR_MIN}) {
        EXPECT_THROW(array.GetAt(index), CInvalidArgException*) << index;
        EXPECT_THROW(array.RemoveAt(index), CInvalidArgException*) << index;
    }
}

TEST(MapPtrToPtr, FindsReplacesAndVisitsEachPairOnce) {
    int things[3] = {};
    CMapPtrToPtr map;
    EXPECT_EQ(map.GetStartPosition(), nullptr);
    for (int& thing : things) map.SetAt(&thing, nullptr);
    map.SetAt(&things[1], &things[2]);
    void* value = &map;
    EXPECT_TRUE(map.Lookup(&things[1], value));
    EXPECT_EQ(value, &things[2]);
    EXPECT_TRUE(map.RemoveKey(&things[0]));
    EXPECT_FALSE(map.RemoveKey(&things[0]));
    EXPECT_FALSE(map.Lookup(&things[0], value));
    EXPECT_EQ(value, &things[2]);
    std::set<void*> keys;
    for (POSITION place = map.GetStartPosition(); place != nullptr;) {
        void* key = nullptr;
        map.GetNextAssoc(place, key, value);
        EXPECT_TRUE(keys.insert(key).second);
    }
    EXPECT_EQ(keys, (std::set<void*>{&things[1], &things[2]}));
}
