#include "support/ImportPatch.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace {

const HMODULE kSelf = GetModuleHandleW(nullptr);

// Not inlined, so that each call goes through the slot.
[[gnu::noinline]] DWORD Ticks() {
    return GetTickCount();
}

DWORD WINAPI Seventeen() {
    return 17;
}
DWORD WINAPI Eighteen() {
    return 18;
}

TEST(ImportPatch, ReplacesAndRestoresAlsoNested) {
    const DWORD before = Ticks();
    {
        ImportPatch<decltype(&GetTickCount)> outer(kSelf, "GetTickCount", Seventeen);
        EXPECT_EQ(Ticks(), 17u);
        EXPECT_GE(outer.Original()(), before);
        {
            ImportPatch<decltype(&GetTickCount)> inner(kSelf, "GetTickCount", Eighteen);
            EXPECT_EQ(Ticks(), 18u);
            EXPECT_EQ(inner.Original()(), 17u);
        }
        EXPECT_EQ(Ticks(), 17u);
    }
    EXPECT_GE(Ticks(), before);
}

TEST(ImportPatch, OtherModulesKeepTheRealFunction) {
    const HMODULE library = LoadedModule(L"comctl32.dll");
    void** slot = FindImportSlot(library, "GetModuleHandleW");
    if (slot == nullptr) slot = FindImportSlot(library, "LoadLibraryW");
    ASSERT_NE(slot, nullptr);
    const void* const real = *slot;
    static int s_calls = 0;
    ImportPatch<decltype(&GetModuleHandleW)> patch(kSelf, "GetModuleHandleW", [](LPCWSTR) -> HMODULE {
        ++s_calls;
        return nullptr;
    });
    EXPECT_EQ(GetModuleHandleW(nullptr), nullptr);
    EXPECT_EQ(s_calls, 1);
    EXPECT_EQ(*slot, real);
}

TEST(ImportPatch, SaysWhichImportIsMissing) {
    try {
        ImportPatch<decltype(&GetTickCount)> patch(kSelf, "NoSuchFunction", Seventeen);
        FAIL() << "patched what is not there";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "support_test.exe does not import NoSuchFunction");
    }
    EXPECT_THROW(LoadedModule(L"no-such-module.dll"), std::runtime_error);
}

}  // namespace
