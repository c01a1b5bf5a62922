#include <functional>
#include <gtest/gtest.h>
#include <string>

#include "framework/TestModule.h"

namespace {

class CWatchedException : public CException {
public:
    CWatchedException(bool& gone, BOOL autoDelete) : CException(autoDelete), m_gone(gone) {}
    ~CWatchedException() override { m_gone = true; }

private:
    bool& m_gone;
};

// What CException handlers see of whatever `work` throws.
std::string Caught(const std::function<void()>& work) {
    try {
        work();
    } catch (CException* problem) {
        const std::string name = problem->GetRuntimeClass()->m_lpszClassName;
        EXPECT_TRUE(problem->IsKindOf(RUNTIME_CLASS(CException)));
        problem->Delete();
        return name;
    }
    return {};
}

}  // namespace

TEST(Exception, EachThrowerThrowsItsOwnKind) {
    EXPECT_EQ(Caught(AfxThrowMemoryException), "CMemoryException");
    EXPECT_EQ(Caught(AfxThrowNotSupportedException), "CNotSupportedException");
    EXPECT_EQ(Caught(AfxThrowResourceException), "CResourceException");
    EXPECT_EQ(Caught(AfxThrowUserException), "CUserException");
    EXPECT_EQ(Caught(AfxThrowInvalidArgException), "CInvalidArgException");
}

TEST(Exception, ThePointersTypeIsTheSameInEveryModule) {
    const TestModule module;
    try {
        module.Throw(THROW_INVALID_ARGUMENT);
        ADD_FAILURE();
    } catch (CUserException*) {
        ADD_FAILURE();
    } catch (CInvalidArgException* problem) {
        problem->Delete();
    }
    // Through the DLL's frames, from this program to this program.
    EXPECT_EQ(Caught([&] { module.Call([] { AfxThrowUserException(); }); }), "CUserException");
}

TEST(Exception, DeleteEndsOnlyWhatItOwns) {
    bool gone = false;
    (new CWatchedException(gone, TRUE))->Delete();
    EXPECT_TRUE(gone);
    gone = false;
    {
        CWatchedException kept(gone, FALSE);
        kept.Delete();
        EXPECT_FALSE(gone);
    }
    EXPECT_TRUE(gone);
}

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
