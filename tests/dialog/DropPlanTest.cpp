#include "dialog/DropPlan.h"

#include <gtest/gtest.h>

TEST(DropPlan, AHiveIsRefusedWhereverItFalls) {
    EXPECT_TRUE(PlanDrop(DraggedItem::Hive, L"HKCU\\", L"HKEY_CURRENT_USER", 0, 3).refused);
    EXPECT_TRUE(PlanDrop(DraggedItem::Hive, L"HKCU\\", L"HKEY_CURRENT_USER", -1, 0).refused);
}

TEST(DropPlan, AKeyBecomesABranchBeforeTheRowUnderTheCursorOrBehindTheLast) {
    const DropPlan onRow = PlanDrop(DraggedItem::Key, L"HKCU\\Software\\Vendor", L"Vendor", 2, 5);
    EXPECT_FALSE(onRow.refused);
    EXPECT_EQ(onRow.kind, RuleKind::Branch);
    EXPECT_EQ(onRow.key, L"HKCU\\Software\\Vendor");
    EXPECT_EQ(onRow.value, L"");
    EXPECT_EQ(onRow.row, 2);
    EXPECT_EQ(PlanDrop(DraggedItem::Key, L"HKCU\\a", L"a", -1, 5).row, 5);
    EXPECT_EQ(PlanDrop(DraggedItem::Key, L"HKCU\\a", L"a", -1, 0).row, 0);
}

TEST(DropPlan, AValueLosesItsOwnNameFromThePath) {
    const struct {
        const wchar_t* path;
        const wchar_t* name;
        const wchar_t* key;
    } cases[] = {
        {L"HKCU\\Software\\Name", L"Name", L"HKCU\\Software"},
        {L"HKCU\\Name\\Name", L"Name", L"HKCU\\Name"},
        {L"HKCU\\Software\\a\\b", L"a\\b", L"HKCU\\Software"},
        {L"HKCU\\Software\\\\", L"\\", L"HKCU\\Software"},
        {L"HKCU\\Name", L"Name", L"HKCU"},
        {L"HKCU\\Software", L"", L"HKCU\\Software"},  // a default value has no name to lose
        {L"HKCU\\", L"", L"HKCU"},
    };
    for (const auto& c : cases) {
        const DropPlan plan = PlanDrop(DraggedItem::Value, c.path, c.name, 0, 1);
        EXPECT_EQ(plan.kind, RuleKind::Value);
        EXPECT_EQ(plan.key, c.key) << c.path;
        EXPECT_EQ(plan.value, c.name);
    }
}
