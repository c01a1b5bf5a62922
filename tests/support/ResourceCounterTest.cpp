#include "support/ResourceCounter.h"

#include <gtest/gtest.h>

TEST(ResourceCounter, NamesWhatStaysAlive) {
    const ResourceCounter counter({GetModuleHandleW(nullptr)});
    const HBRUSH kept = CreateSolidBrush(RGB(1, 2, 3));
    DeleteObject(CreateSolidBrush(RGB(3, 2, 1)));
    HKEY key = nullptr;
    EXPECT_NE(RegOpenKeyExW(HKEY_CURRENT_USER, L"No such key", 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"Software", 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_EQ(counter.Created("gdi object"), 2);
    EXPECT_EQ(counter.Created("registry handle"), 1) << "a call that failed made nothing";
    EXPECT_EQ(counter.Report(), "gdi object: 1 alive\nregistry handle: 1 alive\n");
    RegCloseKey(key);
    DeleteObject(kept);
    EXPECT_EQ(counter.Report(), "");
}
