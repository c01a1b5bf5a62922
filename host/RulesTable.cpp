#include "RulesTable.h"

#include <algorithm>
#include <array>

#include "Printable.h"

namespace {

using Row = std::array<std::string, 4>;

// Longer texts stand out of line rather than widen every row.
constexpr std::size_t WidestColumn = 60;

// Characters, counted without the continuation bytes of UTF-8.
std::size_t Width(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

Row MakeRow(const HostRule& rule) {
    Row row{std::to_string(rule.position), std::string(KindName(rule.kind)), Printable(rule.key), ""};
    if (rule.kind == HostRuleKind::Value) row[3] = ValueText(rule.value);
    return row;
}

}  // namespace

std::string ValueText(const std::string& name) {
    return name.empty() ? "(Default)" : Printable(name);
}

std::string RulesTable(const std::vector<HostRule>& rules) {
    if (rules.empty()) return "(no rules)\n";
    std::vector<Row> rows{{"Position", "Type", "Key", "Value"}};
    std::transform(rules.begin(), rules.end(), std::back_inserter(rows), MakeRow);

    std::array<std::size_t, 4> widths{};
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], std::min(Width(row[column]), WidestColumn));
        }
    }
    std::string table;
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            const std::size_t width = Width(row[column]);
            line += row[column] + std::string(widths[column] > width ? widths[column] - width : 0, ' ') + "  ";
        }
        table += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
    }
    return table;
}
