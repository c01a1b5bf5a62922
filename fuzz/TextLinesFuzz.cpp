// The first byte says how the rest is cut into blocks and whether line ends are kept; the rest is the text.
#include <algorithm>

#include "files/TextLineSplitter.h"
#include "fuzz/FuzzInput.h"

namespace {

// All lines with their ends, or without and marked, so that two ways to split can be compared.
std::string Split(std::string_view text, size_t blockBytes, bool keepLineEnds) {
    TextLineSplitter splitter(keepLineEnds);
    std::string joined;
    for (; !text.empty(); text.remove_prefix(std::min(blockBytes, text.size()))) {
        splitter.Add(text.substr(0, blockBytes));
        while (const auto line = splitter.Next()) {
            Require(keepLineEnds ? !line->empty() : line->find_first_of("\r\n") == line->npos);
            joined.append(*line).append(keepLineEnds ? "" : "\n");
        }
        Require(splitter.Rest().size() <= 1 ||
                splitter.Rest().substr(0, splitter.Rest().size() - 1).find_first_of("\r\n") == std::string_view::npos);
    }
    return joined.append(splitter.Rest());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    const size_t blockBytes = 1U + (data[0] & 0x3F);
    Require(Split(text, blockBytes, true) == text);
    Require(Split(text, blockBytes, false) == Split(text, text.size() + 1, false));
    return 0;
}
