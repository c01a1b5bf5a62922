#include "RulePositions.h"

#include <algorithm>
#include <limits>

using Limits = std::numeric_limits<short>;

short EditorPosition(int position) {
    return static_cast<short>(std::clamp<int>(position, Limits::min(), Limits::max()));
}

bool EditorKeepsOrder(const std::vector<HostRule>& rules) {
    constexpr std::size_t MostRules = Limits::max() + 1;
    return rules.size() <= MostRules && std::all_of(rules.begin(), rules.end(), [](const HostRule& rule) {
               return EditorPosition(rule.position) == rule.position;
           });
}
