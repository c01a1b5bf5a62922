#include "RulesTable.h"

#include <gtest/gtest.h>

namespace {

TEST(RulesTable, ColumnsStandInLineAlsoWithLettersOfSeveralBytes) {
    EXPECT_EQ(RulesTable({{HostRuleKind::Branch, "HKCU\\Gr\u00F6\u00DFe", "", 0},
                          {HostRuleKind::Value, "HKCU\\Environment", "TEMP", 10},
                          {HostRuleKind::Value, "HKCU\\a", "", -1}}),
              "Position  Type    Key               Value\n"
              "0         branch  HKCU\\Gr\u00F6\u00DFe\n"
              "10        value   HKCU\\Environment  TEMP\n"
              "-1        value   HKCU\\a            (Default)\n");
}

TEST(RulesTable, ControlCharactersCannotBreakTheLine) {
    EXPECT_EQ(RulesTable({{HostRuleKind::Key, "a\nb\x1B[2J\x7F\xC2\x80\xC2\x9F\xC2\xA0\xC3\x9F", "", 0}}),
              "Position  Type  Key                          Value\n"
              "0         key   a\\x0Ab\\x1B[2J\\x7F\\x80\\x9F\xC2\xA0\xC3\x9F\n");
    EXPECT_EQ(RulesTable({}), "(no rules)\n");
}

}  // namespace
