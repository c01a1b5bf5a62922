#include "files/PathParts.h"

#include <gtest/gtest.h>

TEST(PathParts, ParentNameExtensionTitle) {
    struct Case {
        std::wstring path, parent, name, extension, title;
    };
    const Case cases[] = {
        {L"", L"", L"", L"", L""},
        {L"a", L"", L"a", L"", L"a"},
        {L".a", L"", L".a", L".a", L""},
        {L"C:", L"", L"", L"", L""},
        {L"C:\\", L"", L"", L"", L""},
        {L"\\", L"", L"", L"", L""},
        {L"\\a", L"", L"a", L"", L"a"},
        {L"C:\\a", L"C:\\", L"a", L"", L"a"},
        {L"C:\\a.b.txt", L"C:\\", L"a.b.txt", L".txt", L"a.b"},
        {L"C:\\a\\", L"C:\\a", L"", L"", L""},
        {L"C:\\a.b\\c", L"C:\\a.b", L"c", L"", L"c"},
        {L"a.b c", L"", L"a.b c", L"", L"a.b c"},
        {L"a b.c", L"", L"a b.c", L".c", L"a b"},
        {L"C:/a.b", L"", L"C:/a.b", L".b", L"C:/a"},
        {L"a.b/c", L"", L"a.b/c", L"", L"a.b/c"},
        {L"a.", L"", L"a.", L".", L"a"},
        {L"..", L"", L"..", L".", L"."},
        {L"\\\\server\\share", L"", L"share", L"", L"share"},
        {L"\\\\server\\share.d", L"", L"share.d", L".d", L"share"},
        {L"\\\\server\\share\\a", L"\\\\server\\share", L"a", L"", L"a"},
        {L"\\\\server", L"\\", L"server", L"", L"server"},
        {L"\\\\?\\C:\\a", L"\\\\?\\C:", L"a", L"", L"a"},
        {L"\\\\?\\C:\\", L"", L"", L"", L""},
        {L"\\\\?\\a.b", L"", L"", L".b", L""},
        {L"\\\\\\\\", L"\\\\\\", L"", L"", L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.path));
        EXPECT_EQ(PathText::GetParentPath(c.path).Joined(), c.parent);
        EXPECT_EQ(PathText::GetFileName(c.path), c.name);
        EXPECT_EQ(PathText::GetExtension(c.path), c.extension);
        EXPECT_EQ(PathText::GetNameWithoutExtension(c.path), c.title);
    }
}

TEST(PathParts, CombiningAndReplacingExtensions) {
    struct Case {
        std::wstring first, second, combined, replaced;
    };
    const Case cases[] = {
        {L"C:\\a", L"b", L"C:\\a\\b", L"C:\\ab"},
        {L"C:\\a.b", L"\\b", L"\\b", L"C:\\a\\b"},
        {L"C:\\a\\/\\", L"b", L"C:\\a\\b", L"C:\\a\\/\\b"},
        {L"C:\\a.b", L"", L"C:\\a.b\\", L"C:\\a"},
        {L"", L"b", L"\\b", L"b"},
        {L"\\/", L"/b", L"\\/b", L"\\//b"},
        {L"a.b/c", L".d", L"a.b/c\\.d", L"a.b/c.d"},
        {L".a", L".b", L".a\\.b", L".b"},
        {L"a.b c", L".d", L"a.b c\\.d", L"a.d"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.first));
        EXPECT_EQ(PathText::CombinePath(c.first, c.second).Joined(), c.combined);
        EXPECT_EQ(PathText::ReplaceExtension(c.first, c.second).Joined(), c.replaced);
    }
}

TEST(PathParts, APathHoldsAnotherUpToTheEndOfAnElement) {
    using Pair = std::pair<std::wstring_view, std::wstring_view>;
    for (const auto& [parent, path] : {Pair{L"C:\\A", L"C:\\A\\B"},
                                       {L"C:\\A\\", L"C:\\A"},
                                       {L"C:\\A", L"C:\\A\\"},
                                       {L"C:\\A", L"X:\\C:\\A\\B"},
                                       {L"C:\\A", L"C:\\AB\\C:\\A"},
                                       {L"", L"X"},
                                       {L"", L""},
                                       {L"\\", L""}}) {
        EXPECT_TRUE(PathText::HoldsPath(path, parent)) << testing::PrintToString(std::wstring(path));
    }
    for (const auto& [parent, path] :
         {Pair{L"C:\\A", L"C:\\AB"}, {L"C:\\A\\\\", L"C:\\A\\"}, {L"A", L""}, {L"C:\\A\\B", L"C:\\A"}}) {
        EXPECT_FALSE(PathText::HoldsPath(path, parent)) << testing::PrintToString(std::wstring(path));
    }
    const std::wstring many(40000, L'a');
    EXPECT_TRUE(PathText::HoldsPath(many, many));
    EXPECT_FALSE(PathText::HoldsPath(many, many + L"b") || PathText::HoldsPath(many + L"b", many));
    EXPECT_EQ(PathText::BelowBase(L"C:\\a\\\\b", 4), L"b");
    EXPECT_EQ(PathText::BelowBase(L"C:\\a", 5), L"");
    EXPECT_EQ(PathText::BelowBase(L"C:\\a\\", 4), L"");
}

TEST(PathParts, AbbreviatesBehindTheFourthBackslash) {
    EXPECT_EQ(PathText::AbbreviatePath(L"C:\\1\\2\\3").Joined(), L"C:\\1\\2\\3");
    EXPECT_EQ(PathText::AbbreviatePath(L"C:\\1\\2\\3\\4\\5\\n.dat").Joined(), L"C:\\1\\2\\3\\...\\n.dat");
    EXPECT_EQ(PathText::AbbreviatePath(L"C:\\1\\2\\3\\n").Joined(), L"C:\\1\\2\\3\\...\\n");
    EXPECT_EQ(PathText::AbbreviatePath(L"\\\\s\\t\\u\\v").Joined(), L"\\\\s\\t\\u\\...\\v");
    EXPECT_EQ(PathText::AbbreviatePath(L"\\\\\\\\\\").Joined(), L"\\\\\\\\\\...\\");
    EXPECT_EQ(PathText::AbbreviatePath(L"").Joined(), L"");
}
