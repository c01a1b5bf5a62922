// Cuts text that arrives in blocks into lines:
//
//     TextLineSplitter splitter(false);
//     while (ReadBlock(block)) {
//         splitter.Add(block);
//         while (const auto line = splitter.Next()) Use(*line);
//     }
//     if (!splitter.Rest().empty()) Use(splitter.Rest());
//
// CR LF and LF CR are one end of line each, and so is any other CR or LF. The last byte that has arrived waits for the
// one behind it, so a pair that two blocks share is one end, and a single CR or LF at the very end of the text is part
// of the rest. The time is in proportion to the bytes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

class TextLineSplitter {
public:
    // With `keepLineEnds` the lines come with what ended them.
    explicit TextLineSplitter(bool keepLineEnds) : m_keepLineEnds(keepLineEnds) {}

    void Add(std::string_view block);
    // The next whole line, good until the next Add; none when more has to arrive.
    std::optional<std::string_view> Next();
    // What Next has not given.
    std::string_view Rest() const { return std::string_view(m_pending).substr(m_lineStart); }

private:
    bool m_keepLineEnds;
    std::string m_pending;
    size_t m_lineStart = 0;
    size_t m_scanned = 0;  // before here no line ends that was not given
};
