#include <afxwin.h>

#include <gtest/gtest.h>

namespace {

struct Seen {
    CWinThread* object = nullptr;
    AFX_MODULE_STATE* state = nullptr;
};

UINT __cdecl LookAround(LPVOID parameter) {
    auto& seen = *static_cast<Seen*>(parameter);
    seen = {AfxGetThread(), AfxGetModuleState()};
    AfxGetThread()->m_bAutoDelete = FALSE;
    return 7;
}

}  // namespace

TEST(WinThread, RunsInTheCallersModuleStateAndStaysWhenAskedTo) {
    AFX_MODULE_STATE state(nullptr);
    AFX_MANAGE_STATE(&state)
    Seen seen;
    CWinThread* const thread = AfxBeginThread(LookAround, &seen);
    ASSERT_EQ(WaitForSingleObject(thread->m_hThread, INFINITE), WAIT_OBJECT_0);
    DWORD exitCode = 0;
    GetExitCodeThread(thread->m_hThread, &exitCode);
    EXPECT_EQ(exitCode, 7U);
    EXPECT_EQ(seen.object, thread);
    EXPECT_EQ(seen.state, &state);
    EXPECT_EQ(AfxGetThread(), nullptr);
    delete thread;
}
