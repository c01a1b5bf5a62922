// What the commands tell, as lines for people and as JSON.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "carry/CarryReport.h"
#include "carry/RuleSelection.h"

// One line without an end: what was left out and why.
std::string NoteText(const CarryNote& note);
nlohmann::ordered_json NoteJson(const CarryNote& note);

// Why all failed: line, place, reason and the system's text.
std::string FailureText(const CarryException& problem);

std::string FindingText(const RuleFinding& finding);

// "3 keys, 1 value, 120 bytes".
std::string TotalsText(const CarryReport& report);
nlohmann::ordered_json ReportJson(const CarryReport& report);

// "REG_SZ", or the number of a type without a name.
std::string TypeText(std::uint32_t type);
