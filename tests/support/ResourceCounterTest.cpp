#include "support/ResourceCounter.h"

#include <gtest/gtest.h>

namespace {

const HMODULE kSelf = GetModuleHandleW(nullptr);

TEST(ResourceCounter, NamesWhatStaysAliveByKindAndCall) {
    ResourceCounter counter({kSelf});
    const HBRUSH kept = CreateSolidBrush(RGB(1, 2, 3));
    const HBRUSH freed = CreateSolidBrush(RGB(3, 2, 1));
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"Software", 0, KEY_READ, &key), ERROR_SUCCESS);
    HKEY missing = nullptr;
    ASSERT_NE(RegOpenKeyExW(HKEY_CURRENT_USER, L"No such key", 0, KEY_READ, &missing), ERROR_SUCCESS);
    DeleteObject(freed);

    EXPECT_EQ(counter.Created("brush"), 2);
    EXPECT_EQ(counter.Alive("brush"), 1);
    EXPECT_EQ(counter.Created("registry handle"), 1) << "a call that failed made nothing";
    EXPECT_EQ(counter.Report(), "brush: 1 alive by CreateSolidBrush\nregistry handle: 1 alive by RegOpenKeyExW\n");

    RegCloseKey(key);
    DeleteObject(kept);
    EXPECT_EQ(counter.Report(), "");
}

}  // namespace
