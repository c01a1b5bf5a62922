#include "RulesFile.h"

#include <gtest/gtest.h>

#include "RulePositions.h"

namespace {

std::string WithRules(const std::string& rules) {
    return R"({"format": "registry-rules", "version": 1, "rules": [)" + rules + "]}";
}

TEST(RulesFile, TypeKeyValueAndPositionOfEachRuleAreRead) {
    const std::vector<HostRule> rules = ParseRules("\xEF\xBB\xBF" + WithRules(R"(
        {"type": "branch", "key": "HKCU\\Software\\Gr\u00f6\u00dfe \ud83d\ude00", "position": 0},
        {"position": -1, "key": "", "type": "key"},
        {"type": "value", "key": "HKLM\\a", "value": "", "position": 2147483647},
        {"type": "value", "key": "no hive\\\\", "value": "tab\there", "position": -2147483648}
    )"));
    const std::vector<HostRule> expected{
        {HostRuleKind::Branch, "HKCU\\Software\\Gr\u00F6\u00DFe \U0001F600", "", 0},
        {HostRuleKind::Key, "", "", -1},
        {HostRuleKind::Value, "HKLM\\a", "", 2147483647},
        {HostRuleKind::Value, "no hive\\\\", "tab\there", -2147483647 - 1},
    };
    EXPECT_EQ(rules, expected);
    EXPECT_TRUE(ParseRules(WithRules("")).empty());
}

TEST(RulesFile, WhatIsNoRulesFileIsRefusedWithPlaceAndReason) {
    const struct {
        std::string text;
        std::string place;
        std::string reason;
    } cases[] = {
        {"", "line 1, column 1", "the file is empty"},
        {"\xEF\xBB\xBF \r\n", "line 1, column 1", "the file is empty"},
        {"\xEF\xBB\xBF}", "line 1, column 1", "\"}\" is not what JSON allows here"},
        {"{\n  \"format\": registry-rules\n}", "line 2, column 13", "\"r\" is not what JSON allows here"},
        {WithRules("") + "\nx", "line 2, column 1", "\"x\" is not what JSON allows here"},
        {"{\"format\": \"a\nb\"}", "line 1, column 14", "\"\\n\" is not what JSON allows here"},
        {WithRules("\"\xFF\""), "line 1, column 55", "no text in UTF-8"},
        {WithRules(R"("\ud800")"), "line 1, column 61", "not what JSON allows here"},
        {std::string(5000, '['), "line 1, column 5001", "the text ends too early"},
        {"{\n", "line 2, column 1", "the text ends too early"},
        {"[]", "/", "must be an object"},
        {"{}", "/", "has no member \"format\""},
        {R"({"format": "other", "version": 1, "rules": []})", "/format", "must be \"registry-rules\""},
        {R"({"format": "registry-rules", "version": 2, "rules": []})", "/version", "version 1, not 2"},
        {R"({"format": "registry-rules", "version": "1", "rules": []})", "/version", "whole number"},
        {R"({"format": "registry-rules", "version": 1, "rules": {}})", "/rules", "must be an array"},
        {R"({"format": "registry-rules", "version": 1, "rules": [], "a/b": 0})", "/a~1b",
         "not a member that belongs here"},
        {R"({"format": "registry-rules", "version": 1, "rules": [], "version": 1})", "/version", "stands twice"},
        {WithRules("7"), "/rules/0", "must be an object"},
        {WithRules(R"({"type": "key", "key": "a", "position": 0}, {"type": "key", "key": "b"})"), "/rules/1",
         "has no member \"position\""},
        {WithRules(R"({"type": "twig\nleaf", "key": "a", "position": 0})"), "/rules/0/type",
         R"("twig\nleaf" is none of)"},
        {WithRules(R"({"type": "Key", "key": "a", "position": 0})"), "/rules/0/type", R"("Key" is none of)"},
        {WithRules(R"({"type": "key", "key": null, "position": 0})"), "/rules/0/key", "must be a text"},
        {WithRules(R"({"type": "key", "key": "a\u0000b", "position": 0})"), "/rules/0/key", "U+0000"},
        {WithRules(R"({"type": "key", "key": "a", "value": "", "position": 0})"), "/rules/0/value",
         "not a member that belongs here"},
        {WithRules(R"({"type": "value", "key": "a", "position": 0})"), "/rules/0", "has no member \"value\""},
        {WithRules(R"({"type": "key", "key": "a", "position": 1.0})"), "/rules/0/position", "whole number"},
        {WithRules(R"({"type": "key", "key": "a", "position": 2147483648})"), "/rules/0/position", "32 bits"},
        {WithRules(R"({"type": "key", "key": "a", "position": -2147483649})"), "/rules/0/position", "32 bits"},
        {WithRules(R"({"type": "key", "key": "a", "position": 18446744073709551616})"), "/rules/0/position", "32 bits"},
        {WithRules(R"({"type": "key", "key": "a", "position": 0},
                      {"type": "key", "key": "b", "key": "c", "position": 0})"),
         "/rules/1/key", "stands twice"},
    };
    for (const auto& [text, place, reason] : cases) {
        SCOPED_TRACE(text.substr(0, 200));
        try {
            ParseRules(text);
            ADD_FAILURE() << "was read";
        } catch (const RulesFileError& error) {
            EXPECT_EQ(error.Place(), place);
            EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << error.what();
            EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos) << "is one line";
        }
    }
}

TEST(RulePositions, TheEditorTellsApartWhatFitsInto16Bits) {
    const auto keepsOrder = [](std::size_t count, int position) {
        return EditorKeepsOrder(std::vector<HostRule>(count, {HostRuleKind::Key, "", "", position}));
    };
    EXPECT_TRUE(keepsOrder(32768, 32767) && keepsOrder(1, -32768));
    EXPECT_FALSE(keepsOrder(32769, 0) || keepsOrder(1, 32768) || keepsOrder(1, -32769));
    EXPECT_EQ(EditorPosition(65536), 32767);
    EXPECT_EQ(EditorPosition(-32769), -32768);
}

TEST(RulesFile, TheTextWrittenIsTheDocumentedForm) {
    EXPECT_EQ(FormatRules({{HostRuleKind::Branch, "HKCU\\\xC3\x84", "", 0}, {HostRuleKind::Value, "HKCU\\b", "", 1}}),
              R"({
  "format": "registry-rules",
  "version": 1,
  "rules": [
    {
      "type": "branch",
      "key": "HKCU\\)"
              "\xC3\x84"
              R"(",
      "position": 0
    },
    {
      "type": "value",
      "key": "HKCU\\b",
      "value": "",
      "position": 1
    }
  ]
}
)");
}

TEST(RulesFile, HardTextsComeBackAsTheyWereWritten) {
    const std::vector<HostRule> rules{
        {HostRuleKind::Key, "HKCU\\\"quoted\"\\/slash\\\x01\x1F\x7F", "", 32767},
        {HostRuleKind::Value, std::string(32000, 'k'), std::string(32000, '\\'), 0},
        {HostRuleKind::Value, "", "\xE4\xB8\xAD \xF0\x9F\x98\x80 line\r\nbreak", -32768},
        {HostRuleKind::Value, "", "\xE4\xB8\xAD \xF0\x9F\x98\x80 line\r\nbreak", -32768},
    };
    EXPECT_EQ(ParseRules(FormatRules(rules)), rules);
    EXPECT_TRUE(ParseRules(FormatRules({})).empty());
}

}  // namespace
