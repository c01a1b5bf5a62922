// list and check: what rules select, and what is wrong with them.
#include <nlohmann/json.hpp>

#include "CarryText.h"
#include "CommandWork.h"
#include "HostOutput.h"
#include "Printable.h"
#include "ProgressLine.h"
#include "RulesTable.h"
#include "Utf8.h"
#include "carry/SelectionWalk.h"

namespace {

using nlohmann::ordered_json;

// Prints as it goes, so that a list of any length needs no memory.
class Listing final : public RegistryVisitor {
public:
    explicit Listing(bool json) : m_json(json) {
        if (m_json) PrintOutput("{\"selected\": [");
    }

    void OnKey(const std::wstring& path) override {
        m_path = ToReadableUtf8(path);
        ++m_report.keys;
        TellProgress(m_progress.Function(), {m_report.keys, m_report.values, m_report.bytes, path});
        if (m_json) {
            Print({{"kind", "key"}, {"key", m_path}});
        } else {
            PrintOutput("key    " + Printable(m_path) + "\n");
        }
    }
    void OnValue(const ValueBuffer& value) override {
        const std::string name = ToReadableUtf8(value.Name());
        const std::string type = TypeText(value.Type());
        const std::size_t size = value.Data().size();
        ++m_report.values;
        m_report.bytes += size;
        if (m_json) {
            Print({{"kind", "value"}, {"key", m_path}, {"value", name}, {"type", type}, {"size", size}});
        } else {
            PrintOutput("value  " + Printable(m_path) + "  " + ValueText(name) + "  " + type + "  " +
                        std::to_string(size) + "\n");
        }
    }
    void OnNote(CarryNote note) override { m_report.Add(std::move(note)); }

    const CarryReport& Finish() {
        m_progress.Clear();
        PrintOutput(m_json ? "\n], \"totals\": " + ReportJson(m_report).dump() + "}\n" : TotalsText(m_report) + "\n");
        return m_report;
    }

private:
    void Print(const ordered_json& entry) {
        PrintOutput((m_isFirst ? "\n  " : ",\n  ") + entry.dump());
        m_isFirst = false;
    }

    bool m_json;
    bool m_isFirst = true;
    std::string m_path;
    CarryReport m_report;
    ProgressLine m_progress;
};

}  // namespace

ExitCode ListSelection(const CommandLine& line) {
    const RuleSelection selection(LoadCarryRules(line.file), FoldKeyCase);
    const RegistryTarget target({line.drive, line.user});
    Listing listing(line.json);
    for (const SelectedPart& part : selection.Parts()) WalkPart(target, part, listing);
    const CarryReport& report = listing.Finish();
    TellFindings(selection, line.file);
    TellNotes(report);
    return report.noteCount == 0 && selection.Findings().empty() ? ExitCode::Done : ExitCode::Told;
}

ExitCode CheckRules(const CommandLine& line) {
    const std::vector<CarryRule> rules = LoadCarryRules(line.file);
    const RuleSelection selection(rules, FoldKeyCase);
    const RegistryTarget target({line.drive, line.user});
    ordered_json findings = ordered_json::array();
    std::string text;
    const auto add = [&](std::size_t rule, const std::string& what) {
        findings.push_back({{"rule", rule}, {"key", ToReadableUtf8(rules[rule].key)}, {"finding", what}});
        text +=
            "/rules/" + std::to_string(rule) + ": " + Printable(ToReadableUtf8(rules[rule].key)) + ": " + what + "\n";
    };
    auto finding = selection.Findings().begin();
    for (std::size_t i = 0; i < rules.size(); ++i) {
        if (finding != selection.Findings().end() && finding->rule == i) add(i, FindingText(*finding++));
        if (const auto note = FindMissing(target, rules[i])) add(i, NoteText(*note));
    }
    if (line.json) {
        PrintOutput(ordered_json{{"rules", rules.size()}, {"findings", findings}}.dump(2) + "\n");
    } else {
        PrintOutput(text + std::to_string(rules.size()) + " rules, " + std::to_string(findings.size()) + " findings\n");
    }
    return findings.empty() ? ExitCode::Done : ExitCode::Told;
}
