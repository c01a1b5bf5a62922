// What the host decides without Windows: the file's text, the table that it prints, positions.
#include "RulesFile.h"

#include <gtest/gtest.h>

#include "RulePositions.h"
#include "RulesTable.h"

namespace {

using enum HostRuleKind;

std::string WithRules(const std::string& rules) {
    return R"({"format": "registry-rules", "version": 1, "rules": [)" + rules + "]}";
}

TEST(RulesFile, TypeKeyValueAndPositionOfEachRuleAreReadAndWritten) {
    const std::vector<HostRule> rules = ParseRules("\xEF\xBB\xBF" + WithRules(R"(
        {"type": "branch", "key": "HKCU\\Gr\u00f6\u00dfe \ud83d\ude00", "position": 0},
        {"position": -1, "key": "", "type": "key"},
        {"type": "value", "key": "HKLM\\a", "value": "", "position": 2147483647},
        {"type": "value", "key": "no hive\\\\", "value": "tab\there", "position": -2147483648})"));
    EXPECT_EQ(rules, (std::vector<HostRule>{{Branch, "HKCU\\Gr\u00F6\u00DFe \U0001F600", "", 0},
                                            {Key, "", "", -1},
                                            {Value, "HKLM\\a", "", 2147483647},
                                            {Value, "no hive\\\\", "tab\there", -2147483647 - 1}}));
    EXPECT_EQ(ParseRules(FormatRules(rules)), rules);
    const std::string head = "{\n  \"format\": \"registry-rules\",\n  \"version\": 1,\n  \"rules\": [";
    EXPECT_EQ(FormatRules({}), head + "]\n}\n");
    EXPECT_EQ(
        FormatRules({{Branch, "a\\\u00C4\x01", "", 0}, {Value, "b", "", 1}}),
        head +
            "\n    {\n      \"type\": \"branch\",\n      \"key\": \"a\\\\\u00C4\\u0001\",\n      \"position\": 0\n"
            "    },\n    {\n      \"type\": \"value\",\n      \"key\": \"b\",\n      \"value\": \"\",\n"
            "      \"position\": 1\n    }\n  ]\n}\n");
    EXPECT_TRUE(ParseRules(WithRules("")).empty());
}

TEST(RulesFile, WhatIsNoRulesFileIsRefusedWithPlaceAndReason) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "line 1, column 1: the file is empty"},
        {"\xEF\xBB\xBF \r\n", "line 1, column 1: the file is empty"},
        {"\xEF\xBB\xBF}", R"(line 1, column 1: "}" is not what JSON allows here)"},
        {"{\n  \"format\": registry-rules\n}", R"(line 2, column 13: "r" is not what JSON allows here)"},
        {WithRules("") + "\nx", R"(line 2, column 1: "x" is not what JSON allows here)"},
        {"{\"format\": \"a\nb\"}", R"(line 1, column 14: "\n" is not what JSON allows here)"},
        {WithRules("\"\xFF\""), "line 1, column 55: no text in UTF-8, or none that JSON allows here"},
        {WithRules(R"("\ud800")"), R"(line 1, column 61: "\"" is not what JSON allows here)"},
        {std::string(5000, '['), "line 1, column 5001: the text ends too early"},
        {"{\n", "line 2, column 1: the text ends too early"},
        {"\x7F", "line 1, column 1: \"\\x7F\" is not what JSON allows here"},
        {"[]", "/: must be an object"},
        {"{}", R"(/: has no member "format")"},
        {R"({"format": "other", "version": 1, "rules": []})", R"(/format: must be "registry-rules")"},
        {R"({"format": "registry-rules", "version": 2, "rules": []})", "/version: this program reads version 1, not 2"},
        {R"({"format": "registry-rules", "version": "1", "rules": []})", "/version: must be a whole number of 32 bits"},
        {R"({"format": "registry-rules", "version": 1, "rules": {}})", "/rules: must be an array"},
        {R"({"format": "registry-rules", "version": 1, "rules": [], "a/\nb": 0})",
         "/a~1\\x0Ab: is not a member that belongs here"},
        {R"({"format": "registry-rules", "version": 1, "rules": [], "version": 1})",
         "/version: this member stands twice"},
        {WithRules("7"), "/rules/0: must be an object"},
        {WithRules(R"({"type": "key", "key": "a", "position": 0}, {"type": "key", "key": "b"})"),
         R"(/rules/1: has no member "position")"},
        {WithRules(R"({"type": "twig\nleaf", "key": "a", "position": 0})"),
         R"(/rules/0/type: "twig\nleaf" is none of "branch", "key" and "value")"},
        {WithRules(R"({"type": "Key", "key": "a", "position": 0})"),
         R"(/rules/0/type: "Key" is none of "branch", "key" and "value")"},
        {WithRules(R"({"type": "key", "key": null, "position": 0})"), "/rules/0/key: must be a text"},
        {WithRules(R"({"type": "key", "key": "a\u0000b", "position": 0})"),
         "/rules/0/key: holds the character U+0000, which no key or value name has"},
        {WithRules(R"({"type": "key", "key": "a", "value": "", "position": 0})"),
         "/rules/0/value: is not a member that belongs here"},
        {WithRules(R"({"type": "value", "key": "a", "position": 0})"), R"(/rules/0: has no member "value")"},
        {"1e999", "/: the number is too large"},
        {WithRules(R"({}, {"position": 1e999})"), "/rules/1/position: the number is too large"},
        {WithRules("[7, 1e999]"), "/rules/0/1: the number is too large"},
        {WithRules(R"(7, [7, {"a": 0}, {"b": 0, "b": 0}])"), "/rules/1/2/b: this member stands twice"},
    };
    const auto expectRefused = [](const std::string& text, const std::string& message) {
        try {
            ParseRules(text);
            ADD_FAILURE() << "was read: " << text;
        } catch (const RulesFileError& error) {
            EXPECT_EQ(error.what(), message);
        }
    };
    for (const auto& [text, message] : cases) expectRefused(text, message);
    for (const std::string position : {"1.0", "2147483648", "-2147483649", "18446744073709551616", "\"0\""}) {
        expectRefused(WithRules(R"({"type": "key", "key": "a", "position": )" + position + "}"),
                      "/rules/0/position: must be a whole number of 32 bits");
    }
}

TEST(RulesTable, ColumnsStandInLineAndControlCharactersCannotBreakThem) {
    EXPECT_EQ(RulesTable({}), "(no rules)\n");
    const std::string wide(61, 'w');
    EXPECT_EQ(RulesTable({{Branch, "HKCU\\Environment", "ignored", 0},
                          {Value, "HKCU\\\u00F6\u4E2D\U0001F600", "TEMP", 10},
                          {Value, "a\nb\x1B[2J\x7F\u0080\u009F\u00A0", "", -1},
                          {Value, wide, "", 2}}),
              "Position  Type    Key" + std::string(59, ' ') + "Value\n0         branch  HKCU\\Environment\n" +
                  "10        value   HKCU\\\u00F6\u4E2D\U0001F600" + std::string(54, ' ') + "TEMP\n" +
                  "-1        value   a\\x0Ab\\x1B[2J\\x7F\\x80\\x9F\u00A0" + std::string(36, ' ') + "(Default)\n" +
                  "2         value   " + wide + "  (Default)\n");
}

TEST(RulePositions, TheEditorTellsApartWhatFitsInto16Bits) {
    const auto keepsOrder = [](std::size_t count, int position) {
        return EditorKeepsOrder(std::vector<HostRule>(count, {Key, "", "", position}));
    };
    EXPECT_TRUE(keepsOrder(32768, 32767) && keepsOrder(1, -32768));
    EXPECT_FALSE(keepsOrder(32769, 0) || keepsOrder(1, 32768) || keepsOrder(1, -32769));
    EXPECT_EQ(EditorPosition(65536), 32767);
    EXPECT_EQ(EditorPosition(-32769), -32768);
}

}  // namespace
