#include <afxcoll.h>
#include <afxtempl.h>

#include <gtest/gtest.h>
#include <random>
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
        const unsigned change = random() % 7;
        if (expected.empty() || change < 4) {
            change % 2 == 0 ? list.AddHead(i) : list.AddTail(i);
            expected.insert(change % 2 == 0 ? expected.begin() : expected.end(), i);
        } else {
            const auto at = static_cast<std::ptrdiff_t>(change == 4   ? 0
                                                        : change == 5 ? expected.size() - 1
                                                                      : random() % expected.size());
            if (change == 6) {
                list.RemoveAt(list.FindIndex(at));
            } else {
                ASSERT_EQ(change == 4 ? list.RemoveHead() : list.RemoveTail(), expected[static_cast<size_t>(at)]);
            }
            expected.erase(expected.begin() + at);
        }
        ASSERT_EQ(list.GetCount(), static_cast<INT_PTR>(expected.size()));
        for (int probe = 0; probe < 3 && !expected.empty(); ++probe) {
            const size_t index = random() % expected.size();
            ASSERT_EQ(list.GetAt(list.FindIndex(static_cast<INT_PTR>(index))), expected[index]) << i;
        }
    }
    EXPECT_EQ(Elements(list), expected);
    EXPECT_EQ(list.Find(expected[20]), list.FindIndex(20));
    EXPECT_EQ(list.Find(expected[20], list.FindIndex(20)), nullptr);
    list.RemoveAll();
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
}

TEST(List, NoPositionMeansAnInvalidArgument) {
    CList<int> list;
    EXPECT_THROW(list.GetHead(), CInvalidArgException*);
    EXPECT_THROW(list.GetTail(), CInvalidArgException*);
    EXPECT_THROW(list.RemoveHead(), CInvalidArgException*);
    EXPECT_THROW(list.RemoveTail(), CInvalidArgException*);
    list.AddTail(1);
    for (const INT_PTR index : {INT_PTR{-1}, INT_PTR{1}, INT_PTR{2}, INTPTR_MAX, INTPTR_MIN}) {
        EXPECT_EQ(list.FindIndex(index), nullptr) << index;
    }
    POSITION none = nullptr;
    EXPECT_THROW(list.GetAt(none), CInvalidArgException*);
    EXPECT_THROW(list.GetNext(none), CInvalidArgException*);
    EXPECT_THROW(list.SetAt(none, 2), CInvalidArgException*);
    EXPECT_THROW(list.RemoveAt(none), CInvalidArgException*);
    EXPECT_EQ(list.GetCount(), 1);
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
    POSITION place = list.GetHeadPosition();
    list.GetNext(place) = L"changed";
    EXPECT_EQ(list.GetHead(), L"changed");
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
    EXPECT_THROW(array.RemoveAt(1, 3), CInvalidArgException*);
    array.RemoveAt(0, 3);
    EXPECT_EQ(array.GetCount(), 0);
}
