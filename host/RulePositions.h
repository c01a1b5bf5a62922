// Positions as the rule editor takes them: 16 bits.
#pragma once

#include <vector>

#include "RulesFile.h"

// The nearest position that the editor takes.
short EditorPosition(int position);

// Whether the editor shows the rules in the order of their positions and can be handed them in that order again. Not so
// for a position that does not fit, nor for more than 32,768 rules: what stands behind changes places.
bool EditorKeepsOrder(const std::vector<HostRule>& rules);
