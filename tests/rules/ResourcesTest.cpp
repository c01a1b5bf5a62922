// What the DLL carries besides code, as Windows finds it there.
#include <windows.h>

#include <gtest/gtest.h>
#include <string>

#include "resources/resource.h"
#include "support/ImportPatch.h"
#include "support/WindowText.h"

namespace {

HMODULE Library() {
    return LoadedModule(L"RegistryRules.dll");
}

TEST(Resources, TheVersionIsTheProjects) {
    const HRSRC resource = FindResourceW(Library(), MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION);
    ASSERT_NE(resource, nullptr);
    const auto* const bytes = static_cast<const BYTE*>(LockResource(LoadResource(Library(), resource)));
    // VerQueryValue writes into what it reads, so it gets a copy.
    std::string block(bytes, bytes + SizeofResource(Library(), resource));
    void* text = nullptr;
    UINT chars = 0;
    ASSERT_TRUE(VerQueryValueW(block.data(), L"\\StringFileInfo\\040904b0\\ProductVersion", &text, &chars));
    EXPECT_STREQ(static_cast<const wchar_t*>(text), TEXT(PROJECT_VERSION));
    ASSERT_TRUE(VerQueryValueW(block.data(), L"\\", &text, &chars));
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(text);
    const std::wstring numbers = std::to_wstring(HIWORD(fixed.dwFileVersionMS)) + L"." +
                                 std::to_wstring(LOWORD(fixed.dwFileVersionMS)) + L"." +
                                 std::to_wstring(HIWORD(fixed.dwFileVersionLS));
    EXPECT_EQ(numbers, TEXT(PROJECT_VERSION));
}

}  // namespace
