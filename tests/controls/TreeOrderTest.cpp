#include "controls/TreeOrder.h"

#include <gtest/gtest.h>
#include <string>

namespace {

int Sign(int number) {
    return (number > 0) - (number < 0);
}

struct OrderCase {
    TreeItemKind kind1;
    const wchar_t* text1;
    TreeItemKind kind2;
    const wchar_t* text2;
    int sign;
};

TEST(CompareSiblings, PutsKeysAboveValuesAndCapitalsAboveSmallLetters) {
    constexpr auto key = TreeItemKind::Key;
    constexpr auto value = TreeItemKind::Value;
    const OrderCase cases[] = {
        {key, L"Zebra", key, L"apple", -1}, {key, L"apple", key, L"Apple", 1},    {key, L"zz", value, L"aa", -1},
        {value, L"", key, L"zz", 1},        {value, L"", value, L"a", -1},        {key, L"a", key, L"a", 0},
        {key, L"a", key, L"ab", -1},        {key, L"a1", key, L"a10", -1},        {key, L"a2", key, L"a10", 1},
        {key, L"z", key, L"\u00e4", -1},    {key, L"\u7fff", key, L"\uff21", -1}, {key, L"a b", key, L"a_b", -1},
    };
    for (const OrderCase& order : cases) {
        EXPECT_EQ(Sign(CompareSiblings(order.kind1, order.text1, order.kind2, order.text2)), order.sign)
            << testing::PrintToString(std::wstring(order.text1)) << " and "
            << testing::PrintToString(std::wstring(order.text2));
        EXPECT_EQ(Sign(CompareSiblings(order.kind2, order.text2, order.kind1, order.text1)), -order.sign);
    }
}

}  // namespace
