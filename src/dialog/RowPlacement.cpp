#include "dialog/RowPlacement.h"

#include "dialog/RowOrder.h"

std::vector<std::size_t> PlanRows(std::span<const PlacedRule> rules) {
    constexpr std::size_t none = static_cast<std::size_t>(-1);
    RowOrder order(rules.size());
    std::vector<std::size_t> standing(rules.size(), none);  // by identity: the rule whose row is in the list
    for (std::size_t rule = 0; rule < rules.size(); ++rule) {
        auto row = std::min<std::ptrdiff_t>(rules[rule].position, static_cast<std::ptrdiff_t>(order.Count()));
        std::size_t& equal = standing[rules[rule].identity];
        if (equal != none && row >= static_cast<std::ptrdiff_t>(order.Remove(equal))) --row;
        equal = rule;
        order.Insert(static_cast<std::size_t>(std::max<std::ptrdiff_t>(row, 0)), rule);
    }
    return order.Elements();
}
