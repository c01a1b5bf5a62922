#include <afx.h>

#include <gtest/gtest.h>
#include <memory>

namespace {

class CBase : public CObject {
    DECLARE_DYNAMIC(CBase)
};

class CMade : public CBase {
    DECLARE_DYNCREATE(CMade)
public:
    int m_number = 42;
};

class CPlain : public CMade {};  // has no record of its own

IMPLEMENT_DYNAMIC(CBase, CObject)
IMPLEMENT_DYNCREATE(CMade, CBase)

}  // namespace

TEST(Object, KindFollowsTheChainOfRecords) {
    const CMade made;
    EXPECT_TRUE(made.IsKindOf(RUNTIME_CLASS(CMade)));
    EXPECT_TRUE(made.IsKindOf(RUNTIME_CLASS(CBase)));
    EXPECT_TRUE(made.IsKindOf(RUNTIME_CLASS(CObject)));
    EXPECT_FALSE(made.IsKindOf(RUNTIME_CLASS(CException)));
    EXPECT_FALSE(CBase().IsKindOf(RUNTIME_CLASS(CMade)));
    EXPECT_STREQ(CPlain().GetRuntimeClass()->m_lpszClassName, "CMade");
}

TEST(Object, OnlyACreatableClassIsMadeByItsRecord) {
    const std::unique_ptr<CObject> object(RUNTIME_CLASS(CMade)->CreateObject());
    ASSERT_NE(object, nullptr);
    ASSERT_TRUE(object->IsKindOf(RUNTIME_CLASS(CMade)));
    EXPECT_EQ(static_cast<CMade&>(*object).m_number, 42);
    EXPECT_EQ(RUNTIME_CLASS(CBase)->CreateObject(), nullptr);
    EXPECT_EQ(RUNTIME_CLASS(CObject)->CreateObject(), nullptr);
}
