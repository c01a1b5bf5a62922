// The rules file: JSON text to rules in memory and back. The format is written down in docs/rules-file.md.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "Printable.h"

enum class HostRuleKind { Branch, Key, Value };

// One rule as host and file know it; texts are UTF-8.
struct HostRule {
    HostRuleKind kind = HostRuleKind::Branch;
    std::string key;
    std::string value;  // of the kind Value only; empty for the key's default value
    int position = 0;   // row in the list, over all kinds

    bool operator==(const HostRule&) const = default;
};

// A text that is not a rules file. Its own text is one line: the place, "line 3, column 7" or the JSON pointer of the
// member that is wrong ("/rules/2/type"), and the reason.
class RulesFileError : public std::runtime_error {
public:
    RulesFileError(const std::string& place, const std::string& reason)
        : std::runtime_error(Printable(place + ": " + reason)) {}
};

// The rules in the order of the file. Throws RulesFileError.
std::vector<HostRule> ParseRules(std::string_view text);

// The text of a file that ParseRules reads back to the same rules. Texts must be valid UTF-8.
std::string FormatRules(const std::vector<HostRule>& rules);

// The name of a kind in the file: "branch", "key" or "value".
std::string_view KindName(HostRuleKind kind);
