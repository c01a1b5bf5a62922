// What each text operation on paths answers, also for paths that hardly anybody means: operation, input, answer. A
// second text that an operation takes stands behind a bar; "yes" is true. The decisions and the class of the string
// type are both held to it.
#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <utility>
#include <vector>

using PathOperation = std::function<std::wstring(const std::wstring& path, const std::wstring& second)>;
using PathCases = std::vector<std::pair<std::wstring, std::wstring>>;

inline std::map<std::string, PathCases> AllPathCases() {
    const std::wstring x247(247, L'x'), x248(248, L'x'), x300(300, L'x'), x40000(40000, L'x');
    const std::wstring share260 = L"\\\\s\\" + std::wstring(256, L't');
    return {
        // clang-format off
        {"GetParentPath", {{L"", L""}, {L"a", L""}, {L"C:", L""}, {L"C:\\", L""}, {L"\\", L""}, {L"\\a", L""},
            {L"C:\\a", L"C:\\"}, {L"C:\\a\\", L"C:\\a"}, {L"C:/a.b", L""}, {L"\\\\server", L"\\"},
            {L"\\\\server\\share", L""}, {L"\\\\server\\share\\a", L"\\\\server\\share"}, {L"\\\\\\\\", L"\\\\\\"},
            {L"\\\\?\\C:\\a", L"\\\\?\\C:"}, {L"\\\\?\\C:\\", L""}}},
        {"GetFileName", {{L"", L""}, {L"a", L"a"}, {L"C:", L""}, {L"\\", L""}, {L"C:\\", L""}, {L"\\a", L"a"},
            {L"C:\\a.b\\c", L"c"}, {L"C:\\a\\", L""}, {L"C:/a.b", L"C:/a.b"}, {L"\\\\server", L"server"},
            {L"\\\\server\\share", L"share"}, {L"\\\\?\\C:\\a", L"a"}, {L"\\\\?\\a.b", L""}}},
        {"GetExtension", {{L"", L""}, {L"a", L""}, {L".a", L".a"}, {L"C:\\a.b.txt", L".txt"}, {L"a.b c", L""},
            {L"a b.c", L".c"}, {L"a.b\\c", L""}, {L"a.b/c", L""}, {L"a.", L"."}, {L"..", L"."},
            {L"\xdc00\\\xd800.\xd800", L".\xd800"}}},
        {"GetFileTitle", {{L".a", L""}, {L"C:\\a.b.txt", L"a.b"}, {L"a.b c", L"a.b c"}, {L"C:/a.b", L"C:/a"},
            {L"..", L"."}, {L"\\\\server\\share.d", L"share"}, {L"\\\\?\\a.b", L""}, {L"C:", L""}}},
        {"CombinePath", {{L"C:\\a|b", L"C:\\a\\b"}, {L"C:\\a.b|\\b", L"\\b"}, {L"C:\\a\\/\\|b", L"C:\\a\\b"},
            {L"C:\\a|", L"C:\\a\\"}, {L"|b", L"\\b"}, {L"\\/|/b", L"\\/b"}}},
        {"ReplaceExtension", {{L"C:\\a|b", L"C:\\ab"}, {L"C:\\a.b|\\b", L"C:\\a\\b"}, {L"C:\\a.b|", L"C:\\a"},
            {L"a.b/c|.d", L"a.b/c.d"}, {L"a.b\\c|.d", L"a.b\\c.d"}, {L".a|.b", L".b"}, {L"a.b c|.d", L"a.d"},
            {L"|b", L"b"}}},
        {"IsSubPath", {{L"C:\\A\\B|C:\\A", L"yes"}, {L"C:\\A|C:\\A\\", L"yes"}, {L"C:\\A\\|C:\\A", L"yes"},
            {L"X:\\C:\\A\\B|C:\\A", L"yes"}, {L"C:\\AB\\C:\\A|C:\\A", L"yes"}, {L"X|", L"yes"}, {L"|", L"yes"},
            {L"|\\", L"yes"}, {L"C:\\AB|C:\\A", L""}, {L"C:\\A\\|C:\\A\\\\", L""}, {L"|A", L""},
            {L"C:\\A|C:\\A\\B", L""}, {x40000 + L"|" + x40000, L"yes"}, {x40000 + L"|" + x40000 + L"y", L""}}},
        {"GetRelativePath", {{L"C:\\A\\\\B|C:\\A", L"B"}, {L"C:\\AB|C:\\A", L"C:\\AB"}, {L"C:\\A|C:\\A\\", L""},
            {L"C:\\A\\|C:\\A", L""}, {L"C:\\A|", L"C:\\A"}}},
        {"AbbreviatePath", {{L"", L""}, {L"C:\\1\\2\\3", L"C:\\1\\2\\3"}, {L"\\\\\\\\\\", L"\\\\\\\\\\...\\"},
            {L"C:\\1\\2\\3\\4\\5\\n.dat", L"C:\\1\\2\\3\\...\\n.dat"}, {L"C:\\1\\2\\3\\n", L"C:\\1\\2\\3\\...\\n"},
            {L"\\\\s\\t\\u\\v", L"\\\\s\\t\\u\\...\\v"}}},
        {"AddLongPathPrefix", {{L"C:\\a", L"\\\\?\\C:\\a"}, {L"\\\\s\\t\\d", L"\\\\?\\UNC\\s\\t\\d"},
            {L"\\\\", L"\\\\?\\UNC\\"}, {L"", L"\\\\?\\"}, {L"\\a", L"\\\\?\\\\a"}, {L"\xd800", L"\\\\?\\\xd800"},
            {L"d:", L"\\\\?\\d:\\"}, {L"\\\\?\\C:", L"\\\\?\\C:"}, {L"\\\\?", L"\\\\?\\UNC\\?"}}},
        {"RemoveLongPathPrefix", {{L"C:\\a", L"C:\\a"}, {L"\\\\?\\C:\\a", L"C:\\a"}, {L"\\\\?", L"\\\\?"},
            {L"\\\\?\\UNC\\s\\t", L"\\\\s\\t"}, {L"\\\\?\\uNc\\s\\t", L"\\\\s\\t"}, {L"\\\\?\\uncs\\t", L"uncs\\t"},
            {L"\\\\?\\\\\\?\\C:", L"\\\\?\\C:"}, {L"\\\\?\\UNC", L"UNC"}}},
        {"MakeLongPath", {{x247, x247}, {x248, L"\\\\?\\" + x248}, {L"\\\\" + x300, L"\\\\?\\UNC\\" + x300},
            {L"\\\\?\\" + x40000, L"\\\\?\\" + x40000}, {L"C:", L"C:"}}},
        {"IsRootPath", {{L"\\", L"yes"}, {L"C:", L"yes"}, {L"z:\\", L"yes"}, {L"\\\\?\\C:", L"yes"},
            {L"\\\\?\\C:\\", L"yes"}, {L"\\\\ab\\c", L"yes"}, {L"\\\\server\\", L"yes"}, {L"\\\\?\\UNC", L"yes"},
            {L"\\\\" + x300 + L"\\t", L"yes"}, {L"", L""}, {L"C", L""}, {L"/", L""}, {L"1:\\", L""}, {L"C:\\a", L""},
            {L"C:/", L""}, {L"\\\\a\\b", L""}, {L"\\\\server", L""}, {L"\\\\s\\share\\", L""}, {L"\\\\?\\", L""}}},
        {"IsDrivePath", {{L"C:", L"yes"}, {L"c:/", L"yes"}, {L"C:\\a", L"yes"}, {L"\\\\?\\C:\\a", L"yes"}, {L"", L""},
            {L"C", L""}, {L"1:\\", L""}, {L"\u00c4:\\", L""}, {L"\\\\s\\t", L""}, {L"\\\\?\\UNC\\", L""}}},
        {"IsUncPath", {{L"\\\\\\", L"yes"}, {L"\\\\a\\b", L"yes"}, {L"\\\\s\\t\\d", L"yes"}, {L"\\\\?\\UNC\\", L"yes"},
            {L"\\\\?\\unc\\s\\t", L"yes"}, {L"\\\\?\\\\\\s\\t", L"yes"}, {L"\\\\s\\t\\" + x40000, L"yes"},
            {L"\\\\?\\UNC\\" + x300, L"yes"}, {share260, L"yes"}, {share260 + L"t", L""}, {L"\\\\", L""},
            {L"\\\\server", L""}, {L"\\\\" + x300 + L"\\t", L""}, {L"//s/t", L""}, {L"\\\\?\\", L""}, {L"CON", L""},
            {L"\\\\?\\UNC", L""}, {L"", L""}}},
        {"IsDottedServerPath", {{L"\\\\server.example", L"yes"}, {L"\\\\server.example\\t", L"yes"},
            {L"\\\\.\\COM1", L"yes"}, {L"\\\\server\\share.d", L""}, {L"server.example", L""}, {L"\\\\", L""}}},
        {"GetDriveRoot", {{L"x:a", L"x:\\"}, {L":C:", L""}, {L"a:b:c", L"a:\\"}, {L"1:C:", L""}, {L"C:\\a", L"C:\\"},
            {L"\\\\?\\d:\\x", L"d:\\"}, {L"a", L""}, {L"", L""}}},
        {"GetUncRelativePart", {{L"\\\\s\\t", L""}, {L"\\\\s\\t\\u\\v", L"u\\v"}, {L"\\\\s\\t/\\u", L"u"}, {L"", L""},
            {L"\\\\?\\d:\\x", L"x"}, {L"\\\\\\\\u", L"u"}, {L"\\\\\\\\", L""}, {L"\\/\\/u", L""}, {L"C:\\a\\b", L""}}},
        {"GetUncRoot", {{L"\\\\s\\t\\u\\v", L"\\\\s\\t"}, {L"\\\\s\\t\\", L"\\\\s\\t"}, {L"C:\\a\\", L"C:\\a"},
            {L"\\\\\\\\u", L""}, {L"\\/\\/", L""}, {L"\\\\?\\d:\\x", L"\\\\?\\d:"}, {L"", L""}}},
        // clang-format on
    };
}

inline void CheckPathCases(const std::map<std::string, PathOperation>& operations) {
    for (const auto& [name, cases] : AllPathCases()) {
        ASSERT_TRUE(operations.contains(name)) << name;
        for (const auto& [input, answer] : cases) {
            const size_t bar = std::min(input.find(L'|'), input.size());
            const std::wstring second = bar < input.size() ? input.substr(bar + 1) : L"";
            EXPECT_EQ(operations.at(name)(input.substr(0, bar), second), answer)
                << name << " of " << testing::PrintToString(input.substr(0, 60));
        }
    }
}
