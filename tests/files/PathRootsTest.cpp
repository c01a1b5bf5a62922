#include "files/PathRoots.h"

#include <gtest/gtest.h>
#include <vector>

#include "files/LongPathPrefix.h"

namespace {

std::string KindsOf(std::wstring_view path) {
    std::string kinds;
    if (PathText::IsRootPath(path)) kinds += " root";
    if (PathText::IsDrivePath(path)) kinds += " drive";
    if (PathText::IsUncPath(path)) kinds += " unc";
    if (PathText::IsDottedServerPath(path)) kinds += " dotted";
    return kinds;
}

}  // namespace

TEST(PathRoots, KindsOfPaths) {
    const std::pair<std::string, std::vector<std::wstring>> cases[] = {
        {"",
         {L"", L"C", L"/", L"1:\\", L"\u00c4:\\", L"\\\\", L"\\\\server", L"//server/share", L"\\\\?\\", L"\\\\?",
          L"\\\\?\\unc\\s\\t", L"CON"}},
        {" root",
         {L"\\", L"\\\\?\\UNC", L"\\\\" + std::wstring(300, L's') + L"\\share", L"\\\\s\\" + std::wstring(300, L's')}},
        {" root drive", {L"C:", L"C:\\", L"\\\\?\\C:", L"\\\\?\\C:\\"}},
        {" drive", {L"c:/", L"C:\\a", L"\\\\?\\C:\\a"}},
        {" unc",
         {L"\\\\\\", L"\\\\a\\b", L"\\\\server\\share\\", L"\\\\server\\share\\dir", L"\\\\?\\UNC\\",
          L"\\\\?\\\\\\s\\t", L"\\\\s\\t\\" + std::wstring(40000, L'u'), L"\\\\?\\UNC\\" + std::wstring(300, L's')}},
        {" root unc", {L"\\\\server\\", L"\\\\server\\share", L"\\\\server\\share.d"}},
        {" dotted", {L"\\\\server.example"}},
        {" root unc dotted", {L"\\\\server.example\\share", L"\\\\.\\COM1"}},
    };
    for (const auto& [kinds, paths] : cases) {
        for (const std::wstring& path : paths)
            EXPECT_EQ(KindsOf(path), kinds) << testing::PrintToString(path.substr(0, 60));
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
