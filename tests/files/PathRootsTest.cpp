#include "files/PathRoots.h"

#include <gtest/gtest.h>

#include "files/LongPathPrefix.h"

using namespace std::string_literals;

namespace {

struct Kinds {
    std::wstring path;
    bool root, drive, unc, dotted;
};

}  // namespace

TEST(PathRoots, KindsOfPaths) {
    const Kinds cases[] = {
        {L"", false, false, false, false},
        {L"C", false, false, false, false},
        {L"\\", true, false, false, false},
        {L"/", false, false, false, false},
        {L"C:", true, true, false, false},
        {L"C:\\", true, true, false, false},
        {L"c:/", false, true, false, false},
        {L"1:\\", false, false, false, false},
        {L"\u00c4:\\", false, false, false, false},
        {L"C:\\a", false, true, false, false},
        {L"\\\\", false, false, false, false},
        {L"\\\\\\", false, false, true, false},
        {L"\\\\a\\b", false, false, true, false},
        {L"\\\\server", false, false, false, false},
        {L"\\\\server\\", true, false, true, false},
        {L"\\\\server\\share", true, false, true, false},
        {L"\\\\server\\share\\", false, false, true, false},
        {L"\\\\server\\share\\dir", false, false, true, false},
        {L"\\\\server.example", false, false, false, true},
        {L"\\\\server.example\\share", true, false, true, true},
        {L"\\\\server\\share.d", true, false, true, false},
        {L"//server/share", false, false, false, false},
        {L"\\\\?\\", false, false, false, false},
        {L"\\\\?", false, false, false, false},
        {L"\\\\?\\C:", true, true, false, false},
        {L"\\\\?\\C:\\", true, true, false, false},
        {L"\\\\?\\C:\\a", false, true, false, false},
        {L"\\\\?\\UNC", true, false, false, false},
        {L"\\\\?\\UNC\\", false, false, true, false},
        {L"\\\\?\\unc\\s\\t", false, false, false, false},
        {L"\\\\?\\\\\\s\\t", false, false, true, false},
        {L"\\\\.\\COM1", true, false, true, true},
        {L"CON", false, false, false, false},
        {L"\\\\" + std::wstring(300, L's') + L"\\share", true, false, false, false},
        {L"\\\\s\\" + std::wstring(300, L's'), true, false, false, false},
        {L"\\\\s\\t\\" + std::wstring(40000, L'u'), false, false, true, false},
        {L"\\\\?\\UNC\\" + std::wstring(300, L's'), false, false, true, false},
    };
    for (const Kinds& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.path.substr(0, 60)));
        EXPECT_EQ(PathText::IsRootPath(c.path), c.root);
        EXPECT_EQ(PathText::IsDrivePath(c.path), c.drive);
        EXPECT_EQ(PathText::IsUncPath(c.path), c.unc);
        EXPECT_EQ(PathText::IsDottedServerPath(c.path), c.dotted);
    }
}

TEST(PathRoots, RootsAndWhatFollowsThem) {
    struct Case {
        std::wstring path, driveRoot, uncRelative, uncRoot;
    };
    const Case cases[] = {
        {L"", L"", L"", L""},
        {L"x:a", L"x:\\", L"", L"x:a"},
        {L"C:\\a\\", L"C:\\", L"", L"C:\\a"},
        {L":C:", L"", L"", L":C:"},
        {L"a:b:c", L"a:\\", L"", L"a:b:c"},
        {L"1:C:", L"", L"", L"1:C:"},
        {L"\\\\?\\d:\\x", L"d:\\", L"x", L"\\\\?\\d:"},
        {L"\\\\s\\t", L"", L"", L"\\\\s\\t"},
        {L"\\\\s\\t\\", L"", L"", L"\\\\s\\t"},
        {L"\\\\s\\t\\u\\v", L"", L"u\\v", L"\\\\s\\t"},
        {L"\\\\s\\t/\\u", L"", L"u", L"\\\\s\\t"},
        {L"\\\\\\\\", L"", L"", L""},
        {L"\\\\\\\\u", L"", L"u", L""},
        {L"\\/\\/", L"", L"", L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.path));
        EXPECT_EQ(PathText::GetDriveRoot(c.path).Joined(), c.driveRoot);
        EXPECT_EQ(PathText::GetUncRelativePart(c.path), c.uncRelative);
        EXPECT_EQ(PathText::GetUncRoot(c.path), c.uncRoot);
    }
}

TEST(LongPathPrefix, ForDrivesAndShares) {
    struct Case {
        std::wstring plain, prefixed;
    };
    const Case cases[] = {
        {L"C:\\a", L"\\\\?\\C:\\a"},   {L"\\\\server\\share\\dir", L"\\\\?\\UNC\\server\\share\\dir"},
        {L"\\\\", L"\\\\?\\UNC\\"},    {L"", L"\\\\?\\"},
        {L"\\a", L"\\\\?\\\\a"},       {L"unc\\s", L"\\\\?\\unc\\s"},
        {L"\xd800", L"\\\\?\\\xd800"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.plain));
        EXPECT_EQ(PathText::AddLongPathPrefix(c.plain).Joined(), c.prefixed);
        EXPECT_EQ(PathText::AddLongPathPrefix(c.prefixed).Joined(), c.prefixed);
        EXPECT_EQ(PathText::RemoveLongPathPrefix(c.prefixed).Joined(), c.plain);
    }
    EXPECT_EQ(PathText::RemoveLongPathPrefix(L"\\\\?\\\\\\?\\C:").Joined(), L"\\\\?\\C:");
    EXPECT_EQ(PathText::RemoveLongPathPrefix(L"\\\\?").Joined(), L"\\\\?");
}

TEST(LongPathPrefix, IsNeededFromTwoHundredAndFortyEightCharactersOn) {
    EXPECT_FALSE(PathText::NeedsLongPathPrefix(std::wstring(247, L'a')));
    EXPECT_TRUE(PathText::NeedsLongPathPrefix(std::wstring(248, L'a')));
    EXPECT_FALSE(PathText::NeedsLongPathPrefix(L"\\\\?\\" + std::wstring(40000, L'a')));
}
