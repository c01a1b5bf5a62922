// What the commands share, and each of them.
#pragma once

#include <vector>

#include "CommandLine.h"
#include "ExitCode.h"
#include "carry/CarryReport.h"
#include "carry/RuleSelection.h"

// They throw CarryException, RulesFileError and std::system_error.
std::vector<CarryRule> LoadCarryRules(const std::wstring& file);
ExitCode ListSelection(const CommandLine& line);
ExitCode CheckRules(const CommandLine& line);
ExitCode CaptureRules(const CommandLine& line);
ExitCode ApplyRegistryFile(const CommandLine& line);

void TellNotes(const CarryReport& report);
void TellFindings(const RuleSelection& selection, const std::wstring& file);
