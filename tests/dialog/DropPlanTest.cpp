#include "dialog/DropPlan.h"

#include <gtest/gtest.h>

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
