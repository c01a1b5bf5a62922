#include "carry/RuleSelection.h"

#include <optional>
#include <unordered_map>

namespace {

// The first rule of a name.
using FirstRules = std::unordered_map<std::wstring, std::size_t>;

struct Named {
    std::optional<KeyName> key;
    std::wstring folded;       // the key's full name
    std::wstring foldedValue;  // the same with the value's name behind a zero, which no name holds
};

std::optional<RuleFlaw> FlawOf(const CarryRule& rule, const std::optional<KeyName>& key) {
    if (!key) return RuleFlaw::UnknownHive;
    if (rule.key.ends_with(L'\\') && !key->subkey.empty()) return RuleFlaw::Backslashes;
    if (rule.key.find(L"\\\\") != rule.key.npos) return RuleFlaw::Backslashes;
    if (key->subkey.empty()) return RuleFlaw::WholeHive;
    return std::nullopt;
}

std::optional<std::size_t> Find(const FirstRules& rules, const std::wstring& name) {
    const auto found = rules.find(name);
    return found == rules.end() ? std::nullopt : std::optional(found->second);
}

class Overlaps {
public:
    void Add(std::size_t index, CarryKind kind, const Named& name) {
        if (kind == CarryKind::Branch) m_branches.try_emplace(name.folded, index);
        if (kind == CarryKind::Key) m_keys.try_emplace(name.folded, index);
        if (kind == CarryKind::Value) m_values.try_emplace(name.foldedValue, index);
    }

    std::optional<RuleFinding> Of(std::size_t index, CarryKind kind, const Named& name) const {
        const FirstRules& same = kind == CarryKind::Branch ? m_branches : kind == CarryKind::Key ? m_keys : m_values;
        const auto first = Find(same, kind == CarryKind::Value ? name.foldedValue : name.folded);
        if (first != index) return RuleFinding{index, RuleFlaw::Repeated, *first};
        if (const auto wider = Wider(kind, name.folded)) return RuleFinding{index, RuleFlaw::Shadowed, *wider};
        return std::nullopt;
    }

private:
    std::optional<std::size_t> Wider(CarryKind kind, std::wstring name) const {
        if (kind == CarryKind::Value) {
            if (const auto key = Find(m_keys, name)) return key;
        }
        if (kind != CarryKind::Branch) {
            if (const auto branch = Find(m_branches, name)) return branch;
        }
        for (auto end = name.rfind(L'\\'); end != name.npos; end = name.rfind(L'\\')) {
            name.resize(end);
            if (const auto branch = Find(m_branches, name)) return branch;
        }
        return std::nullopt;
    }

    FirstRules m_branches;
    FirstRules m_keys;
    FirstRules m_values;
};

}  // namespace

RuleSelection::RuleSelection(const std::vector<CarryRule>& rules, FoldCase foldCase) {
    std::vector<Named> names;
    std::vector<std::optional<RuleFlaw>> flaws;
    Overlaps overlaps;
    for (std::size_t i = 0; i < rules.size(); ++i) {
        Named name{ParseKeyName(rules[i].key), {}, {}};
        flaws.push_back(FlawOf(rules[i], name.key));
        if (!flaws.back()) {
            name.folded = foldCase(FormatKeyName(*name.key));
            name.foldedValue = name.folded + L'\0' + foldCase(rules[i].value);
            overlaps.Add(i, rules[i].kind, name);
        }
        names.push_back(std::move(name));
    }

    std::unordered_map<std::wstring, std::size_t> partOfValues;
    for (std::size_t i = 0; i < rules.size(); ++i) {
        const auto overlap = flaws[i] ? RuleFinding{i, *flaws[i], i} : overlaps.Of(i, rules[i].kind, names[i]);
        if (overlap) {
            m_findings.push_back(*overlap);
            continue;
        }
        if (rules[i].kind == CarryKind::Value) {
            const auto [place, isNew] = partOfValues.try_emplace(names[i].folded, m_parts.size());
            if (!isNew) {
                m_parts[place->second].values.push_back(rules[i].value);
                continue;
            }
        }
        m_parts.push_back({*std::move(names[i].key), rules[i].kind, {}});
        if (rules[i].kind == CarryKind::Value) m_parts.back().values.push_back(rules[i].value);
    }
}
