#include <afx.h>

#include <gtest/gtest.h>
#include <string>

TEST(Exception, MessagesAreCutToTheBuffer) {
    const CInvalidArgException problem;
    wchar_t text[100];
    UINT help = 7;
    EXPECT_TRUE(problem.GetErrorMessage(text, 100, &help));
    EXPECT_STREQ(text, L"An argument is not valid.");
    EXPECT_EQ(help, 0U);

    wchar_t small[] = L"xxxxxx";
    EXPECT_TRUE(problem.GetErrorMessage(small, 4));
    EXPECT_EQ(std::wstring(small, 6), std::wstring(L"An \0xx", 6));
    EXPECT_FALSE(problem.GetErrorMessage(small, 0));
    EXPECT_EQ(small[0], L'A');
    EXPECT_FALSE(problem.GetErrorMessage(nullptr, 10));

    EXPECT_FALSE(CUserException().GetErrorMessage(text, 100));
    EXPECT_STREQ(text, L"");
}
