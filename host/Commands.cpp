#include "Commands.h"

#include "CarryText.h"
#include "CommandWork.h"
#include "FileText.h"
#include "HostOutput.h"
#include "RulesFile.h"
#include "Utf8.h"

namespace {

ExitCode CodeOf(CarryFailure failure) {
    switch (failure) {
        case CarryFailure::NotARegistryFile:
            return ExitCode::InvalidFile;
        case CarryFailure::Refused:
            return ExitCode::Refused;
        case CarryFailure::TakenBack:
            return ExitCode::TakenBack;
        case CarryFailure::NotTakenBack:
            return ExitCode::NotTakenBack;
        case CarryFailure::Failed:
        case CarryFailure::Cancelled:
            break;
    }
    return ExitCode::Failed;
}

ExitCode Run(const CommandLine& line) {
    switch (line.command) {
        case HostCommand::List:
            return ListSelection(line);
        case HostCommand::Check:
            return CheckRules(line);
        case HostCommand::Capture:
            return CaptureRules(line);
        case HostCommand::Apply:
            return ApplyRegistryFile(line);
    }
    return ExitCode::Failed;
}

}  // namespace

ExitCode RunCommand(const CommandLine& line) {
    const std::string prefix = ToReadableUtf8(line.file) + ": ";
    try {
        return Run(line);
    } catch (const CarryException& problem) {
        PrintFailure(FailureText(problem));
        return CodeOf(problem.Failure());
    } catch (const RulesFileError& error) {
        PrintFailure(prefix + error.what());
        return ExitCode::InvalidFile;
    } catch (const std::exception& error) {
        PrintFailure(prefix + error.what());
        return ExitCode::Failed;
    }
}

std::vector<CarryRule> LoadCarryRules(const std::wstring& file) {
    const std::optional<std::string> text = ReadFileText(file);
    if (!text) throw CarryException(CarryFailure::Failed, "there is no such file", file);
    std::vector<CarryRule> rules;
    for (const HostRule& rule : ParseRules(*text)) {
        const CarryKind kind = rule.kind == HostRuleKind::Branch ? CarryKind::Branch
                               : rule.kind == HostRuleKind::Key  ? CarryKind::Key
                                                                 : CarryKind::Value;
        rules.push_back({kind, FromUtf8(rule.key), FromUtf8(rule.value)});
    }
    return rules;
}

void TellNotes(const CarryReport& report) {
    for (const CarryNote& note : report.notes) PrintFailure(NoteText(note));
    if (report.noteCount > report.notes.size()) {
        PrintFailure(std::to_string(report.noteCount - report.notes.size()) + " more of the kind");
    }
}

void TellFindings(const RuleSelection& selection, const std::wstring& file) {
    for (const RuleFinding& finding : selection.Findings()) {
        PrintFailure(ToReadableUtf8(file) + ": /rules/" + std::to_string(finding.rule) + ": " + FindingText(finding));
    }
}
