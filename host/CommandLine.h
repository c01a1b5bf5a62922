// The commands of the program and their options.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

enum class HostCommand { List, Check, Capture, Apply };

struct CommandLine {
    HostCommand command{};
    std::wstring file;    // the rules file; of Apply the registry file
    std::wstring output;  // of Capture
    std::wstring undo;    // of Apply; empty only with isDryRun
    wchar_t drive = 0;    // of an installation that is not running; 0 for the running system
    std::wstring user;    // empty for the user of the process
    bool force = false;
    bool json = false;
    bool isDryRun = false;
};

// Arguments that are no use of a command; the text says why.
class CommandLineError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// None when the first argument is no command. Throws CommandLineError.
std::optional<CommandLine> ParseCommandLine(const std::vector<std::wstring>& arguments);
