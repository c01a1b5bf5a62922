#include "dialog/RowPlacement.h"

#include <functional>
#include <unordered_map>

#include "dialog/RowOrder.h"

namespace {
struct IdentityHash {
    std::size_t operator()(const RowIdentity& identity) const {
        const std::hash<std::wstring_view> hash;
        return (hash(identity.foldedKey) * 31 + hash(identity.foldedValue)) * 31 + hash(identity.kind);
    }
};
}  // namespace

std::vector<std::size_t> PlanRows(std::span<const PlacedRule> rules) {
    RowOrder order(rules.size());
    std::unordered_map<RowIdentity, std::size_t, IdentityHash> standing;
    standing.reserve(rules.size());
    for (std::size_t rule = 0; rule < rules.size(); ++rule) {
        auto row = std::min<std::ptrdiff_t>(rules[rule].position, static_cast<std::ptrdiff_t>(order.Count()));
        const auto [equal, isNew] = standing.try_emplace(rules[rule].identity, rule);
        if (!isNew) {
            if (row >= static_cast<std::ptrdiff_t>(order.Remove(equal->second))) --row;
            equal->second = rule;
        }
        order.Insert(static_cast<std::size_t>(std::max<std::ptrdiff_t>(row, 0)), rule);
    }
    return order.Elements();
}
