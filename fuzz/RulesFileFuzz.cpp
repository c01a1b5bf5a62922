// The input is a rules file.
#include <algorithm>

#include "RulesFile.h"
#include "RulesTable.h"
#include "fuzz/FuzzInput.h"

namespace {

bool IsPrintable(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<HostRule> rules;
    try {
        rules = ParseRules({reinterpret_cast<const char*>(data), size});
    } catch (const RulesFileError& error) {
        Require(IsPrintable(error.what()));
        return 0;
    }
    Require(ParseRules(FormatRules(rules)) == rules);
    const std::string table = RulesTable(rules);
    std::size_t lines = 0;
    for (std::size_t start = 0; start < table.size(); ++lines) {
        const std::size_t end = table.find('\n', start);
        Require(end != table.npos && IsPrintable(std::string_view(table).substr(start, end - start)));
        start = end + 1;
    }
    Require(lines == rules.size() + 1);
    return 0;
}
