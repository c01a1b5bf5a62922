#include "CommandLine.h"

#include <array>
#include <string_view>
#include <utility>

namespace {

constexpr unsigned Bit(HostCommand command) {
    return 1U << static_cast<unsigned>(command);
}

struct CommandWord {
    std::wstring_view name;
    HostCommand command;
    std::size_t files;
};

constexpr std::array<CommandWord, 4> kCommands{{
    {L"list", HostCommand::List, 1},
    {L"check", HostCommand::Check, 1},
    {L"capture", HostCommand::Capture, 2},
    {L"apply", HostCommand::Apply, 1},
}};

constexpr unsigned kAll =
    Bit(HostCommand::List) | Bit(HostCommand::Check) | Bit(HostCommand::Capture) | Bit(HostCommand::Apply);
constexpr unsigned kWriting = Bit(HostCommand::Capture) | Bit(HostCommand::Apply);

// An option sets a flag, or takes the argument behind it.
struct Option {
    const char* name;
    unsigned commands;
    bool CommandLine::* flag;
    std::wstring CommandLine::* text;
};

const std::array<Option, 6> kOptions{{
    {"--json", kAll, &CommandLine::json, nullptr},
    {"--force", kWriting, &CommandLine::force, nullptr},
    {"--dry-run", Bit(HostCommand::Apply), &CommandLine::isDryRun, nullptr},
    {"--undo", Bit(HostCommand::Apply), nullptr, &CommandLine::undo},
    {"--user", kAll, nullptr, &CommandLine::user},
    {"--offline", kAll, nullptr, nullptr},
}};

std::string Narrow(std::wstring_view text) {
    std::string narrow;
    for (const wchar_t c : text) narrow += c >= 0x20 && c < 0x7F ? static_cast<char>(c) : '?';
    return narrow;
}

bool IsNamed(const Option& option, std::wstring_view argument) {
    return std::wstring(option.name, option.name + std::string_view(option.name).size()) == argument;
}

// "D", "D:" or "D:\".
wchar_t ReadDrive(std::wstring_view text) {
    const std::wstring_view rest = text.substr(text.empty() ? 0 : 1);
    const wchar_t letter = text.empty() ? L'\0' : static_cast<wchar_t>(text[0] & ~0x20);
    if (letter < L'A' || letter > L'Z' || (!rest.empty() && rest != L":" && rest != L":\\")) {
        throw CommandLineError("--offline takes a drive, such as D:");
    }
    return letter;
}

class Parser {
public:
    explicit Parser(const std::vector<std::wstring>& arguments) : m_arguments(arguments) {}

    CommandLine Parse(const CommandWord& word) {
        m_line.command = word.command;
        std::vector<std::wstring> files;
        for (m_next = 1; m_next < m_arguments.size();) {
            const std::wstring& argument = m_arguments[m_next++];
            if (argument.starts_with(L"-")) {
                TakeOption(argument);
            } else {
                files.push_back(argument);
            }
        }
        if (files.size() != word.files) {
            throw CommandLineError(Narrow(word.name) + (word.files == 1 ? " takes one file" : " takes two files"));
        }
        m_line.file = files[0];
        if (files.size() > 1) m_line.output = files[1];
        if (word.command == HostCommand::Apply && m_line.undo.empty() && !m_line.isDryRun) {
            throw CommandLineError("apply needs --undo UNDO.reg, the file that takes it back");
        }
        return std::move(m_line);
    }

private:
    void TakeOption(const std::wstring& argument) {
        for (const Option& option : kOptions) {
            if (!IsNamed(option, argument) || (option.commands & Bit(m_line.command)) == 0) continue;
            if (option.flag != nullptr) {
                m_line.*option.flag = true;
                return;
            }
            if (m_next == m_arguments.size() || m_arguments[m_next].empty()) {
                throw CommandLineError(std::string(option.name) + " needs a value");
            }
            const std::wstring& text = m_arguments[m_next++];
            if (option.text != nullptr) {
                m_line.*option.text = text;
            } else {
                m_line.drive = ReadDrive(text);
            }
            return;
        }
        throw CommandLineError("unknown option " + Narrow(argument));
    }

    const std::vector<std::wstring>& m_arguments;
    std::size_t m_next = 0;
    CommandLine m_line;
};

}  // namespace

std::optional<CommandLine> ParseCommandLine(const std::vector<std::wstring>& arguments) {
    for (const CommandWord& word : kCommands) {
        if (!arguments.empty() && arguments[0] == word.name) return Parser(arguments).Parse(word);
    }
    return std::nullopt;
}
