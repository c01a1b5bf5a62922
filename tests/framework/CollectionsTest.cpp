#include <afxcoll.h>
#include <afxtempl.h>

#include <gtest/gtest.h>
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

TEST(List, KeepsTheOrderOfInsertion) {
    CList<int> list(10);
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    list.AddTail(2);
    const POSITION three = list.AddTail(3);
    list.AddHead(1);
    list.AddTail(2);
    EXPECT_EQ(Elements(list), (Ints{1, 2, 3, 2}));
    EXPECT_EQ(list.GetCount(), 4);
    EXPECT_EQ(list.GetHead(), 1);
    EXPECT_EQ(list.GetTail(), 2);

    EXPECT_EQ(list.Find(2), list.FindIndex(1));
    EXPECT_EQ(list.Find(2, list.FindIndex(1)), list.GetTailPosition());
    EXPECT_EQ(list.Find(2, list.GetTailPosition()), nullptr);
    EXPECT_EQ(list.Find(9), nullptr);

    list.SetAt(three, 30);
    list.GetAt(list.FindIndex(1)) = 20;
    EXPECT_EQ(Elements(list), (Ints{1, 20, 30, 2}));
    list.RemoveAt(list.FindIndex(1));
    EXPECT_EQ(list.GetAt(three), 30);  // other positions stay good
    EXPECT_EQ(list.RemoveHead(), 1);
    EXPECT_EQ(list.RemoveTail(), 2);
    EXPECT_EQ(Elements(list), (Ints{30}));
    list.RemoveAll();
    list.RemoveAll();
    EXPECT_EQ(list.GetCount(), 0);
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

// The remembered place of the last FindIndex must not outlive a change in front of it.
TEST(List, IndexesAreRightAfterEveryChange) {
    CList<int> list;
    Ints expected;
    for (int i = 0; i < 20; ++i) {
        list.AddTail(i);
        expected.push_back(i);
    }
    const auto check = [&] {
        // The last one first: it is reached from the remembered place.
        const INT_PTR last = static_cast<INT_PTR>(expected.size()) - 1;
        ASSERT_EQ(list.GetAt(list.FindIndex(last)), expected.back());
        for (size_t i = 0; i < expected.size(); ++i) {
            ASSERT_EQ(list.GetAt(list.FindIndex(static_cast<INT_PTR>(i))), expected[i]);
        }
        for (size_t i = expected.size(); i-- > 0;) {
            ASSERT_EQ(list.GetAt(list.FindIndex(static_cast<INT_PTR>(i))), expected[i]);
        }
        for (size_t i = 0; i < expected.size(); ++i) {
            const size_t leap = i * 7 % expected.size();
            ASSERT_EQ(list.GetAt(list.FindIndex(static_cast<INT_PTR>(leap))), expected[leap]);
        }
        list.FindIndex(static_cast<INT_PTR>(expected.size() / 2));
    };
    check();
    list.AddHead(100);
    expected.insert(expected.begin(), 100);
    check();
    list.AddTail(101);
    expected.push_back(101);
    check();
    list.RemoveAt(list.FindIndex(3));
    expected.erase(expected.begin() + 3);
    check();
    list.RemoveAt(list.FindIndex(10));
    expected.erase(expected.begin() + 10);
    list.FindIndex(10);
    list.RemoveHead();
    expected.erase(expected.begin());
    check();
    list.RemoveTail();
    expected.pop_back();
    check();
    list.RemoveAll();
    expected.clear();
    list.AddTail(5);
    expected.push_back(5);
    check();
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
