#include "RulesHost.h"

#include <exception>
#include <stdexcept>

#include "CommandLine.h"
#include "Commands.h"
#include "FileText.h"
#include "HostOutput.h"
#include "RulePositions.h"
#include "RulesExchange.h"
#include "RulesFile.h"
#include "RulesTable.h"
#include "Utf8.h"
#include "rules/RegistryRulesCtrl.h"

namespace {

constexpr const char* Usage =
    "Usage: RulesHost [FILE]\n"
    "       RulesHost list FILE\n"
    "       RulesHost check FILE\n"
    "       RulesHost capture FILE OUT.reg [--force]\n"
    "       RulesHost apply FILE.reg --undo UNDO.reg [--force] [--dry-run]\n"
    "\n"
    "Shows the rules of FILE in the Registry Rules dialog and, if they were changed and\n"
    "confirmed by OK, writes them back. A missing file is an empty set of rules. Without\n"
    "FILE nothing is saved. The rules are printed before and after the dialog.\n"
    "\n"
    "If FILE cannot be replaced, or another program has changed it meanwhile, the rules go\n"
    "to NAME.unsaved-1.json (or the next free number) beside it, or else in the folder for\n"
    "temporary files.\n"
    "\n"
    "  list     prints the keys and values that the rules of FILE select now\n"
    "  check    tells the rules that name nothing, overlap, or are invalid\n"
    "  capture  writes what the rules select into a registry file\n"
    "  apply    carries out a registry file; UNDO.reg, written first, puts back what was\n"
    "\n"
    "  --undo UNDO.reg    the file that takes it back; needed but for --dry-run\n"
    "  --dry-run          reads the registry file, and changes nothing\n"
    "  --force            replaces OUT.reg or UNDO.reg; removes whole hives, too\n"
    "  --offline DRIVE    works on the Windows of that drive, which is not running\n"
    "  --user WHO         who HKEY_CURRENT_USER is: a SID, a name or a profile folder\n"
    "  --json             prints JSON: list, check, and the reports of capture and apply\n"
    "  --help             prints this text\n"
    "  --version          prints the version\n"
    "\n"
    "Exit codes:\n"
    "  0   done\n"
    "  1   wrong arguments, a file or user that is not to be had, nothing was changed; or\n"
    "      the edited rules could be saved nowhere\n"
    "  2   FILE is not a rules file or registry file (it is left as it was)\n"
    "  3   not saved in place: the rules are in the file that is named\n"
    "  4   done, with things told that were left out; of check: something is wrong\n"
    "  5   refused: OUT.reg or UNDO.reg exists, or a whole hive would be removed\n"
    "  6   failed or cancelled, and all taken back\n"
    "  7   failed, and not all taken back: UNDO.reg tells how it was\n";

// Saves what was edited, in the file or, when that cannot be, in another one.
ExitCode SaveRules(const std::wstring& path, const std::optional<std::string>& before, const EditedRules& edited) {
    const std::string name = ToReadableUtf8(path);
    const std::string text = FormatRules(edited.rules);
    std::string reason;
    try {
        if (!edited.isExact)
            throw std::runtime_error("U+FFFD stands for half a surrogate pair, which no file can hold");
        ReplaceFileText(path, before, text);
        PrintOutput("Saved to " + name + ".\n");
        return ExitCode::Done;
    } catch (const std::exception& error) {
        reason = error.what();
    }
    const std::wstring other = WriteUnsavedText(path, text);
    if (other.empty()) {
        PrintOutput(text);
        PrintFailure(name + ": " + reason + "; not saved anywhere: the text of the file is printed");
        return ExitCode::Failed;
    }
    PrintFailure(name + ": " + reason + "; the rules are in " + ToReadableUtf8(other));
    return ExitCode::NotInPlace;
}

ExitCode EditRules(const std::wstring& path) {
    const std::string name = path.empty() ? "(no file)" : ToReadableUtf8(path);
    const std::optional<std::string> text = path.empty() ? std::nullopt : ReadFileText(path);
    const std::vector<HostRule> before = text ? ParseRules(*text) : std::vector<HostRule>();
    PrintOutput("Rules before, from " + name + ":\n" + RulesTable(before));
    if (!EditorKeepsOrder(before)) {
        PrintFailure(name + ": the dialog takes positions up to 32767 only: the rules beyond will change their order");
    }

    CRegistryRulesCtrl editor;
    AddRules(editor, before);
    const bool changed = editor.Show() == 1;
    const EditedRules after = ReadRules(editor);
    PrintOutput("Rules after:\n" + RulesTable(after.rules));
    if (changed && !path.empty()) return SaveRules(path, text, after);
    PrintOutput(changed ? "Not saved: no file.\n" : "Nothing to save.\n");
    return ExitCode::Done;
}

std::string ExceptionText(CException* problem) {
    wchar_t text[512] = L"";
    const BOOL hasText = problem->GetErrorMessage(text, static_cast<UINT>(std::size(text)));
    problem->Delete();
    return hasText ? ToReadableUtf8(text) : "the rule editor failed";
}

}  // namespace

ExitCode RunHost(const std::vector<std::wstring>& arguments) {
    if (arguments.size() == 1 && arguments[0] == L"--help") {
        PrintOutput(Usage);
        return ExitCode::Done;
    }
    if (arguments.size() == 1 && arguments[0] == L"--version") {
        PrintOutput("RulesHost " RULES_HOST_VERSION "\n");
        return ExitCode::Done;
    }
    try {
        if (const auto command = ParseCommandLine(arguments)) return RunCommand(*command);
    } catch (const CommandLineError& error) {
        PrintFailure(std::string(error.what()) + "; RulesHost --help tells the usage");
        return ExitCode::Failed;
    }
    const bool isOption = !arguments.empty() && arguments[0].starts_with(L"-");
    if (arguments.size() > 1 || isOption) {
        PrintFailure((isOption ? "unknown option " + ToReadableUtf8(arguments[0]) : "more than one file") +
                     "; RulesHost --help tells the usage");
        return ExitCode::Failed;
    }
    const std::wstring path = arguments.empty() ? L"" : arguments[0];
    const std::string prefix = path.empty() ? "" : ToReadableUtf8(path) + ": ";
    try {
        return EditRules(path);
    } catch (const RulesFileError& error) {
        PrintFailure(prefix + error.what());
        return ExitCode::InvalidFile;
    } catch (const std::exception& error) {
        PrintFailure(prefix + error.what());
    } catch (CException* problem) {
        PrintFailure(prefix + ExceptionText(problem));
    }
    return ExitCode::Failed;
}
