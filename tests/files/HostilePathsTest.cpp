#include "files/HostilePaths.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "files/LongPathPrefix.h"
#include "files/PathParts.h"
#include "files/PathRoots.h"

// Nothing is read beyond a text's end, and every answer is made of the text's own pieces: what a sanitizer would find
// elsewhere, this test gives it to find.
TEST(HostilePaths, EveryOperationStaysWithinTheText) {
    const auto& paths = HostilePaths();
    for (const std::wstring& given : paths) {
        const auto end = std::make_unique<wchar_t[]>(given.size());  // no terminator to lean on
        given.copy(end.get(), given.size());
        const std::wstring_view path(end.get(), given.size());
        SCOPED_TRACE(testing::PrintToString(given.substr(0, 20)));
        using namespace PathText;
        EXPECT_LE(int{IsRootPath(path)} + IsDrivePath(path) + IsUncPath(path) + IsDottedServerPath(path), 3);
        EXPECT_LE(GetDriveRoot(path).Joined().size(), 3u);
        EXPECT_LE(GetUncRoot(path).size() + GetUncRelativePart(path).size(), path.size());
        EXPECT_LT(GetParentPath(path).Joined().size(), path.size() + path.empty());
        EXPECT_LE(GetNameWithoutExtension(path).size(), GetFileName(path).size());
        EXPECT_LE(GetExtension(path).size(), path.size());
        EXPECT_LE(AbbreviatePath(path).Joined().size(), path.size() + 4);
        EXPECT_TRUE(HoldsPath(path, path));
        EXPECT_TRUE(BelowBase(path, path.size()).empty());
        for (const std::wstring& other : paths) {
            EXPECT_LE(CombinePath(path, other).Joined().size(), path.size() + 1 + other.size());
            EXPECT_LE(ReplaceExtension(path, other).Joined().size(), path.size() + other.size());
        }
        const std::wstring prefixed = AddLongPathPrefix(path).Joined();
        EXPECT_TRUE(HasLongPathPrefix(prefixed) && !NeedsLongPathPrefix(prefixed));
        EXPECT_LE(RemoveLongPathPrefix(path).Joined().size(), path.size());
    }
}
