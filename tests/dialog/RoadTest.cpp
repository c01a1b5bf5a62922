// The whole road: rules from the host, through the dialog's rows, and back.
#include <gtest/gtest.h>
#include <random>

#include "dialog/RowPlacement.h"
#include "dialog/RulesDialog.h"

namespace {
class Road : public RulesDialog {};
}  // namespace

TEST_F(Road, DuplicatesPositionsAndLongFormsComeBackAsTheRowsSay) {
    control.AddKeyRule(L"HKEY_CURRENT_USER\\Software\\A", 7, 0);
    control.AddKeyRule(L"HKLM\\Software\\B", 0, 5);
    control.AddKeyRule(L"hkey_current_user\\SOFTWARE\\a", 1, 32767);  // the first one again
    control.AddKeyRule(L"HKCU\\Software\\C", 1, -1);
    control.AddKeyRule(L"HKCU\\Software\\C", 0, 2);  // another kind is another rule
    control.AddValueRule(L"HKEY_USERS\\.DEFAULT\\E", L"", 1);
    control.AddValueRule(L"HKCU\\Environment", L"TEMP", 1);
    control.AddValueRule(L"HKEY_USERS\\.default\\e", L"(DEFAULT)", 32767);
    const Texts rows{L"Branch|HKCU\\Software\\C|", L"Value|HKCU\\Environment|TEMP",
                     L"Key|HKLM\\Software\\B|",    L"Key|HKCU\\Software\\C|",
                     L"Branch|HKCU\\SOFTWARE\\a|", L"Value|HKU\\.default\\e|(DEFAULT)"};
    EXPECT_EQ(Show([&](Dialog& d) {
                  EXPECT_EQ(Rows(d), rows);
                  d.Click(IDOK);
              }),
              0)
        << "nothing was changed";
    EXPECT_EQ(HostRules(),
              (Texts{L"Branch|HKEY_CURRENT_USER\\Software\\C|0", L"Key|HKEY_LOCAL_MACHINE\\Software\\B|2",
                     L"Key|HKEY_CURRENT_USER\\Software\\C|3", L"Branch|HKEY_CURRENT_USER\\SOFTWARE\\a|4",
                     L"Value|HKEY_CURRENT_USER\\Environment|TEMP|1", L"Value|HKEY_USERS\\.default\\e||5"}));
    // A second run shows the same rows in the same order.
    Show([&](Dialog& d) {
        EXPECT_EQ(Rows(d), rows);
        d.Click(IDCANCEL);
    });
}

TEST_F(Road, CancelLeavesTheRulesAsTheHostGaveThem) {
    control.AddKeyRule(L"HKCU\\A", 7, 5);
    control.AddKeyRule(L"nonsense", 0, -3);
    control.AddValueRule(L"HKEY_USERS\\B", L"v", 9);
    EXPECT_EQ(ShowAndPress(IDCANCEL), 0);
    EXPECT_EQ(HostRules(), (Texts{L"7|HKCU\\A|5", L"Key|nonsense|-3", L"Value|HKEY_USERS\\B|v|9"}));
    EXPECT_TRUE(driver.BoxTexts().empty());
}

TEST_F(Road, ControlsOfOneProcessShareTheRules) {
    control.AddKeyRule(L"HKCU\\First", 1, 0);
    {
        CRegistryRulesCtrl second;
        second.AddKeyRule(L"HKCU\\Second", 1, 1);
        const long result = Show(second, [&](Dialog& d) {
            EXPECT_EQ(Rows(d), (Texts{L"Branch|HKCU\\First|", L"Branch|HKCU\\Second|"}));
            SelectRow(d, 0);
            d.Click(IDC_DELETE_RULE);
            d.Click(IDOK);
        });
        EXPECT_EQ(result, 1);
        EXPECT_EQ(HostRules(), Texts{L"Branch|HKEY_CURRENT_USER\\Second|0"});
        EXPECT_EQ(ShowAndPress(IDOK), 0) << "the first one's own run";
    }
    EXPECT_TRUE(HostRules().empty()) << "the end of one takes the rules of all";
}

TEST_F(Road, TextsOfThirtyTwoThousandCharactersComeThrough) {
    const std::wstring key = L"HKCU\\" + std::wstring(32000, L'k');
    const std::wstring name(32000, L'v');
    control.AddKeyRule(key.c_str(), 0, 0);
    control.AddValueRule(key.c_str(), name.c_str(), 1);
    const std::wstring stripKey = L"HKLM\\" + std::wstring(31995, L's');
    EXPECT_EQ(Show([&](Dialog& d) {
                  EXPECT_EQ(Rows(d), (Texts{L"Key|" + key + L"|", L"Value|" + key + L"|" + name}));
                  d.Click(IDC_NEW_KEY);
                  Put(d.Control(IDC_NEW_KEY), stripKey);
                  Put(d.Control(IDC_NEW_VALUE), name);
                  d.Key(VK_RETURN);
                  EXPECT_EQ(Rows(d)[0], L"Value|" + stripKey + L"|" + name);
                  const HWND edit = OpenCellEdit(d, 1, 1);
                  Put(edit, key + L"x");
                  d.Key(VK_RETURN);
                  EXPECT_EQ(Rows(d)[1], L"Key|" + key + L"x|");
                  d.Click(IDOK);
              }),
              1);
    const std::wstring longKey = L"HKEY_CURRENT_USER" + key.substr(4);
    EXPECT_EQ(HostRules(),
              (Texts{L"Key|" + longKey + L"x|1", L"Value|HKEY_LOCAL_MACHINE" + stripKey.substr(4) + L"|" + name + L"|0",
                     L"Value|" + longKey + L"|" + name + L"|2"}));
}

// The rows come up by a plan that reads no row; they must be those of inserting one rule after the other.
TEST_F(Road, RandomRuleSetsComeUpAsIfInsertedOneByOne) {
    std::mt19937 random(11);
    for (int round = 0; round < 12; ++round) {
        struct Rule {
            std::wstring kind, key, value;
            int position;
        };
        std::vector<Rule> rules[2];
        for (int i = 0; i < 60; ++i) {
            const bool isValue = random() % 3 == 0;
            const wchar_t* const keys[] = {L"HKCU\\\u00C4pfel", L"HKCU\\\u00E4PFEL", L"HKCU\\\u0436",
                                           L"HKCU\\\u0416",     L"hkcu\\\u00E4pfel", L"HKLM\\a",
                                           L"HKLM\\b",          L"HKU\\stra\u00DFe", L"HKU\\STRASSE"};
            const wchar_t* const values[] = {L"\u03C3", L"\u03A3", L"(Default)", L"n"};
            const int position = static_cast<int>(random() % 90) - 20;
            rules[isValue].push_back({isValue        ? L"Value"
                                      : random() % 2 ? L"Branch"
                                                     : L"Key",
                                      keys[random() % std::size(keys)], isValue ? values[random() % 4] : L"",
                                      position});
        }
        std::vector<Rule> rows;
        for (const auto& set : rules) {
            for (const Rule& rule : set) {
                const auto isEqual = [&](int i) {
                    if (i >= static_cast<int>(rows.size())) return false;
                    const Rule& row = rows[static_cast<std::size_t>(i)];
                    return row.kind == rule.kind && CString(row.key.c_str()).CompareNoCase(rule.key.c_str()) == 0 &&
                           CString(row.value.c_str()).CompareNoCase(rule.value.c_str()) == 0;
                };
                const int count = static_cast<int>(rows.size());
                const int at = DeleteEqualRows(count, std::min(rule.position, count), isEqual,
                                               [&](int i) { rows.erase(rows.begin() + i); });
                rows.insert(rows.begin() + at, rule);
                const auto position = static_cast<short>(rule.position);
                if (rule.kind == L"Value")
                    control.AddValueRule(rule.key.c_str(), rule.value.c_str(), position);
                else
                    control.AddKeyRule(rule.key.c_str(), rule.kind == L"Branch", position);
            }
        }
        Texts expected;
        for (const Rule& row : rows) expected.push_back(row.kind + L"|" + row.key + L"|" + row.value);
        Show([&](Dialog& d) {
            EXPECT_EQ(Rows(d), expected) << "round " << round;
            // Empties the list, so that OK leaves no rules for the next round.
            SelectRow(d, 0);
            for (std::size_t i = 0; i < expected.size(); ++i) d.Key(VK_DELETE);
            EXPECT_TRUE(Rows(d).empty());
            d.Click(IDOK);
        });
        ASSERT_TRUE(HostRules().empty());
    }
}
