#include <afxcmn.h>
#include <afxwin.h>

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using Log = std::vector<std::string>;

std::string Text(std::initializer_list<INT_PTR> numbers) {
    std::string text;
    for (const INT_PTR number : numbers) text += " " + std::to_string(number);
    return text;
}

// Writes down what its handlers were given.
class CRecorder : public CWnd {
public:
    Log m_log;

protected:
    afx_msg void OnSize(UINT type, int cx, int cy) { Note("size", {type, cx, cy}); }
    afx_msg void OnMouseMove(UINT flags, CPoint point) { Note("move", {flags, point.x, point.y}); }
    afx_msg void OnLButtonDown(UINT flags, CPoint point) { Note("down", {flags, point.x, point.y}); }
    afx_msg void OnKeyDown(UINT key, UINT repeat, UINT flags) { Note("key", {key, repeat, flags}); }
    afx_msg void OnSetFocus(CWnd* old) { Note("focus", {old == this, old == nullptr}); }
    afx_msg void OnHScroll(UINT code, UINT position, CScrollBar* bar) {
        Note("scroll", {code, position, bar == nullptr});
    }
    afx_msg UINT OnGetDlgCode() { return CWnd::OnGetDlgCode() | DLGC_WANTALLKEYS; }
    afx_msg void OnClose() { Note("close", {}); }
    afx_msg LRESULT OnOwn(WPARAM wParam, LPARAM lParam) { return static_cast<LRESULT>(wParam) - lParam; }
    DECLARE_MESSAGE_MAP()

    void Note(const char* name, std::initializer_list<INT_PTR> numbers) { m_log.push_back(name + Text(numbers)); }
};

constexpr UINT kOwn = WM_APP + 7;

BEGIN_MESSAGE_MAP(CRecorder, CWnd)
ON_WM_SIZE()
ON_WM_MOUSEMOVE()
ON_WM_LBUTTONDOWN()
ON_WM_KEYDOWN()
ON_WM_SETFOCUS()
ON_WM_HSCROLL()
ON_WM_GETDLGCODE()
ON_WM_CLOSE()
ON_MESSAGE(kOwn, &CRecorder::OnOwn)
END_MESSAGE_MAP()

template <class Window>
void CreateHidden(Window& window) {
    ASSERT_TRUE(window.CreateEx(0, nullptr, L"", WS_POPUP, CRect(0, 0, 100, 100), nullptr, 0));
    if constexpr (requires { window.m_log; }) window.m_log.clear();
}

}  // namespace

TEST(MessageMap, TakesMessagesApartIntoTheHandlersArguments) {
    CRecorder window;
    CreateHidden(window);
    const struct {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
        const char* expected;
    } cases[] = {
        {WM_SIZE, SIZE_MAXIMIZED, MAKELPARAM(40000, 30), "size 2 40000 30"},
        {WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(-5, -32768), "move 1 -5 -32768"},
        {WM_LBUTTONDOWN, 0, MAKELPARAM(7, 8), "down 0 7 8"},
        {WM_KEYDOWN, VK_DELETE, MAKELPARAM(3, 0x0153), "key 46 3 339"},
        {WM_SETFOCUS, 0, 0, "focus 0 1"},
        {WM_SETFOCUS, reinterpret_cast<WPARAM>(window.m_hWnd), 0, "focus 1 0"},
        {WM_HSCROLL, MAKEWPARAM(SB_THUMBTRACK, 65535), 0, "scroll 5 65535 1"},
        {WM_CLOSE, 0, 0, "close"},
    };
    for (const auto& [message, wParam, lParam, expected] : cases) {
        window.m_log.clear();
        EXPECT_EQ(window.SendMessage(message, wParam, lParam), 0) << expected;
        EXPECT_EQ(window.m_log, Log{expected});
    }
    EXPECT_EQ(window.SendMessage(kOwn, 10, 13), -3);
    EXPECT_EQ(window.SendMessage(WM_GETDLGCODE), DLGC_WANTALLKEYS);
}

namespace {

Log s_order;

constexpr UINT kChildId = 40;
constexpr UINT kCode = 0x77;

class CReflectingChild : public CStatic {
public:
    HBRUSH m_brush = nullptr;
    AFX_MODULE_STATE* m_state = nullptr;

protected:
    afx_msg void OnClicked() { s_order.push_back("child command"); }
    afx_msg void OnCode(NMHDR* header, LRESULT* result) {
        s_order.push_back("child notify");
        m_state = AfxGetModuleState();
        *result = header->code == kCode ? 21 : -1;
    }
    afx_msg HBRUSH CtlColor(CDC* context, UINT type) {
        s_order.push_back("child color" + Text({context->m_hDC != nullptr, type}));
        return m_brush;
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CReflectingChild, CStatic)
ON_CONTROL_REFLECT(5, &CReflectingChild::OnClicked)
ON_NOTIFY_REFLECT(kCode, &CReflectingChild::OnCode)
ON_WM_CTLCOLOR_REFLECT()
END_MESSAGE_MAP()

class CNotifiedParent : public CWnd {
protected:
    afx_msg void OnCommand5() { s_order.push_back("parent command"); }
    afx_msg void OnCommand6() { s_order.push_back("parent command 6"); }
    afx_msg void OnCode(NMHDR*, LRESULT* result) {
        s_order.push_back("parent notify");
        *result = 22;
    }
    afx_msg void OnInsert(NMHDR*, LRESULT* result) {
        s_order.push_back("parent insert");
        *result = 23;
    }
    afx_msg HBRUSH OnCtlColor(CDC* context, CWnd* control, UINT type) {
        s_order.push_back("parent color");
        return CWnd::OnCtlColor(context, control, type);
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CNotifiedParent, CWnd)
ON_CONTROL(5, kChildId, &CNotifiedParent::OnCommand5)
ON_CONTROL(6, kChildId, &CNotifiedParent::OnCommand6)
ON_NOTIFY(kCode, kChildId, &CNotifiedParent::OnCode)
ON_NOTIFY(LVN_INSERTITEM, kChildId, &CNotifiedParent::OnInsert)
ON_WM_CTLCOLOR()
END_MESSAGE_MAP()

class Reflection : public testing::Test {
protected:
    void SetUp() override {
        CreateHidden(m_parent);
        AFX_MANAGE_STATE(&m_childState)
        ASSERT_TRUE(m_child.CWnd::Create(L"STATIC", L"", WS_CHILD, CRect(0, 0, 9, 9), &m_parent, kChildId));
        s_order.clear();
    }

    LRESULT Command(UINT code, HWND from) {
        return m_parent.SendMessage(WM_COMMAND, MAKEWPARAM(kChildId, code), reinterpret_cast<LPARAM>(from));
    }
    LRESULT Notify(HWND to, UINT code, HWND from, UINT_PTR id = kChildId) {
        NMHDR header{from, id, code};
        return ::SendMessageW(to, WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&header));
    }

    AFX_MODULE_STATE m_childState{nullptr};
    CNotifiedParent m_parent;
    CReflectingChild m_child;
};

}  // namespace

TEST_F(Reflection, TheChildThatHandlesItKeepsItFromTheParent) {
    Command(5, m_child);
    EXPECT_EQ(Notify(m_parent, kCode, m_child), 21);
    EXPECT_EQ(m_child.m_state, &m_childState);
    EXPECT_EQ(s_order, (Log{"child command", "child notify"}));
}

TEST_F(Reflection, WhatTheChildHasNoHandlerForGoesToTheParent) {
    Command(6, m_child);
    EXPECT_EQ(Notify(m_parent, static_cast<UINT>(LVN_INSERTITEM), m_child), 23);
    EXPECT_EQ(Notify(m_parent, 0x78, m_child), 0);
    EXPECT_EQ(s_order, (Log{"parent command 6", "parent insert"}));
}

TEST_F(Reflection, AWindowWithoutAnObjectAnswersNothing) {
    const HWND bare = ::CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 9, 9, m_parent, nullptr, nullptr, nullptr);
    Command(5, bare);
    EXPECT_EQ(Notify(m_parent, kCode, bare), 22);
    EXPECT_EQ(Notify(m_parent, kCode, nullptr), 22);
    EXPECT_EQ(Notify(m_parent, kCode, bare, kChildId + 1), 0);
    EXPECT_EQ(s_order, (Log{"parent command", "parent notify", "parent notify"}));
}

TEST_F(Reflection, TheParentHasTheColorsFirstAndItsBaseAsksTheChild) {
    CClientDC context(&m_parent);
    const auto ask = [&](HWND child) {
        return m_parent.SendMessage(WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(context.m_hDC),
                                    reinterpret_cast<LPARAM>(child));
    };
    const CBrush brush(RGB(1, 2, 3));
    m_child.m_brush = brush;
    EXPECT_EQ(ask(m_child), reinterpret_cast<LRESULT>(static_cast<HBRUSH>(brush)));
    EXPECT_EQ(s_order, (Log{"parent color", "child color 1 6"}));

    const LRESULT systemBrush =
        ::DefWindowProcW(m_parent, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(context.m_hDC), 0);
    m_child.m_brush = nullptr;
    EXPECT_EQ(ask(m_child), systemBrush);
    const HWND bare = ::CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 9, 9, m_parent, nullptr, nullptr, nullptr);
    EXPECT_EQ(ask(bare), systemBrush);
}
