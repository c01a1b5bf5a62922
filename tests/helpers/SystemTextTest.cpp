#include "helpers/SystemText.h"

#include <gtest/gtest.h>
#include <objbase.h>

#include "support/ImportPatch.h"

TEST(NewGuidText, Is32HexadecimalDigitsAndNew) {
    const CString first = NewGuidText();
    EXPECT_EQ(first.GetLength(), 32);
    EXPECT_EQ(std::wstring_view(first.GetString()).find_first_not_of(L"0123456789ABCDEF"), std::wstring_view::npos);
    EXPECT_NE(NewGuidText().Compare(first), 0);
}

TEST(SystemErrorText, KeepsTheLineBreakAndGivesTheBufferBack) {
    static int s_freed = 0;
    static decltype(&LocalFree) s_free = nullptr;
    const ImportPatch<decltype(&LocalFree)> patch(GetModuleHandleW(nullptr), "LocalFree", [](HLOCAL memory) {
        ++s_freed;
        return s_free(memory);
    });
    s_free = patch.Original();
    s_freed = 0;
    const CString text = SystemErrorText(ERROR_ACCESS_DENIED);
    EXPECT_GT(text.GetLength(), 2);
    EXPECT_EQ(text.Right(2), L"\r\n");
    EXPECT_EQ(s_freed, 1);
    EXPECT_NE(text.Compare(SystemErrorText(ERROR_FILE_NOT_FOUND)), 0);
    EXPECT_TRUE(SystemErrorText(0x2FFFFFFF).IsEmpty());
}
