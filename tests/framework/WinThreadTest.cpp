#include <afxcoll.h>
#include <afxwin.h>

#include <gtest/gtest.h>
#include <set>

namespace {

struct Seen {
    CWinThread* object = nullptr;
    AFX_MODULE_STATE* state = nullptr;
    DWORD id = 0;
};

UINT __cdecl LookAround(LPVOID parameter) {
    auto& seen = *static_cast<Seen*>(parameter);
    seen = {AfxGetThread(), AfxGetModuleState(), GetCurrentThreadId()};
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
    EXPECT_EQ(seen.id, thread->m_nThreadID);
    EXPECT_EQ(seen.state, &state);
    EXPECT_EQ(AfxGetThread(), nullptr);
    delete thread;
}

TEST(MapPtrToPtr, FindsReplacesAndVisitsEachPairOnce) {
    int things[3] = {};
    CMapPtrToPtr map;
    EXPECT_EQ(map.GetStartPosition(), nullptr);
    for (int& thing : things) map.SetAt(&thing, nullptr);
    map.SetAt(&things[1], &things[2]);
    void* value = &map;
    EXPECT_TRUE(map.Lookup(&things[1], value));
    EXPECT_EQ(value, &things[2]);
    EXPECT_TRUE(map.RemoveKey(&things[0]));
    EXPECT_FALSE(map.RemoveKey(&things[0]));
    EXPECT_FALSE(map.Lookup(&things[0], value));
    EXPECT_EQ(value, &things[2]);
    std::set<void*> keys;
    for (POSITION place = map.GetStartPosition(); place != nullptr;) {
        void* key = nullptr;
        map.GetNextAssoc(place, key, value);
        EXPECT_TRUE(keys.insert(key).second);
    }
    EXPECT_EQ(keys, (std::set<void*>{&things[1], &things[2]}));
}
