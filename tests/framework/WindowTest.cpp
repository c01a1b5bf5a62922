#include <afxwin.h>

#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>

#include "framework/WindowTestApp.h"
#include "support/ImportPatch.h"

namespace {

class CCounted : public CWnd {
public:
    int m_createResult = 0;
    int m_created = 0;
    int m_ended = 0;
    HINSTANCE m_instance = nullptr;

protected:
    void PostNcDestroy() override { ++m_ended; }
    afx_msg int OnCreate(CREATESTRUCTW* create) {
        ++m_created;
        EXPECT_EQ(FromHandlePermanent(m_hWnd), this);
        return CWnd::OnCreate(create) == -1 ? -1 : m_createResult;
    }
    afx_msg void OnSize(UINT, int, int) { m_instance = AfxGetInstanceHandle(); }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CCounted, CWnd)
ON_WM_CREATE()
ON_WM_SIZE()
END_MESSAGE_MAP()

BOOL CreateHidden(CWnd& window, LPCWSTR title = L"") {
    return window.CreateEx(0, nullptr, title, WS_POPUP, CRect(10, 20, 110, 70), nullptr, 0);
}

HWND CreateBareEdit(HWND parent) {
    return ::CreateWindowExW(0, L"EDIT", L"before", WS_CHILD, 0, 0, 50, 20, parent, nullptr, nullptr, nullptr);
}

WNDPROC ProcedureOf(HWND window) {
    return reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(window, GWLP_WNDPROC));
}

}  // namespace

TEST(Window, IsBoundFromItsFirstMessageToItsLast) {
    const size_t before = CWnd::PermanentCountForTesting();
    CCounted window;
    ASSERT_TRUE(CreateHidden(window));
    EXPECT_EQ(window.m_created, 1);
    EXPECT_EQ(CWnd::PermanentCountForTesting(), before + 1);
    const HWND handle = window;
    EXPECT_EQ(CWnd::FromHandle(handle), &window);
    EXPECT_TRUE(window.DestroyWindow());
    EXPECT_EQ(window.m_ended, 1);
    EXPECT_EQ(window.m_hWnd, nullptr);
    EXPECT_FALSE(::IsWindow(handle));
    EXPECT_FALSE(window.DestroyWindow());
    ASSERT_TRUE(CreateHidden(window));  // an object may have one window after the other
    EXPECT_EQ(window.m_created, 2);
    ::DestroyWindow(window);
    EXPECT_EQ(window.m_ended, 2);
    EXPECT_EQ(CWnd::PermanentCountForTesting(), before);
}

TEST(Window, IsNotTheInputMethodWindowThatTheSystemMakesBeforeIt) {
    static HWND s_first = nullptr;
    const ImportPatch<decltype(&CreateWindowExW)> patch(
        LoadedModule(L"framework.dll"), "CreateWindowExW",
        [](DWORD exStyle, LPCWSTR className, LPCWSTR title, DWORD style, int x, int y, int width, int height,
           HWND parent, HMENU menu, HINSTANCE instance, LPVOID parameter) {
            s_first = ::CreateWindowExW(0, L"IME", L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
            return ::CreateWindowExW(exStyle, className, title, style, x, y, width, height, parent, menu, instance,
                                     parameter);
        });
    CWnd window;
    ASSERT_TRUE(CreateHidden(window, L"ours"));
    ASSERT_NE(s_first, nullptr);
    EXPECT_EQ(CWnd::FromHandlePermanent(s_first), nullptr);
    CString title;
    window.GetWindowText(title);
    EXPECT_EQ(title, L"ours");
    ::DestroyWindow(s_first);
}

TEST(Window, ARefusedCreationLeavesNothingBehind) {
    const size_t before = CWnd::PermanentCountForTesting();
    CCounted window;
    window.m_createResult = -1;
    EXPECT_FALSE(CreateHidden(window));
    EXPECT_EQ(window.m_hWnd, nullptr);
    EXPECT_EQ(window.m_ended, 1);

    CCounted unknownClass;
    EXPECT_FALSE(unknownClass.CreateEx(0, L"No such class", L"", WS_POPUP, CRect(), nullptr, 0));
    EXPECT_EQ(unknownClass.m_ended, 1);
    // The binding that was waiting for that window does not catch the next one.
    const HWND next = CreateBareEdit(::GetDesktopWindow());
    EXPECT_EQ(CWnd::FromHandlePermanent(next), nullptr);
    ::DestroyWindow(next);
    EXPECT_EQ(CWnd::PermanentCountForTesting(), before);
}

TEST(Window, SubclassingPutsTheMapBeforeTheOldProcedure) {
    CCounted parent;
    ASSERT_TRUE(CreateHidden(parent));
    const HWND bare = CreateBareEdit(parent);
    const WNDPROC own = ProcedureOf(bare);
    CCounted edit;
    ASSERT_TRUE(edit.SubclassWindow(bare));
    EXPECT_NE(ProcedureOf(bare), own);
    edit.MoveWindow(0, 0, 60, 20);
    EXPECT_NE(edit.m_instance, nullptr);
    CString text;
    edit.GetWindowText(text);
    EXPECT_EQ(text, L"before");

    CWnd second;
    EXPECT_FALSE(second.SubclassWindow(bare));  // a window has one object
    EXPECT_FALSE(edit.SubclassWindow(parent));  // and an object one window
    EXPECT_FALSE(second.SubclassWindow(nullptr));
    EXPECT_EQ(second.m_hWnd, nullptr);

    ::DestroyWindow(bare);
    EXPECT_EQ(edit.m_hWnd, nullptr);
    EXPECT_EQ(edit.m_ended, 1);
}

TEST(Window, ForAWindowWithoutAnObjectThereIsATemporaryOne) {
    const size_t before = CWnd::PermanentCountForTesting();
    CWnd parent;
    ASSERT_TRUE(CreateHidden(parent));
    const HWND bare = CreateBareEdit(parent);
    CWnd* const temporary = CWnd::FromHandle(bare);
    ASSERT_NE(temporary, nullptr);
    EXPECT_EQ(temporary->m_hWnd, bare);
    EXPECT_EQ(CWnd::FromHandle(bare), temporary);
    EXPECT_EQ(CWnd::FromHandlePermanent(bare), nullptr);
    EXPECT_EQ(temporary->GetParent(), &parent);
    EXPECT_EQ(CWnd::FromHandle(nullptr), nullptr);
    EXPECT_EQ(CWnd::PermanentCountForTesting(), before + 1);
    CEdit edit;
    ASSERT_TRUE(edit.SubclassWindow(bare));
    EXPECT_EQ(CWnd::FromHandle(bare), &edit);
}

TEST(Window, ObjectsAreFoundOnTheirOwnThreadOnly) {
    CWnd window;
    ASSERT_TRUE(CreateHidden(window));
    std::thread([&] { EXPECT_EQ(CWnd::FromHandlePermanent(window), nullptr); }).join();
    EXPECT_EQ(CWnd::FromHandlePermanent(window), &window);
}

TEST(Window, WhatAHandlerThrowsOutsideOfADialogIsToldToTheUserAndEndsThere) {
    class CThrower : public CWnd {
    public:
        int m_kind = 0;

    protected:
        LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
            if (message != WM_APP) return CWnd::WindowProc(message, wParam, lParam);
            if (m_kind == 0) AfxThrowUserException();
            if (m_kind == 1) AfxThrowInvalidArgException();
            if (m_kind == 2) throw std::runtime_error("standard");
            throw 7;
        }
    } window;
    ASSERT_TRUE(CreateHidden(window));
    theWindowTestApp.m_boxes.clear();
    for (window.m_kind = 0; window.m_kind < 4; ++window.m_kind) EXPECT_EQ(window.SendMessage(WM_APP), 0);
    ASSERT_EQ(theWindowTestApp.m_boxes.size(), 3u);  // whoever throws a user exception has told already
    EXPECT_FALSE(theWindowTestApp.m_boxes[0].IsEmpty());
    EXPECT_EQ(theWindowTestApp.m_boxes[1], L"standard");
    EXPECT_NE(theWindowTestApp.m_boxes[2], theWindowTestApp.m_boxes[0]);
}

TEST(Window, AMessageBoxOfTheUsualKindsHasAnIcon) {
    static UINT s_type = 0;
    const ImportPatch<decltype(&MessageBoxW)> patch(LoadedModule(L"framework.dll"), "MessageBoxW",
                                                    [](HWND, LPCWSTR, LPCWSTR, UINT type) -> int {
                                                        s_type = type;
                                                        return IDOK;
                                                    });
    const struct {
        UINT type;
        UINT shown;
    } cases[] = {{MB_OK, MB_OK | MB_ICONEXCLAMATION},
                 {MB_OKCANCEL | MB_DEFBUTTON2, MB_OKCANCEL | MB_DEFBUTTON2 | MB_ICONEXCLAMATION},
                 {MB_YESNO, MB_YESNO | MB_ICONEXCLAMATION},
                 {MB_YESNOCANCEL, MB_YESNOCANCEL | MB_ICONEXCLAMATION},
                 {MB_RETRYCANCEL, MB_RETRYCANCEL},
                 {MB_ABORTRETRYIGNORE, MB_ABORTRETRYIGNORE},
                 {MB_YESNO | MB_ICONQUESTION, MB_YESNO | MB_ICONQUESTION},
                 {MB_OK | MB_ICONSTOP, MB_OK | MB_ICONSTOP}};
    AFX_MODULE_STATE withoutApp(nullptr);
    for (const auto& [type, shown] : cases) {
        EXPECT_EQ(theWindowTestApp.CWinApp::DoMessageBox(L"", type, 0), IDOK);
        EXPECT_EQ(s_type, shown);
        AFX_MANAGE_STATE(&withoutApp)
        s_type = 0;
        EXPECT_EQ(AfxMessageBox(L"", type), IDOK);
        EXPECT_EQ(s_type, shown);
    }
}

TEST(Window, TemporaryObjectsEndWithTheOutermostHandler) {
    class CAsker : public CWnd {
    public:
        size_t m_inside = 0;

    protected:
        LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
            if (message == WM_APP) {
                FromHandle(::GetDesktopWindow());
                if (wParam == 0) SendMessage(WM_APP, 1);  // what the outer handler holds survives an inner one
                if (wParam == 0) m_inside = TemporaryCountForTesting();
            }
            return CWnd::WindowProc(message, wParam, lParam);
        }
    } window;
    ASSERT_TRUE(CreateHidden(window));
    const size_t before = CWnd::TemporaryCountForTesting();
    window.SendMessage(WM_APP);
    EXPECT_EQ(window.m_inside, before + 1);
    EXPECT_EQ(CWnd::TemporaryCountForTesting(), before);
}
