// The whole road: rules from the host, through the dialog's rows, and back.
#include <gtest/gtest.h>

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

TEST_F(Road, TextsOfFortyThousandCharactersComeThrough) {
    const std::wstring key = L"HKCU\\" + std::wstring(40000, L'k');
    const std::wstring name(40000, L'v');
    control.AddKeyRule(key.c_str(), 0, 0);
    control.AddValueRule(key.c_str(), name.c_str(), 1);
    const std::wstring stripKey = L"HKLM\\" + std::wstring(39995, L's');
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
