// What a set of rules selects. Rules may overlap; what they select is selected once:
//
//     const RuleSelection selection(rules, FoldKeyCase);
//     for (const SelectedPart& part : selection.Parts()) Take(part);
//     for (const RuleFinding& finding : selection.Findings()) Tell(finding);
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "carry/KeyName.h"

enum class CarryKind {
    Branch,  // the key, its values, and everything below
    Key,     // the key and its values
    Value,   // one value; an empty name is the key's default value
};

struct CarryRule {
    CarryKind kind = CarryKind::Branch;
    std::wstring key;    // with the long or the short name of a hive
    std::wstring value;  // of the kind Value only
};

// What is wrong with a rule, or needless about it.
enum class RuleFlaw {
    UnknownHive,  // the key begins with no hive
    WholeHive,    // a hive without a key below it, which rules do not carry
    Backslashes,  // a backslash at the end of the key, or two in a row
    Repeated,     // selects what an earlier rule selects
    Shadowed,     // selects a part of what another rule selects
};

struct RuleFinding {
    std::size_t rule = 0;  // index into the rules
    RuleFlaw flaw{};
    std::size_t other = 0;  // the rule that repeats or shadows it
};

// A part of the registry; no two parts overlap.
struct SelectedPart {
    KeyName key;
    CarryKind kind{};
    std::vector<std::wstring> values;  // of the kind Value: the values of this key
};

class RuleSelection {
public:
    // Gives a text in one letter case, as the system compares the names of keys and values.
    using FoldCase = std::wstring (*)(std::wstring_view);

    RuleSelection(const std::vector<CarryRule>& rules, FoldCase foldCase);

    // In the order of the rules; the values of one key stand where the first of them does.
    const std::vector<SelectedPart>& Parts() const { return m_parts; }
    // In the order of the rules, one at most for each. Rules with a finding add no part.
    const std::vector<RuleFinding>& Findings() const { return m_findings; }

private:
    std::vector<SelectedPart> m_parts;
    std::vector<RuleFinding> m_findings;
};
