// Rules between the host's memory and the rule editor.
#pragma once

#include <vector>

#include "RulesFile.h"

class CRegistryRulesCtrl;

// Hands all rules to the editor. A position that does not fit into 16 bits goes as the nearest one that does.
void AddRules(CRegistryRulesCtrl& editor, const std::vector<HostRule>& rules);

// The editor's rules by rising position; key rules before value rules where positions are equal. Throws
// std::runtime_error for a text that is no valid Unicode.
std::vector<HostRule> ReadRules(CRegistryRulesCtrl& editor);
