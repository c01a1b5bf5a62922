// Windows and dialogs: how their objects are bound, where messages go, and where that goes which handlers throw.
#include <afxcmn.h>
#include <afxdialogex.h>
#include <afxwin.h>

#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <stdexcept>
#include <thread>

#include "support/ImportPatch.h"

namespace {

constexpr UINT kProbeDialog = 300, kNoPlaceDialog = 301, kBadInitDialog = 302;  // templates
constexpr UINT kChildId = 40;
// Moments of a dialog: in its initialisation, before a message's way, once its loop runs.
constexpr UINT kInit = WM_APP, kTranslate = WM_APP + 1, kInLoop = WM_APP + 2;

using Work = std::function<void()>;

class CTestApp : public CWinApp {
public:
    CString m_told;  // what boxes would show

    int DoMessageBox(LPCWSTR text, UINT, UINT) override { return m_told += text, IDOK; }
} g_app;

// Does what the test says when a message comes.
template <class Base>
class CProbe : public Base {
public:
    using Base::Base;

    std::map<UINT, Work> m_on;
    int m_ended = 0;

protected:
    void Do(UINT moment) {
        const Work work = m_on[moment];  // which may replace itself
        if (work) work();
    }
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        Do(message);
        return Base::WindowProc(message, wParam, lParam);
    }
    void PostNcDestroy() override {
        ++m_ended;
        Base::PostNcDestroy();
    }
};

class CProbeDialog : public CProbe<CDialogEx> {
public:
    using CProbe::CProbe;

protected:
    BOOL OnInitDialog() override {
        CDialogEx::OnInitDialog();
        Do(kInit);
        PostMessage(kInLoop);
        return TRUE;
    }
    BOOL PreTranslateMessage(MSG* message) override {
        if (message->message == kInLoop) Do(kTranslate);
        return CDialogEx::PreTranslateMessage(message);
    }
};

BOOL CreateHidden(CWnd& window) {
    return window.CreateEx(0, nullptr, L"", WS_POPUP, CRect(10, 20, 110, 70), nullptr, 0);
}

HWND CreateBareChild(HWND parent) {
    const auto id = reinterpret_cast<HMENU>(UINT_PTR{kChildId});
    return ::CreateWindowExW(0, L"EDIT", L"before", WS_CHILD, 0, 0, 50, 20, parent, id, nullptr, nullptr);
}

class Window : public testing::Test {
protected:
    // Every test leaves as many bound windows as it found.
    struct Count {
        const size_t before = CWnd::PermanentCountForTesting();
        ~Count() { EXPECT_EQ(CWnd::PermanentCountForTesting(), before); }
    } m_count;
    CProbe<CWnd> m_window;
};

class Dialog : public Window {
protected:
    Dialog() {
        m_window.CreateEx(0, nullptr, L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, CRect(300, 200, 700, 500), nullptr, 0);
    }
    // However a dialog ended, nothing is left of it, and its owner is active and can be worked.
    void ExpectOver() {
        EXPECT_EQ(m_dialog.m_hWnd, nullptr);
        EXPECT_TRUE(m_window.IsWindowEnabled());
        EXPECT_EQ(::GetActiveWindow(), m_window);
    }

    CProbeDialog m_dialog{kProbeDialog, &m_window};
};

}  // namespace

TEST_F(Window, IsBoundFromItsFirstMessageToItsLastAndARefusedOneNotAtAll) {
    int created = 0;
    m_window.m_on[WM_CREATE] = [&] { created += CWnd::FromHandlePermanent(m_window) == &m_window ? 1 : 0; };
    for (const int round : {1, 2}) {  // an object may have one window after the other
        ASSERT_TRUE(CreateHidden(m_window));
        const HWND handle = m_window;
        EXPECT_EQ(created, round);
        std::thread([&] { EXPECT_EQ(CWnd::FromHandlePermanent(handle), nullptr) << "on another thread"; }).join();
        EXPECT_TRUE(round == 1 ? m_window.DestroyWindow() : ::DestroyWindow(handle));
        EXPECT_TRUE(m_window.m_ended == round && m_window.m_hWnd == nullptr);
        EXPECT_FALSE(::IsWindow(handle) || m_window.DestroyWindow());
    }
    m_window.m_on[WM_CREATE] = [] { AfxThrowUserException(); };
    EXPECT_FALSE(CreateHidden(m_window));
    EXPECT_FALSE(m_window.CreateEx(0, L"No such class", L"", WS_POPUP, CRect(), nullptr, 0));
    EXPECT_TRUE(m_window.m_ended == 4 && m_window.m_hWnd == nullptr);
    const HWND next = CreateBareChild(::GetDesktopWindow());
    EXPECT_EQ(CWnd::FromHandlePermanent(next), nullptr) << "what waited for that window does not catch the next one";
    ::DestroyWindow(next);
}

TEST_F(Window, IsNotTheInputMethodWindowThatTheSystemMakesBeforeIt) {
    static HWND s_first = nullptr;
    const ImportPatch<decltype(&CreateWindowExW)> patch(
        LoadedModule(L"RegistryRulesFramework.dll"), "CreateWindowExW",
        [](DWORD, LPCWSTR name, LPCWSTR, DWORD style, int, int, int, int, HWND, HMENU, HINSTANCE module, LPVOID) {
            s_first = ::CreateWindowExW(0, L"IME", L"", style, 0, 0, 9, 9, nullptr, nullptr, module, nullptr);
            return ::CreateWindowExW(0, name, L"", style, 0, 0, 9, 9, nullptr, nullptr, module, nullptr);
        });
    ASSERT_TRUE(CreateHidden(m_window));
    EXPECT_TRUE(s_first != nullptr && m_window.m_hWnd != nullptr && m_window.m_hWnd != s_first);
    ::DestroyWindow(s_first);
}

TEST_F(Window, HasATemporaryObjectUntilItIsSubclassedAndEndsItWithTheHandler) {
    CWnd second;
    CProbe<CWnd> edit;
    ASSERT_TRUE(CreateHidden(m_window));
    const HWND bare = CreateBareChild(m_window);
    const size_t before = CWnd::TemporaryCountForTesting();
    m_window.m_on[WM_APP] = [&] {
        CWnd* const held = CWnd::FromHandle(bare);
        EXPECT_TRUE(held->m_hWnd == bare && held->GetParent() == &m_window && CWnd::FromHandle(nullptr) == nullptr);
        m_window.m_on[WM_APP] = [] { CWnd::FromHandle(::GetDesktopWindow()); };
        m_window.SendMessage(WM_APP);
        EXPECT_EQ(CWnd::FromHandle(bare), held) << "survives an inner handler";
        EXPECT_EQ(CWnd::TemporaryCountForTesting(), before + 1);
    };
    m_window.SendMessage(WM_APP);
    EXPECT_EQ(CWnd::TemporaryCountForTesting(), before);
    ASSERT_TRUE(edit.SubclassWindow(bare));
    EXPECT_EQ(CWnd::FromHandle(bare), &edit);
    EXPECT_FALSE(second.SubclassWindow(bare)) << "a window has one object";
    EXPECT_FALSE(edit.SubclassWindow(m_window)) << "and an object one window";

    // An exchange with it sets only what is new, which would else move the caret.
    edit.SendMessage(EM_SETSEL, 3, 5);
    CDataExchange exchange(&m_window, FALSE);
    CString text = L"before";
    DDX_Text(&exchange, kChildId, text);
    EXPECT_EQ(edit.SendMessage(EM_GETSEL), MAKELRESULT(3, 5));
    EXPECT_THROW(DDX_Text(&exchange, kChildId + 1, text), CNotSupportedException*);
    ::DestroyWindow(bare);
    EXPECT_TRUE(edit.m_hWnd == nullptr && edit.m_ended == 1);
}

TEST_F(Window, WhatAHandlerThrowsOutsideOfADialogIsToldToTheUserAndEndsThere) {
    const Work works[] = {[] { throw 7; }, [] { AfxThrowInvalidArgException(); },
                          [] { throw std::runtime_error("standard"); },
                          [] { AfxThrowUserException(); }};  // who throws it has told it
    ASSERT_TRUE(CreateHidden(m_window));
    for (const Work& work : works) {
        m_window.m_on[WM_APP] = m_window.m_on[WM_PAINT] = work;
        EXPECT_EQ(m_window.SendMessage(WM_APP), 0);
    }
    EXPECT_EQ(g_app.m_told, L"An operation failed for an unknown reason.An argument is not valid.standard");
    m_window.ShowWindow(SW_SHOWNA);
    m_window.RedrawWindow();
    EXPECT_FALSE(::GetUpdateRect(m_window, nullptr, FALSE)) << "a paint that failed does not come again at once";
}

TEST(MessageBoxes, OfTheUsualKindsHaveAnIcon) {
    static UINT s_type = 0;
    const ImportPatch<decltype(&MessageBoxW)> patch(
        LoadedModule(L"RegistryRulesFramework.dll"), "MessageBoxW",
        [](HWND, LPCWSTR, LPCWSTR, UINT type) -> int { return s_type = type, IDNO; });
    const auto shown = [](long type) {
        EXPECT_EQ(g_app.CWinApp::DoMessageBox(L"", static_cast<UINT>(type), 0), IDNO);
        return static_cast<long>(s_type);
    };
    for (const long type : {MB_OK, MB_OKCANCEL | MB_DEFBUTTON2, MB_YESNO, MB_YESNOCANCEL})
        EXPECT_EQ(shown(type), type | MB_ICONEXCLAMATION);
    for (const long type : {MB_RETRYCANCEL, MB_ABORTRETRYIGNORE, MB_YESNO | MB_ICONQUESTION, MB_OK | MB_ICONSTOP})
        EXPECT_EQ(shown(type), type);
}

TEST_F(Dialog, EachWayToEndHasItsResult) {
    EXPECT_EQ(CDialogEx(9999).DoModal(), -1) << "no template";
    EXPECT_EQ(CDialogEx(kBadInitDialog).DoModal(), -1) << "a broken initialisation resource";
    const std::tuple<UINT, Work, INT_PTR> ends[] = {{kInit, [&] { m_dialog.EndDialog(12); }, 12},
                                                    {kInLoop, [&] { ::DestroyWindow(m_dialog); }, -1},
                                                    {kInLoop, [] { ::PostQuitMessage(33); }, -1}};
    for (const auto& [moment, work, result] : ends) {
        m_dialog.m_on = {{kInLoop, [] { ADD_FAILURE() << "the loop runs"; }}};
        m_dialog.m_on[moment] = work;
        EXPECT_EQ(m_dialog.DoModal(), result);
        EXPECT_TRUE(m_window.IsWindowEnabled());
    }
    MSG message{};
    EXPECT_TRUE(::PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "is left for the outer loop";
    EXPECT_EQ(message.wParam, 33u);
    ExpectOver();
    for (const UINT moment : {kInit, kTranslate, kInLoop}) {
        m_dialog.m_on = {{moment, [] { AfxThrowInvalidArgException(); }},
                         {WM_DESTROY, [] { throw std::runtime_error("not the first"); }}};
        EXPECT_THROW(m_dialog.DoModal(), CInvalidArgException*);
        ExpectOver();
    }
}

TEST_F(Dialog, TheOwnerIsDisabledMeanwhileAndEnabledBeforeTheDialogGoes) {
    CWnd child;
    child.Create(nullptr, L"", WS_VISIBLE, CRect(0, 0, 50, 50), &m_window, 1);
    CProbeDialog outer(kProbeDialog, &child);  // a child cannot own a dialog; the window that it is in does
    CProbeDialog inner(kProbeDialog, &outer);
    int enabled = 0;
    outer.m_on[kInLoop] = [&] {
        EXPECT_EQ(::GetWindow(outer, GW_OWNER), m_window);
        inner.DoModal();
        EXPECT_TRUE(outer.IsWindowEnabled() && !m_window.IsWindowEnabled());
        EXPECT_EQ(::GetActiveWindow(), outer);
        outer.EndDialog(IDOK);
    };
    inner.m_on[kInLoop] = [&] {
        EXPECT_FALSE(outer.IsWindowEnabled() || m_window.IsWindowEnabled());
        inner.EndDialog(IDOK);
    };
    inner.m_on[WM_DESTROY] = [&] { enabled += outer.IsWindowEnabled(); };
    outer.m_on[WM_DESTROY] = [&] { enabled += m_window.IsWindowEnabled(); };
    outer.DoModal();
    EXPECT_EQ(enabled, 2) << "or another program's window would come to the front";
    child.DestroyWindow();
    ExpectOver();
}

TEST_F(Dialog, ATemplateWithoutAPlaceIsCenteredUnlessItWasMovedAndStaysOnTheScreen) {
    CProbeDialog dialog(kNoPlaceDialog, &m_window);
    CRect place;
    dialog.m_on[kInLoop] = [&] {
        dialog.GetWindowRect(place);
        dialog.EndDialog(IDOK);
    };
    dialog.DoModal();
    EXPECT_NEAR(place.left + place.right, 300 + 700, 2);
    EXPECT_NEAR(place.top + place.bottom, 200 + 500, 2);
    m_window.MoveWindow(-300, -200, 400, 300);
    dialog.DoModal();
    EXPECT_EQ(place.TopLeft(), CPoint(0, 0));
    dialog.m_on[kInit] = [&] { dialog.SetWindowPos(nullptr, 77, 55, 0, 0, SWP_NOSIZE | SWP_NOZORDER); };
    dialog.DoModal();
    EXPECT_EQ(place.TopLeft(), CPoint(77, 55));
}
