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

TEST(Resources, IconsOfBothSizesAndTheCursorAreThere) {
    for (const int id : {IDI_BINARY_VALUE, IDI_STRING_VALUE}) {
        for (const int size : {16, 32}) {
            SCOPED_TRACE(size);
            const auto icon = static_cast<HICON>(
                LoadImageW(Library(), MAKEINTRESOURCEW(id), IMAGE_ICON, size, size, LR_DEFAULTCOLOR));
            ASSERT_NE(icon, nullptr) << id;
            ICONINFO info{};
            BITMAP bitmap{};
            ASSERT_TRUE(GetIconInfo(icon, &info));
            GetObjectW(info.hbmColor, sizeof bitmap, &bitmap);
            EXPECT_EQ(bitmap.bmWidth, size);
            DeleteObject(info.hbmColor);
            DeleteObject(info.hbmMask);
            DestroyIcon(icon);
        }
    }
    EXPECT_NE(LoadCursorW(Library(), MAKEINTRESOURCEW(IDC_CURSOR_GROUP)), nullptr);
}

TEST(Resources, ThePlaceholderPageCanBeCreated) {
    const HWND owner = CreateWindowW(L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    const HWND page = CreateDialogParamW(
        Library(), MAKEINTRESOURCEW(IDD_PROPERTY_PAGE), owner, [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return 0; },
        0);
    ASSERT_NE(page, nullptr);
    EXPECT_NE(GetWindowLongW(page, GWL_STYLE) & WS_CHILD, 0);
    EXPECT_EQ(WindowText(GetWindow(page, GW_CHILD)),
              L"TODO: Place controls to manipulate properties of RegistryRules Control on this dialog.");
    DestroyWindow(owner);
}

}  // namespace
