#include "files/TextLineSplitter.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

// The rule applied to the whole text at once, scanning anew after every line.
Lines SplitPlainly(std::string text, bool keepLineEnds) {
    Lines lines;
    for (bool found = true; found;) {
        found = false;
        for (size_t i = 0; i + 1 < text.size() && !found; ++i) {
            const std::string pair = text.substr(i, 2);
            if (text[i] != '\r' && text[i] != '\n') continue;
            const size_t width = pair == "\r\n" || pair == "\n\r" ? 2 : 1;
            lines.push_back(text.substr(0, keepLineEnds ? i + width : i));
            text.erase(0, i + width);
            found = true;
        }
    }
    if (!text.empty()) lines.push_back(text);
    return lines;
}

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

TEST(TextLineSplitter, KnownTexts) {
    const struct {
        const char* text;
        Lines lines;
    } rows[] = {
        {"", {}},
        {"a", {"a"}},
        {"a\r\nb", {"a", "b"}},
        {"a\n\rb\rc\nd", {"a", "b", "c", "d"}},
        {"\r\n\r\n", {"", ""}},
        {"a\n\nb", {"a", "", "b"}},
        {"a\r\n", {"a"}},
        // A single end at the very end was never looked at.
        {"a\n", {"a\n"}},
        {"\r", {"\r"}},
        {"a\n\n", {"a", "\n"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(SplitInBlocks(row.text, 0, 0, false), row.lines) << row.text;
        EXPECT_EQ(SplitPlainly(row.text, false), row.lines) << row.text;
    }
    EXPECT_EQ(SplitInBlocks("a\r\n\nb", 0, 0, true), (Lines{"a\r\n", "\n", "b"}));
}

TEST(TextLineSplitter, BlocksMakeNoDifference) {
    constexpr size_t kLength = 6;
    for (size_t code = 0; code < 729; ++code) {
        std::string text;
        for (size_t rest = code; text.size() < kLength; rest /= 3) text += "x\r\n"[rest % 3];
        for (const bool keep : {false, true}) {
            const Lines expected = SplitPlainly(text, keep);
            for (size_t second = 0; second <= kLength; ++second) {
                for (size_t first = 0; first <= second; ++first) {
                    ASSERT_EQ(SplitInBlocks(text, first, second, keep), expected) << testing::PrintToString(text);
                }
            }
        }
    }
}
