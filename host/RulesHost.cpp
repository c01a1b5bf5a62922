#include "RulesHost.h"

#include <windows.h>

#include <exception>
#include <memory>

#include "FileText.h"
#include "RulesExchange.h"
#include "RulesFile.h"
#include "RulesTable.h"
#include "Utf8.h"
#include "rules/RegistryRulesCtrl.h"

namespace {

constexpr const char* Usage =
    "Usage: RulesHost [FILE]\n"
    "\n"
    "Shows the rules of FILE in the Registry Rules dialog and, if they were changed and\n"
    "confirmed by OK, writes them back. A missing file is an empty set of rules. Without\n"
    "FILE nothing is saved. The rules are printed before and after the dialog.\n"
    "\n"
    "  --help   print this text\n"
    "\n"
    "Exit codes: 0 done; 1 wrong arguments, or the file cannot be read or written;\n"
    "2 the file is not a rules file (it is left as it was).\n";

void Print(DWORD stream, const std::string& text) {
    const HANDLE handle = GetStdHandle(stream);
    DWORD written = 0;
    DWORD mode = 0;
    if (GetConsoleMode(handle, &mode)) {
        // A console takes wide text whatever its code page is.
        const std::wstring wide = FromUtf8(text);
        WriteConsoleW(handle, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
    } else {
        WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    }
}

void PrintFailure(const std::string& text) {
    Print(STD_ERROR_HANDLE, "RulesHost: " + text + "\n");
}

std::vector<HostRule> LoadRules(const std::wstring& path) {
    if (path.empty()) return {};
    const std::optional<std::string> text = ReadFileText(path);
    return text ? ParseRules(*text) : std::vector<HostRule>();
}

void EditRules(const std::wstring& path) {
    const std::string name = path.empty() ? "(no file)" : ToReadableUtf8(path);
    const std::vector<HostRule> before = LoadRules(path);
    Print(STD_OUTPUT_HANDLE, "Rules before, from " + name + ":\n" + RulesTable(before));

    CRegistryRulesCtrl editor;
    AddRules(editor, before);
    const bool changed = editor.Show() == 1;
    const std::vector<HostRule> after = ReadRules(editor);
    if (changed && !path.empty()) ReplaceFileText(path, FormatRules(after));
    Print(STD_OUTPUT_HANDLE, "Rules after:\n" + RulesTable(after));
    Print(STD_OUTPUT_HANDLE, !changed       ? "Nothing to save.\n"
                             : path.empty() ? "Not saved: no file.\n"
                                            : "Saved to " + name + ".\n");
}

std::string ExceptionText(CException* problem) {
    std::wstring text(512, L'\0');
    const BOOL hasText = problem->GetErrorMessage(text.data(), static_cast<UINT>(text.size()));
    problem->Delete();
    return hasText ? ToReadableUtf8(text.c_str()) : "the rule editor failed";
}

}  // namespace

int RunHost(const std::vector<std::wstring>& arguments) {
    if (arguments.size() == 1 && arguments[0] == L"--help") {
        Print(STD_OUTPUT_HANDLE, Usage);
        return HOST_EXIT_OK;
    }
    const bool isOption = !arguments.empty() && arguments[0].starts_with(L"-");
    if (arguments.size() > 1 || isOption) {
        PrintFailure((isOption ? "unknown option " + ToReadableUtf8(arguments[0]) : "more than one file") +
                     "; RulesHost --help tells the usage");
        return HOST_EXIT_FAILURE;
    }
    const std::wstring path = arguments.empty() ? L"" : arguments[0];
    const std::string prefix = path.empty() ? "" : ToReadableUtf8(path) + ": ";
    try {
        EditRules(path);
        return HOST_EXIT_OK;
    } catch (const RulesFileError& error) {
        PrintFailure(prefix + error.what());
        return HOST_EXIT_INVALID_FILE;
    } catch (const std::exception& error) {
        PrintFailure(prefix + error.what());
    } catch (CException* problem) {
        PrintFailure(prefix + ExceptionText(problem));
    }
    return HOST_EXIT_FAILURE;
}
