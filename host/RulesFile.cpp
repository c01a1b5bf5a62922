#include "RulesFile.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

constexpr int FormatVersion = 1;
constexpr std::array<std::pair<std::string_view, HostRuleKind>, 3> Kinds{{
    {"branch", HostRuleKind::Branch},
    {"key", HostRuleKind::Key},
    {"value", HostRuleKind::Value},
}};

// A text of the file inside a message: quoted, control characters escaped, so that the message stays one line.
std::string Quoted(const std::string& text) {
    return json(text).dump();
}

// Finds members that stand twice in one object: the parser itself keeps the last one and says nothing.
class DuplicateCheck {
public:
    bool operator()(int, json::parse_event_t event, json& parsed) {
        switch (event) {
            case json::parse_event_t::object_start:
            case json::parse_event_t::array_start:
                CountElement();
                m_open.push_back({event == json::parse_event_t::array_start, -1, {}, {}});
                break;
            case json::parse_event_t::object_end:
            case json::parse_event_t::array_end:
                m_open.pop_back();
                break;
            case json::parse_event_t::key:
                NoteMember(parsed.get<std::string>());
                break;
            case json::parse_event_t::value:
                CountElement();
                break;
        }
        return true;
    }

    // Of the element that the parser gave up at before it told it.
    std::string PlaceOfNext() {
        CountElement();
        return m_open.empty() ? "/" : Place();
    }

private:
    struct Container {
        bool isArray;
        int index;
        std::string member;
        std::set<std::string> members;
    };

    void CountElement() {
        if (!m_open.empty() && m_open.back().isArray) ++m_open.back().index;
    }

    void NoteMember(const std::string& name) {
        Container& object = m_open.back();
        object.member = name;
        if (!object.members.insert(name).second) throw RulesFileError(Place(), "this member stands twice");
    }

    std::string Place() const {
        json::json_pointer pointer;
        for (const Container& container : m_open) {
            if (container.isArray) {
                pointer /= static_cast<std::size_t>(container.index);
            } else {
                pointer /= container.member;
            }
        }
        return pointer.to_string();
    }

    std::vector<Container> m_open;
};

// In words of our own, since the parser's change with its version. Its place is the number of bytes that it had read,
// the one that it did not like included.
[[noreturn]] void ThrowSyntaxError(std::string_view text, std::size_t bytesRead) {
    const std::string_view before = text.substr(0, std::max<std::size_t>(bytesRead, 1) - 1);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const std::size_t column = before.size() - (before.rfind('\n') + 1) + 1;
    const std::string place = "line " + std::to_string(line) + ", column " + std::to_string(column);
    if (before.size() == text.size()) throw RulesFileError(place, "the text ends too early");
    const auto byte = static_cast<unsigned char>(text[before.size()]);
    if (byte >= 0x80) throw RulesFileError(place, "no text in UTF-8, or none that JSON allows here");
    throw RulesFileError(place, Quoted(std::string(1, text[before.size()])) + " is not what JSON allows here");
}

json ParseJson(std::string_view text) {
    constexpr std::string_view Mark = "\xEF\xBB\xBF";
    if (text.starts_with(Mark)) text.remove_prefix(Mark.size());
    if (text.find_first_not_of(" \t\r\n") == text.npos) throw RulesFileError("line 1, column 1", "the file is empty");
    DuplicateCheck check;
    try {
        return json::parse(text.begin(), text.end(), std::ref(check));
    } catch (const json::parse_error& error) {
        ThrowSyntaxError(text, error.byte);
    } catch (const json::out_of_range&) {
        throw RulesFileError(check.PlaceOfNext(), "the number is too large");
    }
}

// One object of the file: its members are taken one by one, and what is left over is an error, because it would be lost
// when the file is written back.
class ObjectReader {
public:
    ObjectReader(const json& object, std::string place) : m_object(object), m_place(std::move(place)) {
        if (!object.is_object()) throw RulesFileError(m_place.empty() ? "/" : m_place, "must be an object");
    }

    const json& Take(const std::string& name) {
        const auto found = m_object.find(name);
        if (found == m_object.end()) {
            throw RulesFileError(m_place.empty() ? "/" : m_place, "has no member " + Quoted(name));
        }
        m_taken.insert(name);
        return *found;
    }

    std::string TakeText(const std::string& name) {
        const json& member = Take(name);
        if (!member.is_string()) Fail(name, "must be a text");
        std::string text = member.get<std::string>();
        if (text.find('\0') != std::string::npos)
            Fail(name, "holds the character U+0000, which no key or value name has");
        return text;
    }

    int TakeInteger(const std::string& name) {
        const json& member = Take(name);
        const bool fits =
            member.is_number_unsigned()
                ? member.get<std::uint64_t>() <= std::numeric_limits<std::int32_t>::max()
                : member.is_number_integer() && member.get<std::int64_t>() >= std::numeric_limits<std::int32_t>::min();
        if (!fits) Fail(name, "must be a whole number of 32 bits");
        return member.get<int>();
    }

    void ExpectNothingElse() const {
        for (const auto& [name, member] : m_object.items()) {
            if (!m_taken.contains(name)) Fail(name, "is not a member that belongs here");
        }
    }

    [[noreturn]] void Fail(const std::string& name, const std::string& reason) const {
        throw RulesFileError(m_place + (json::json_pointer() / name).to_string(), reason);
    }

private:
    const json& m_object;
    std::string m_place;
    std::set<std::string> m_taken;
};

HostRule ReadRule(const json& object, const std::string& place) {
    ObjectReader reader(object, place);
    HostRule rule;
    const std::string type = reader.TakeText("type");
    const auto kind = std::find_if(Kinds.begin(), Kinds.end(), [&](const auto& entry) { return entry.first == type; });
    if (kind == Kinds.end()) reader.Fail("type", Quoted(type) + R"( is none of "branch", "key" and "value")");
    rule.kind = kind->second;
    rule.key = reader.TakeText("key");
    if (rule.kind == HostRuleKind::Value) rule.value = reader.TakeText("value");
    rule.position = reader.TakeInteger("position");
    reader.ExpectNothingElse();
    return rule;
}

}  // namespace

std::vector<HostRule> ParseRules(std::string_view text) {
    const json file = ParseJson(text);
    ObjectReader reader(file, "");
    if (reader.TakeText("format") != "registry-rules") reader.Fail("format", R"(must be "registry-rules")");
    if (const int version = reader.TakeInteger("version"); version != FormatVersion) {
        reader.Fail("version", "this program reads version 1, not " + std::to_string(version));
    }
    const json& list = reader.Take("rules");
    if (!list.is_array()) reader.Fail("rules", "must be an array");
    reader.ExpectNothingElse();

    std::vector<HostRule> rules;
    rules.reserve(list.size());
    for (const json& entry : list) rules.push_back(ReadRule(entry, "/rules/" + std::to_string(rules.size())));
    return rules;
}

std::string FormatRules(const std::vector<HostRule>& rules) {
    ordered_json list = ordered_json::array();
    for (const HostRule& rule : rules) {
        ordered_json entry{{"type", KindName(rule.kind)}, {"key", rule.key}};
        if (rule.kind == HostRuleKind::Value) entry["value"] = rule.value;
        entry["position"] = rule.position;
        list.push_back(std::move(entry));
    }
    const ordered_json file{{"format", "registry-rules"}, {"version", FormatVersion}, {"rules", std::move(list)}};
    return file.dump(2) + "\n";
}

std::string_view KindName(HostRuleKind kind) {
    return std::find_if(Kinds.begin(), Kinds.end(), [&](const auto& entry) { return entry.second == kind; })->first;
}
