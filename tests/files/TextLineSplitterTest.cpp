#include "files/TextLineSplitter.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

Lines SplitInBlocks(std::string_view text, size_t first, size_t second, bool keepLineEnds) {
    TextLineSplitter splitter(keepLineEnds);
    Lines lines;
    for (const auto block : {text.substr(0, first), text.substr(first, second - first), text.substr(second)}) {
        splitter.Add(block);
        while (const auto line = splitter.Next()) lines.emplace_back(*line);
    }
    if (!splitter.Rest().empty()) lines.emplace_back(splitter.Rest());
    return lines;
}

}  // namespace

TEST(TextLineSplitter, KnownTextsInBlocksOfAnySize) {
    const struct {
        std::string text;
        Lines lines, withEnds;
    } rows[] = {{"", {}, {}},
                {"a", {"a"}, {"a"}},
                {"a\r\nb", {"a", "b"}, {"a\r\n", "b"}},
                {"a\n\rb\rc\nd", {"a", "b", "c", "d"}, {"a\n\r", "b\r", "c\n", "d"}},
                {"\r\n\r\n", {"", ""}, {"\r\n", "\r\n"}},
                {"a\n\nb", {"a", "", "b"}, {"a\n", "\n", "b"}},
                {"a\r\n\nb", {"a", "", "b"}, {"a\r\n", "\n", "b"}},
                {"a\r\r\n\n\r\rb", {"a", "", "", "", "b"}, {"a\r", "\r\n", "\n\r", "\r", "b"}},
                {"a\r\n", {"a"}, {"a\r\n"}},
                // A single end at the very end was never looked at.
                {"a\n", {"a\n"}, {"a\n"}},
                {"\r", {"\r"}, {"\r"}},
                {"a\n\n", {"a", "\n"}, {"a\n", "\n"}}};
    for (const auto& row : rows) {
        for (size_t second = 0; second <= row.text.size(); ++second) {
            for (size_t first = 0; first <= second; ++first) {
                SCOPED_TRACE(testing::PrintToString(row.text) + std::to_string(first) + ' ' + std::to_string(second));
                EXPECT_EQ(SplitInBlocks(row.text, first, second, false), row.lines);
                EXPECT_EQ(SplitInBlocks(row.text, first, second, true), row.withEnds);
            }
        }
    }
}
