#include <afxcmn.h>
#include <afxwin.h>

#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>

#include "framework/FrameworkTest.h"
#include "support/ImportPatch.h"

namespace {

constexpr UINT kCode = 0x77;
constexpr UINT kChildId = 40;

// A window that counts its life, does what the test says with WM_APP and WM_PAINT, and handles the commands and
// notifications of a child.
class CCounted : public CWnd {
public:
    int m_createResult = 0;
    int m_created = 0;
    int m_ended = 0;
    int m_commands = 0;
    std::function<void()> m_work;

protected:
    void PostNcDestroy() override { ++m_ended; }
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        const std::function<void()> work = m_work;  // which may replace itself
        if ((message == WM_APP || message == WM_PAINT) && work) work();
        return CWnd::WindowProc(message, wParam, lParam);
    }
    afx_msg int OnCreate(CREATESTRUCTW* create) {
        ++m_created;
        EXPECT_EQ(FromHandlePermanent(m_hWnd), this);
        return CWnd::OnCreate(create) == -1 ? -1 : m_createResult;
    }
    afx_msg void OnCommand() { ++m_commands; }
    afx_msg void OnCode(NMHDR*, LRESULT* result) { *result = 22; }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CCounted, CWnd)
ON_WM_CREATE()
ON_CONTROL(5, kChildId, &CCounted::OnCommand)
ON_NOTIFY(kCode, kChildId, &CCounted::OnCode)
ON_NOTIFY(LVN_INSERTITEM, kChildId, &CCounted::OnCode)
END_MESSAGE_MAP()

class CReflecting : public CStatic {
protected:
    afx_msg void OnCode(NMHDR*, LRESULT* result) { *result = AfxGetInstanceHandle() == nullptr ? 21 : 0; }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CReflecting, CStatic)
ON_NOTIFY_REFLECT(kCode, &CReflecting::OnCode)
END_MESSAGE_MAP()

HWND CreateBareChild(HWND parent, LPCWSTR className) {
    return ::CreateWindowExW(0, className, L"before", WS_CHILD, 0, 0, 50, 20, parent, nullptr, nullptr, nullptr);
}

// Every test leaves as many bound windows as it found.
class Window : public testing::Test {
protected:
    ~Window() override { EXPECT_EQ(CWnd::PermanentCountForTesting(), m_before); }

    const size_t m_before = CWnd::PermanentCountForTesting();
};

}  // namespace

TEST_F(Window, IsBoundFromItsFirstMessageToItsLastAndARefusedOneNotAtAll) {
    CCounted window;
    for (const int round : {1, 2}) {  // an object may have one window after the other
        ASSERT_TRUE(CreateHidden(window));
        const HWND handle = window;
        EXPECT_EQ(window.m_created, round);
        EXPECT_EQ(CWnd::FromHandle(handle), &window);
        std::thread([&] { EXPECT_EQ(CWnd::FromHandlePermanent(handle), nullptr) << "on another thread"; }).join();
        EXPECT_TRUE(round == 1 ? window.DestroyWindow() : ::DestroyWindow(handle));
        EXPECT_TRUE(window.m_ended == round && window.m_hWnd == nullptr);
        EXPECT_FALSE(::IsWindow(handle) || window.DestroyWindow());
    }
    window.m_createResult = -1;
    EXPECT_FALSE(CreateHidden(window));
    EXPECT_FALSE(window.CreateEx(0, L"No such class", L"", WS_POPUP, CRect(), nullptr, 0));
    EXPECT_TRUE(window.m_ended == 4 && window.m_hWnd == nullptr);
    const HWND next = CreateBareChild(::GetDesktopWindow(), L"EDIT");
    EXPECT_EQ(CWnd::FromHandlePermanent(next), nullptr) << "what waited for that window does not catch the next one";
    ::DestroyWindow(next);
}

TEST_F(Window, IsNotTheInputMethodWindowThatTheSystemMakesBeforeIt) {
    static HWND s_first = nullptr;
    const ImportPatch<decltype(&CreateWindowExW)> patch(
        LoadedModule(L"framework.dll"), "CreateWindowExW",
        [](DWORD, LPCWSTR name, LPCWSTR, DWORD style, int, int, int, int, HWND, HMENU, HINSTANCE module, LPVOID) {
            const auto create = [&](LPCWSTR className) {
                return ::CreateWindowExW(0, className, L"", style, 0, 0, 9, 9, nullptr, nullptr, module, nullptr);
            };
            s_first = create(L"IME");
            return create(name);
        });
    CCounted window;
    ASSERT_TRUE(CreateHidden(window));
    EXPECT_TRUE(s_first != nullptr && CWnd::FromHandlePermanent(s_first) == nullptr && window.m_created == 1);
    ::DestroyWindow(s_first);
}

TEST_F(Window, HasATemporaryObjectUntilItIsSubclassedAndEndsItWithTheHandler) {
    CCounted window;
    CWnd second;
    CCounted edit;
    ASSERT_TRUE(CreateHidden(window));
    const HWND bare = CreateBareChild(window, L"EDIT");
    const size_t before = CWnd::TemporaryCountForTesting();
    window.m_work = [&] {
        CWnd* const held = CWnd::FromHandle(bare);
        ASSERT_NE(held, nullptr);
        EXPECT_TRUE(held->m_hWnd == bare && held->GetParent() == &window);
        EXPECT_TRUE(CWnd::FromHandlePermanent(bare) == nullptr && CWnd::FromHandle(nullptr) == nullptr);
        window.m_work = [] { CWnd::FromHandle(::GetDesktopWindow()); };
        window.SendMessage(WM_APP);
        EXPECT_EQ(CWnd::FromHandle(bare), held) << "survives an inner handler";
        EXPECT_EQ(CWnd::TemporaryCountForTesting(), before + 1);
    };
    window.SendMessage(WM_APP);
    EXPECT_EQ(CWnd::TemporaryCountForTesting(), before);
    ASSERT_TRUE(edit.SubclassWindow(bare));
    EXPECT_EQ(CWnd::FromHandle(bare), &edit);
    EXPECT_FALSE(second.SubclassWindow(bare)) << "a window has one object";
    EXPECT_FALSE(edit.SubclassWindow(window)) << "and an object one window";
    EXPECT_FALSE(second.SubclassWindow(nullptr));
    CString text;
    edit.GetWindowText(text);
    EXPECT_EQ(text, L"before") << "what the map does not handle goes to the old procedure";
    ::DestroyWindow(bare);
    EXPECT_TRUE(edit.m_hWnd == nullptr && edit.m_ended == 1);
}

TEST_F(Window, ReflectsNotificationsToAnObjectInItsOwnModuleState) {
    AFX_MODULE_STATE childState(nullptr);
    CCounted parent;
    CReflecting child;
    ASSERT_TRUE(CreateHidden(parent));
    {
        AFX_MANAGE_STATE(&childState)
        ASSERT_TRUE(child.CWnd::Create(L"STATIC", L"", WS_CHILD, CRect(0, 0, 9, 9), &parent, kChildId));
    }
    const HWND bare = CreateBareChild(parent, L"STATIC");
    const auto notify = [&](int code, HWND sender, UINT id = kChildId) {
        NMHDR header{sender, id, static_cast<UINT>(code)};
        return parent.SendMessage(WM_NOTIFY, id, reinterpret_cast<LPARAM>(&header));
    };
    EXPECT_EQ(notify(kCode, child), 21);
    EXPECT_EQ(notify(LVN_INSERTITEM, child), 22) << "the child has no handler";
    EXPECT_EQ(notify(kCode, bare) + notify(kCode, nullptr), 44);
    EXPECT_EQ(notify(kCode, bare, kChildId + 1), 0);
    parent.SendMessage(WM_COMMAND, MAKEWPARAM(kChildId, 5), reinterpret_cast<LPARAM>(bare));
    EXPECT_EQ(parent.m_commands, 1);
    const CClientDC context(&parent);
    const auto dc = reinterpret_cast<WPARAM>(context.m_hDC);
    EXPECT_EQ(parent.SendMessage(WM_CTLCOLORSTATIC, dc, reinterpret_cast<LPARAM>(bare)),
              ::DefWindowProcW(parent, WM_CTLCOLORSTATIC, dc, 0));
}

TEST_F(Window, AnExchangeSetsOnlyTextsThatAreNewInControlsThatThereAre) {
    CCounted window;
    ASSERT_TRUE(CreateHidden(window));
    const HWND edit = CreateBareChild(window, L"EDIT");
    ::SetWindowLongPtrW(edit, GWLP_ID, kChildId);
    ::SendMessageW(edit, EM_SETSEL, 3, 5);
    CDataExchange exchange(&window, FALSE);
    CString text = L"before";
    DDX_Text(&exchange, kChildId, text);
    EXPECT_EQ(::SendMessageW(edit, EM_GETSEL, 0, 0), MAKELRESULT(3, 5));
    EXPECT_THROW(DDX_Text(&exchange, kChildId + 1, text), CNotSupportedException*);
}

TEST_F(Window, WhatAHandlerThrowsOutsideOfADialogIsToldToTheUserAndEndsThere) {
    CCounted window;
    ASSERT_TRUE(CreateHidden(window));
    const std::function<void()> works[] = {[] { AfxThrowUserException(); },  // whoever throws it has told already
                                           [] { AfxThrowInvalidArgException(); },
                                           [] { throw std::runtime_error("standard"); }, [] { throw 7; }};
    theFrameworkTestApp.m_boxes.clear();
    for (const auto& work : works) {
        window.m_work = work;
        EXPECT_EQ(window.SendMessage(WM_APP), 0);
    }
    ASSERT_EQ(theFrameworkTestApp.m_boxes.size(), 3u);
    EXPECT_EQ(theFrameworkTestApp.m_boxes[0] + theFrameworkTestApp.m_boxes[1], L"An argument is not valid.standard");
    window.m_work = works[0];
    window.ShowWindow(SW_SHOWNA);
    window.InvalidateRect(nullptr);
    window.UpdateWindow();
    EXPECT_FALSE(::GetUpdateRect(window, nullptr, FALSE)) << "a paint that failed does not come again at once";
}

TEST_F(Window, AMessageBoxOfTheUsualKindsHasAnIcon) {
    static UINT s_type = 0;
    const ImportPatch<decltype(&MessageBoxW)> patch(LoadedModule(L"framework.dll"), "MessageBoxW",
                                                    [](HWND, LPCWSTR, LPCWSTR, UINT type) -> int {
                                                        s_type = type;
                                                        return IDNO;
                                                    });
    AFX_MODULE_STATE withoutApp(nullptr);
    for (const long flags : {MB_OK, MB_OKCANCEL | MB_DEFBUTTON2, MB_YESNO, MB_YESNOCANCEL, MB_RETRYCANCEL,
                             MB_ABORTRETRYIGNORE, MB_YESNO | MB_ICONQUESTION, MB_OK | MB_ICONSTOP}) {
        const auto type = static_cast<UINT>(flags);
        const bool isUsual = type != MB_RETRYCANCEL && type != MB_ABORTRETRYIGNORE && (type & MB_ICONMASK) == 0;
        EXPECT_EQ(theFrameworkTestApp.CWinApp::DoMessageBox(L"", type, 0), IDNO);
        EXPECT_EQ(std::exchange(s_type, 0), isUsual ? type | MB_ICONEXCLAMATION : type);
        AFX_MANAGE_STATE(&withoutApp)
        EXPECT_EQ(AfxMessageBox(L"", type), IDNO);
        EXPECT_EQ(s_type, isUsual ? type | MB_ICONEXCLAMATION : type);
    }
}
