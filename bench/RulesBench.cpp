// Reading all rules back through the exported class grows with their number and no faster, though the sets are lists
// and the class reads them by index.
#include "rules/RegistryRulesCtrl.h"
#include "support/Ratios.h"

namespace {

double ReadKeyRules(int rules) {
    CRegistryRulesCtrl editor;
    for (int i = 0; i < rules; ++i) editor.AddKeyRule(L"HKEY_CURRENT_USER\\Software\\Example\\Settings", 1, 0);
    CString key;
    int isBranch = 0;
    long position = 0;
    return SecondsOf([&] {
        for (long i = 0; i < rules; ++i) editor.GetKeyRule(i, key, &isBranch, &position);
    });
}

double ReadValueRules(int rules) {
    CRegistryRulesCtrl editor;
    for (int i = 0; i < rules; ++i) editor.AddValueRule(L"HKEY_CURRENT_USER\\Environment", L"TEMP", 0);
    CString key;
    CString value;
    long position = 0;
    return SecondsOf([&] {
        for (long i = 0; i < rules; ++i) editor.GetValueRule(i, key, value, &position);
    });
}

}  // namespace

extern "C" int wmain() {
    Ratios ratios;
    ratios.Grow("reading key rules", {10000, 20000, 40000}, ReadKeyRules);
    ratios.Grow("reading value rules", {10000, 20000, 40000}, ReadValueRules);
    ratios.Print();
    return 0;
}
