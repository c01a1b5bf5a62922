#include <windows.h>

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "support/ScopedRegistryKey.h"
#include "support/ScopedTestDir.h"

namespace {

bool KeyExists(const std::wstring& path) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
}

bool FileExists(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

void WriteFileAt(const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE) << GetLastError();
    CloseHandle(file);
}

TEST(ScopedRegistryKey, IsUniqueAndGoesWithEverythingBelow) {
    std::wstring path;
    {
        ScopedRegistryKey key;
        const ScopedRegistryKey other;
        path = key.Path();
        EXPECT_NE(path, other.Path());
        key.SetText(L"Deep\\Deeper", L"Name", L"text");
        key.AddKey(L"Empty");
        wchar_t text[8];
        DWORD bytes = sizeof text;
        ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, (path + L"\\Deep\\Deeper").c_str(), L"Name", RRF_RT_REG_SZ, nullptr,
                               text, &bytes),
                  ERROR_SUCCESS);
        EXPECT_STREQ(text, L"text");
        EXPECT_TRUE(KeyExists(path + L"\\Empty"));
    }
    EXPECT_FALSE(KeyExists(path));
}

TEST(ScopedTestDir, GoesWithLongPathsAndReadOnlyFiles) {
    std::wstring path;
    {
        ScopedTestDir folder;
        const ScopedTestDir other;
        path = folder.Path();
        EXPECT_NE(path, other.Path());
        std::wstring deep = L"\\\\?\\" + path;
        for (int i = 0; i < 3; ++i) {
            deep += L"\\" + std::wstring(120, L'x');
            ASSERT_TRUE(CreateDirectoryW(deep.c_str(), nullptr)) << GetLastError();
        }
        WriteFileAt(deep + L"\\file");
        SetFileAttributesW((deep + L"\\file").c_str(), FILE_ATTRIBUTE_READONLY);
        WriteFileAt(folder.Path(L"beside"));
        EXPECT_TRUE(FileExists(path + L"\\beside"));
    }
    EXPECT_FALSE(FileExists(path));
}

}  // namespace
