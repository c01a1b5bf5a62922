// capture and apply: from the registry into a file, and back.
#include <nlohmann/json.hpp>

#include "CarryText.h"
#include "CommandWork.h"
#include "HostOutput.h"
#include "ProgressLine.h"
#include "Utf8.h"
#include "carry/Apply.h"
#include "carry/Capture.h"
#include "carry/KeyAccess.h"

namespace {

ExitCode TellReport(const CarryReport& report, const std::string& done, bool json) {
    PrintOutput(json ? ReportJson(report).dump(2) + "\n" : done + ": " + TotalsText(report) + "\n");
    TellNotes(report);
    return report.noteCount == 0 ? ExitCode::Done : ExitCode::Told;
}

}  // namespace

ExitCode CaptureRules(const CommandLine& line) {
    const RuleSelection selection(LoadCarryRules(line.file), FoldKeyCase);
    const RegistryTarget target({line.drive, line.user});
    ProgressLine progress;
    const CarryReport report = Capture(target, selection, line.output, {line.force, progress.Function()});
    progress.Clear();
    TellFindings(selection, line.file);
    const ExitCode code = TellReport(report, ToReadableUtf8(line.output), line.json);
    return selection.Findings().empty() ? code : ExitCode::Told;
}

ExitCode ApplyRegistryFile(const CommandLine& line) {
    RegistryTarget target({line.drive, line.user});
    ProgressLine progress;
    const CarryReport report = Apply(target, line.file,
                                     {.undoFile = line.undo,
                                      .replaceFile = line.force,
                                      .dryRun = line.isDryRun,
                                      .removeHives = line.force,
                                      .progress = progress.Function()});
    progress.Clear();
    return TellReport(report, line.isDryRun ? "would be applied" : "applied", line.json);
}
