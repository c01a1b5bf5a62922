// Reading all rules back through the exported class takes time in proportion to their number, though the sets are lists
// and the class reads them by index. "Bare" walks a standard list of the same texts and copies them out; memory that no
// longer fits into the caches slows both alike.
#include <cstdint>
#include <cstdio>
#include <list>
#include <registry_rules.h>
#include <string>

#include "rules/RegistryRulesCtrl.h"
#include "support/Ratios.h"

namespace {

constexpr const wchar_t* kKey = L"HKEY_CURRENT_USER\\Software\\Example\\Settings";
constexpr const wchar_t* kValue = L"WindowPlacement";
constexpr int kPasses = 5;
constexpr int kMany = 100000;

struct BareRule {
    std::wstring key = kKey;
    std::wstring value = kValue;
    long position = 0;
};

double ReadKeyRules(int rules) {
    CRegistryRulesCtrl editor;
    for (int i = 0; i < rules; ++i) editor.AddKeyRule(kKey, 1, 0);
    CString key;
    int isBranch = 0;
    long position = 0;
    return SecondsOf([&] {
        for (int pass = 0; pass < kPasses; ++pass) {
            for (long i = 0; i < rules; ++i) editor.GetKeyRule(i, key, &isBranch, &position);
        }
    });
}

double ReadValueRules(int rules) {
    CRegistryRulesCtrl editor;
    for (int i = 0; i < rules; ++i) editor.AddValueRule(kKey, kValue, 0);
    CString key;
    CString value;
    long position = 0;
    return SecondsOf([&] {
        for (int pass = 0; pass < kPasses; ++pass) {
            for (long i = 0; i < rules; ++i) editor.GetValueRule(i, key, value, &position);
        }
    });
}

double ReadBare(int rules) {
    const std::list<BareRule> list(static_cast<std::size_t>(rules));
    volatile std::size_t characters = 0;
    return SecondsOf([&] {
        for (int pass = 0; pass < kPasses; ++pass) {
            for (const BareRule& rule : list) {
                const BareRule copy = rule;
                characters = characters + copy.key.size() + copy.value.size();
            }
        }
    });
}

double RoundTripOfClass() {
    return SecondsOf([] {
        CRegistryRulesCtrl editor;
        for (int i = 0; i < kMany; ++i) editor.AddKeyRule(kKey, 1, 0);
        CString key;
        int isBranch = 0;
        long position = 0;
        for (long i = 0; editor.GetKeyRule(i, key, &isBranch, &position) == 1; ++i) {
        }
    });
}

double RoundTripOfC() {
    return SecondsOf([] {
        rr_rules rules = nullptr;
        Require(rr_rules_create(&rules) == RR_OK);
        for (int i = 0; i < kMany; ++i) Require(rr_rules_add_key(rules, kKey, RR_TERMINATED, 1, 0) == RR_OK);
        wchar_t key[256];
        std::size_t length = 0;
        std::int32_t isBranch = 0;
        std::int32_t position = 0;
        for (std::size_t i = 0; i < kMany; ++i) {
            Require(rr_rules_get_key(rules, i, key, 256, &length, &isBranch, &position) == RR_OK);
        }
        rr_rules_close(rules);
    });
}

}  // namespace

int wmain() {
    Ratios ratios;
    ratios.Compare("100,000 rules in and out of the C interface, beside the class", 1.05, RoundTripOfC,
                   RoundTripOfClass);
    constexpr int kCalls = 10000000;
    const double seconds = SecondsOf([] {
        for (int i = 0; i < kCalls; ++i) Require(rr_api_version() == RR_API_VERSION);
    });
    std::printf("a call of the C interface that does nothing: %.1f ns\n", seconds / kCalls * 1e9);
    for (const int rules : {10000, 20000, 40000}) {
        const std::string count = std::to_string(rules);
        ratios.Compare(
            "reading " + count + " key rules", kNoLimit, [=] { return ReadKeyRules(rules); },
            [=] { return ReadBare(rules); });
        ratios.Compare(
            "reading " + count + " value rules", kNoLimit, [=] { return ReadValueRules(rules); },
            [=] { return ReadBare(rules); });
    }
    ratios.Grow("reading key rules", kLinear, {10000, 20000, 40000}, ReadKeyRules);
    ratios.Grow("reading value rules", kLinear, {10000, 20000, 40000}, ReadValueRules);
    ratios.Print();
    return 0;
}
