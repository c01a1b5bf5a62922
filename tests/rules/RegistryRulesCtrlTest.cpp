// What the exported class and its rule sets answer without the dialog.
#include "rules/RegistryRulesCtrl.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <tuple>

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

}  // namespace

TEST(RegistryRulesCtrl, AllObjectsGiveBackWhatWasAddedAndZeroForAnIndexWithoutARuleOrRaise) {
    CRegistryRulesCtrl editor;
    long keys = 0;
    long values = 0;
    const auto expectNoneAt = [&](long key, long value) {
        EXPECT_EQ(KeyRule(editor, key), (Read{0, L"untouched", L"", 99, 99})) << key << " of " << keys;
        EXPECT_EQ(ValueRule(editor, value), (Read{0, L"untouched", L"untouched", 0, 99})) << value << " of " << values;
    };
    expectNoneAt(-1, -1);  // raises only where there are rules
    expectNoneAt(0, 0);
    const std::wstring longText(32000, L'x');
    const std::pair<const wchar_t*, const wchar_t*> names[] = {{nullptr, L""},
                                                               {L"", L""},
                                                               {L"(Default)", L""},
                                                               {L"(DEFAULT)", L""},
                                                               {L"Default", L"Default"},
                                                               {L" (Default)", L" (Default)"},
                                                               {longText.c_str(), longText.c_str()}};
    for (const auto& [name, readBack] : names) {
        EXPECT_EQ(editor.AddValueRule(L"no hive\\\\", name, -32768), 1);
        EXPECT_EQ(ValueRule(editor, values), (Read{1, L"no hive\\\\", readBack, 0, -32768}));
        EXPECT_EQ(editor.GetValueRuleCount(), ++values);
    }
    for (const wchar_t* key : {L"HKCU\\Software", longText.c_str(), static_cast<const wchar_t*>(nullptr)}) {
        for (const short position : {short{32767}, short{-1}}) {
            EXPECT_EQ(editor.AddKeyRule(key, position - 7, position), 1);
            EXPECT_EQ(KeyRule(editor, keys), (Read{1, key, L"", position - 7, position}));
            EXPECT_EQ(editor.GetKeyRuleCount(), ++keys);
        }
    }
    for (const long behind : {0, 1, 2}) expectNoneAt(keys + behind, values + behind);
    expectNoneAt(std::numeric_limits<long>::max(), std::numeric_limits<long>::max());
    for (const long index : {-1L, std::numeric_limits<long>::min()}) {
        EXPECT_TRUE(Throws<CInvalidArgException>([&] { KeyRule(editor, index); })) << index;
        EXPECT_TRUE(Throws<CInvalidArgException>([&] { ValueRule(editor, index); })) << index;
    }
    {
        CRegistryRulesCtrl other;
        EXPECT_TRUE(other.GetKeyRuleCount() == keys && other.GetValueRuleCount() == values);
    }
    EXPECT_EQ(editor.GetKeyRuleCount() + editor.GetValueRuleCount(), 0) << "the first that goes takes all along";
    // Never destroyed: it shares the dialog of `editor`, which deletes it.
    auto* const target = new CRegistryRulesCtrl;
    EXPECT_EQ(&(*target = editor), target);
    EXPECT_EQ(*reinterpret_cast<void* const*>(target), *reinterpret_cast<void* const*>(&editor));
}

TEST(RuleSet, TheTwoIndicesBehindTheEndRaiseAndClearDeletesEachRecordOnce) {
    static int s_destroyed = 0;
    struct Record {
        ~Record() { ++s_destroyed; }
    };
    RuleSet<Record> set;
    for (int count = 0; count < 3; ++count) {
        for (const int index : {-1, count, count + 1})
            EXPECT_TRUE(Throws<CInvalidArgException>([&] { set.At(index); })) << index << " of " << count;
        EXPECT_EQ(set.At(count + 2), nullptr) << count;
        auto* const record = new Record;
        EXPECT_EQ(set.Add(record), 1);
        EXPECT_EQ(set.At(count), record);
    }
    EXPECT_EQ(set.Add(nullptr), 0);
    set.Clear();
    set.Clear();
    EXPECT_EQ(s_destroyed, 3);
}
