// Rules between the host's memory and the rule editor.
#pragma once

#include <vector>

#include "RulesFile.h"

class CRegistryRulesCtrl;

// Hands all rules to the editor, at their EditorPosition.
void AddRules(CRegistryRulesCtrl& editor, const std::vector<HostRule>& rules);

struct EditedRules {
    std::vector<HostRule> rules;  // by rising position; key rules before value rules where positions are equal
    bool isExact = true;          // false: U+FFFD stands where a text was no valid Unicode
};

EditedRules ReadRules(CRegistryRulesCtrl& editor);
