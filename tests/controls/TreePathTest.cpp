#include "controls/TreePath.h"

#include <gtest/gtest.h>

TEST(TreePath, JoinsOnlyWhereThereIsSomethingToJoin) {
    EXPECT_EQ(ChildPath(L"", L"Software"), L"Software");
    EXPECT_EQ(ChildPath(L"Software", L"a b"), L"Software\\a b");
    EXPECT_EQ(PathThrough(L"c", L""), L"c");
    EXPECT_EQ(PathThrough(L"b", L"c"), L"b\\c");
    EXPECT_EQ(PathThrough(L"a", PathThrough(L"%s", L"100%d")), L"a\\%s\\100%d");
}

TEST(TreePath, GivesADefaultValueThePathOfItsKey) {
    EXPECT_EQ(PathThrough(L"Software", PathThrough(L"Key", PathThrough(L"", L""))), L"Software\\Key");
}
