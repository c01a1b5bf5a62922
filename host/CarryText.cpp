#include "CarryText.h"

#include <array>
#include <nlohmann/json.hpp>

#include "Printable.h"
#include "RulesTable.h"
#include "Utf8.h"
#include "helpers/SystemText.h"

namespace {

using nlohmann::ordered_json;

struct KindWords {
    const char* name;  // in JSON
    const char* text;
};

// By the number of the kind.
constexpr std::array<KindWords, 6> kNotes{{
    {"missing", "is not there"},
    {"vanished", "vanished meanwhile"},
    {"unreadable", "cannot be read"},
    {"unwritable", "has a name or a size that a registry file cannot hold"},
    {"out-of-reach", "lies outside of the installation, or of no user that was named"},
    {"skipped-line", "skipped"},
}};

constexpr std::array<const char*, 12> kTypes{
    "REG_NONE",
    "REG_SZ",
    "REG_EXPAND_SZ",
    "REG_BINARY",
    "REG_DWORD",
    "REG_DWORD_BIG_ENDIAN",
    "REG_LINK",
    "REG_MULTI_SZ",
    "REG_RESOURCE_LIST",
    "REG_FULL_RESOURCE_DESCRIPTOR",
    "REG_RESOURCE_REQUIREMENTS_LIST",
    "REG_QWORD",
};

std::string StatusText(std::uint32_t status) {
    if (status == 0) return {};
    std::string text = ToReadableUtf8(SystemErrorText(status).GetString());
    text.resize(text.find_last_not_of("\r\n .") + 1);
    return " (" + (text.empty() ? "error " + std::to_string(status) : text) + ")";
}

std::string Counted(std::uint64_t count, const char* thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

std::string LineText(std::uint64_t line) {
    return line == 0 ? "" : "line " + std::to_string(line) + ": ";
}

}  // namespace

std::string NoteText(const CarryNote& note) {
    const KindWords& words = kNotes[static_cast<std::size_t>(note.kind)];
    std::string text = Printable(ToReadableUtf8(note.path)) + ": " + LineText(note.line);
    if (note.isValue) text += ValueText(ToReadableUtf8(note.value)) + " ";
    return text + words.text + (*note.reason != '\0' ? std::string(": ") + note.reason : "") + StatusText(note.status);
}

ordered_json NoteJson(const CarryNote& note) {
    ordered_json json{{"kind", kNotes[static_cast<std::size_t>(note.kind)].name}, {"path", ToReadableUtf8(note.path)}};
    if (note.isValue) json["value"] = ToReadableUtf8(note.value);
    if (note.line != 0) json["line"] = note.line;
    if (note.status != 0) json["status"] = note.status;
    if (*note.reason != '\0') json["reason"] = note.reason;
    return json;
}

std::string FailureText(const CarryException& problem) {
    const std::string path = problem.Path().empty() ? "" : Printable(ToReadableUtf8(problem.Path())) + ": ";
    return path + LineText(problem.Line()) + problem.what() + StatusText(problem.Status());
}

std::string FindingText(const RuleFinding& finding) {
    const std::string other = "/rules/" + std::to_string(finding.other);
    switch (finding.flaw) {
        case RuleFlaw::UnknownHive:
            return "the key is below none of the five hives";
        case RuleFlaw::WholeHive:
            return "a whole hive cannot be carried";
        case RuleFlaw::Backslashes:
            return "a backslash at the end of the key, or two in a row";
        case RuleFlaw::Repeated:
            return "selects the same as " + other;
        case RuleFlaw::Shadowed:
            return "is selected by " + other + " already";
    }
    return {};
}

std::string TotalsText(const CarryReport& report) {
    std::string text =
        Counted(report.keys, "key") + ", " + Counted(report.values, "value") + ", " + Counted(report.bytes, "byte");
    if (report.removedKeys != 0) text += ", " + Counted(report.removedKeys, "key") + " removed";
    if (report.removedValues != 0) text += ", " + Counted(report.removedValues, "value") + " removed";
    return text;
}

ordered_json ReportJson(const CarryReport& report) {
    ordered_json notes = ordered_json::array();
    for (const CarryNote& note : report.notes) notes.push_back(NoteJson(note));
    return {{"keys", report.keys},
            {"values", report.values},
            {"bytes", report.bytes},
            {"removedKeys", report.removedKeys},
            {"removedValues", report.removedValues},
            {"noteCount", report.noteCount},
            {"notes", std::move(notes)}};
}

std::string TypeText(std::uint32_t type) {
    return type < kTypes.size() ? kTypes[type] : std::to_string(type);
}
