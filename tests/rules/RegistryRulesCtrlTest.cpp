// What the exported class and its rule sets answer without the dialog.
#include "rules/RegistryRulesCtrl.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <tuple>

#include "dialog/Rule.h"
#include "dialog/RuleSet.h"
#include "support/Throws.h"

namespace {

// The result of a read and what it left in its outputs.
using Read = std::tuple<int, CString, CString, int, long>;

Read KeyRule(CRegistryRulesCtrl& editor, long index) {
    Read read{9, L"untouched", L"", 99, 99};
    std::get<0>(read) = editor.GetKeyRule(index, std::get<1>(read), &std::get<3>(read), &std::get<4>(read));
    return read;
}

Read ValueRule(CRegistryRulesCtrl& editor, long index) {
    Read read{9, L"untouched", L"untouched", 0, 99};
    std::get<0>(read) = editor.GetValueRule(index, std::get<1>(read), std::get<2>(read), &std::get<4>(read));
    return read;
}

const Read kNoKeyRule{0, L"untouched", L"", 99, 99};
const Read kNoValueRule{0, L"untouched", L"untouched", 0, 99};

// Counts its own destructions, to see who deletes records and that the real class's destructor runs.
class CCountedRule : public CKeyRule {
public:
    explicit CCountedRule(int& destroyed) : CKeyRule(L"HKCU\\a", 1, 0), m_destroyed(destroyed) {}
    ~CCountedRule() override { ++m_destroyed; }

private:
    int& m_destroyed;
};

}  // namespace

TEST(RegistryRulesCtrl, WhatWasAddedComesBackUnchangedBeforeTheDialogRuns) {
    CRegistryRulesCtrl editor;
    const std::wstring longText(32000, L'x');
    const struct {
        const wchar_t* name;
        const wchar_t* readBack;
    } values[] = {{nullptr, L""},
                  {L"", L""},
                  {L"(Default)", L""},
                  {L"(DEFAULT)", L""},
                  {L"Default", L"Default"},
                  {L" (Default)", L" (Default)"},
                  {longText.c_str(), longText.c_str()}};
    for (const auto& [name, readBack] : values) {
        EXPECT_EQ(editor.AddValueRule(L"no hive\\\\", name, -32768), 1);
        EXPECT_EQ(ValueRule(editor, editor.GetValueRuleCount() - 1), (Read{1, L"no hive\\\\", readBack, 0, -32768}));
    }
    for (const wchar_t* key : {L"HKCU\\Software", longText.c_str(), static_cast<const wchar_t*>(nullptr)}) {
        for (const short position : {short{32767}, short{-1}}) {
            EXPECT_EQ(editor.AddKeyRule(key, position - 7, position), 1);
            EXPECT_EQ(KeyRule(editor, editor.GetKeyRuleCount() - 1), (Read{1, key, L"", position - 7, position}));
        }
    }
    EXPECT_EQ(editor.GetKeyRuleCount(), 6);
    EXPECT_EQ(editor.GetValueRuleCount(), 7);
}

TEST(RegistryRulesCtrl, AnIndexWithoutARuleGivesZeroOrRaises) {
    CRegistryRulesCtrl editor;
    EXPECT_EQ(KeyRule(editor, -1), kNoKeyRule) << "raises only where there are rules";
    EXPECT_EQ(ValueRule(editor, -1), kNoValueRule);
    for (const long end : {0, 1}) {
        for (const long index : {end, end + 1, end + 2, std::numeric_limits<long>::max()}) {
            EXPECT_EQ(KeyRule(editor, index), kNoKeyRule) << index << " of " << end;
            EXPECT_EQ(ValueRule(editor, index), kNoValueRule) << index << " of " << end;
        }
        editor.AddKeyRule(L"HKCU\\a", 1, 0);
        editor.AddValueRule(L"HKCU\\a", L"b", 0);
    }
    for (const long index : {-1L, std::numeric_limits<long>::min()}) {
        EXPECT_TRUE(Throws<CInvalidArgException>([&] { KeyRule(editor, index); })) << index;
        EXPECT_TRUE(Throws<CInvalidArgException>([&] { ValueRule(editor, index); })) << index;
    }
}

TEST(RegistryRulesCtrl, AllObjectsShareTheirRulesAndAssignmentTheDialogToo) {
    CRegistryRulesCtrl source;
    {
        CRegistryRulesCtrl other;
        source.AddKeyRule(L"HKCU\\a", 1, 0);
        source.AddValueRule(L"HKCU\\a", L"b", 0);
        EXPECT_EQ(other.GetKeyRuleCount() + other.GetValueRuleCount(), 2);
    }
    EXPECT_EQ(source.GetKeyRuleCount() + source.GetValueRuleCount(), 0) << "the first that goes takes all along";
    // Never destroyed: it shares the dialog of `source`, which deletes it.
    auto* const target = new CRegistryRulesCtrl;
    EXPECT_EQ(&(*target = source), target);
    EXPECT_EQ(*reinterpret_cast<void* const*>(target), *reinterpret_cast<void* const*>(&source));
    static_assert(sizeof(CRegistryRulesCtrl) == sizeof(void*));
}

TEST(RuleSet, TheTwoIndicesBehindTheEndRaiseAndClearDeletesEachRecordOnce) {
    int destroyed = 0;
    RuleSet<CKeyRule> set;
    for (const int round : {1, 2}) {
        set.Clear();
        for (int count = 0; count < 3; ++count) {
            for (const int index : {-1, std::numeric_limits<int>::min(), count, count + 1})
                EXPECT_TRUE(Throws<CInvalidArgException>([&] { set.At(index); })) << index << " of " << count;
            for (const int index : {count + 2, std::numeric_limits<int>::max()})
                EXPECT_EQ(set.At(index), nullptr) << index << " of " << count;
            CKeyRule* const rule = new CCountedRule(destroyed);
            EXPECT_EQ(set.Add(rule), 1);
            EXPECT_EQ(set.At(count), rule);
        }
        EXPECT_EQ(set.Add(nullptr), 0);
        set.Clear();
        EXPECT_EQ(destroyed, 3 * round);
    }
}
