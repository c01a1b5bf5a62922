// Rules as a table for people to read.
#pragma once

#include <string>
#include <vector>

#include "RulesFile.h"

// One line of UTF-8 per rule under a head line, columns in line as long as the texts are of usual length. Control
// characters in keys and names are shown escaped, the default value as "(Default)". "(no rules)" when there are none.
std::string RulesTable(const std::vector<HostRule>& rules);

// The name of a value, "(Default)" for the empty one.
std::string ValueText(const std::string& name);
