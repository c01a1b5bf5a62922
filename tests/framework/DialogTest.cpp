#include <afxdialogex.h>
#include <afxwin.h>

#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>

#include "framework/FrameworkTest.h"

namespace {

constexpr UINT kInLoop = WM_APP + 1;

// A dialog whose moments are given by the test: at its initialisation, once its loop runs, and before a message's way.
class CProbeDialog : public CDialogEx {
public:
    explicit CProbeDialog(UINT id = IDD_PROBE, CWnd* parent = nullptr) : CDialogEx(id, parent) {}

    std::function<void()> m_onInit, m_inLoop, m_onTranslate;
    bool m_ownerWasEnabled = false;  // when the window went

protected:
    BOOL OnInitDialog() override {
        CDialogEx::OnInitDialog();
        if (m_onInit) m_onInit();
        PostMessage(kInLoop);
        return TRUE;
    }
    BOOL PreTranslateMessage(MSG* message) override {
        if (message->message == kInLoop && m_onTranslate) m_onTranslate();
        return CDialogEx::PreTranslateMessage(message);
    }
    afx_msg LRESULT OnInLoop(WPARAM, LPARAM) {
        if (m_inLoop) m_inLoop();
        return 0;
    }
    afx_msg void OnDestroy() {
        m_ownerWasEnabled = ::IsWindowEnabled(::GetWindow(m_hWnd, GW_OWNER)) != FALSE;
        CDialogEx::OnDestroy();
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CProbeDialog, CDialogEx)
ON_MESSAGE(kInLoop, &CProbeDialog::OnInLoop)
ON_WM_DESTROY()
END_MESSAGE_MAP()

class DialogTest : public testing::Test {
protected:
    DialogTest() {
        m_owner.CreateEx(0, nullptr, L"Owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, CRect(300, 200, 700, 500), nullptr, 0);
    }
    // However a dialog ended, nothing is left of it, and its owner is active and can be worked.
    void ExpectOver(const CProbeDialog& dialog) {
        EXPECT_EQ(dialog.m_hWnd, nullptr);
        EXPECT_TRUE(m_owner.IsWindowEnabled());
        EXPECT_EQ(::GetActiveWindow(), m_owner);
        EXPECT_EQ(CWnd::PermanentCountForTesting(), m_windows + 1);
    }

    size_t m_windows = CWnd::PermanentCountForTesting();
    CWnd m_owner;
    CProbeDialog m_dialog{IDD_PROBE, &m_owner};
};

}  // namespace

TEST_F(DialogTest, EachWayToEndHasItsResult) {
    EXPECT_EQ(CProbeDialog(9999).DoModal(), -1) << "no template";
    EXPECT_EQ(CDialogEx(IDD_BAD_INIT).DoModal(), -1) << "a broken initialisation resource";
    bool wasInLoop = false;
    m_dialog.m_inLoop = [&] { wasInLoop = true; };
    m_dialog.m_onInit = [&] { m_dialog.EndDialog(12); };
    EXPECT_EQ(m_dialog.DoModal(), 12) << "ended during its initialisation";
    EXPECT_FALSE(wasInLoop);
    m_dialog.m_onInit = {};
    m_dialog.m_inLoop = [&] { ::DestroyWindow(m_dialog); };
    EXPECT_EQ(m_dialog.DoModal(), -1) << "a window that goes by itself";
    EXPECT_TRUE(m_owner.IsWindowEnabled());
    m_dialog.m_inLoop = [] { ::PostQuitMessage(33); };
    EXPECT_EQ(m_dialog.DoModal(), -1) << "the end of the program";
    MSG message{};
    EXPECT_TRUE(::PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "is left for the outer loop";
    EXPECT_EQ(message.wParam, 33u);
    ExpectOver(m_dialog);

    const std::function<void()> throws = [] { AfxThrowInvalidArgException(); };
    for (const auto moment : {&CProbeDialog::m_onInit, &CProbeDialog::m_inLoop, &CProbeDialog::m_onTranslate}) {
        CProbeDialog dialog(IDD_PROBE, &m_owner);
        dialog.*moment = throws;
        EXPECT_THROW(dialog.DoModal(), CInvalidArgException*);
        ExpectOver(dialog);
    }
    m_dialog.m_inLoop = [] { throw std::runtime_error("standard"); };
    EXPECT_THROW(m_dialog.DoModal(), std::runtime_error);
}

TEST_F(DialogTest, TheOwnerIsDisabledMeanwhileAndEnabledBeforeTheDialogGoes) {
    CWnd child;
    child.Create(nullptr, L"", WS_VISIBLE, CRect(0, 0, 50, 50), &m_owner, 1);
    CProbeDialog dialog(IDD_PROBE, &child);  // a child cannot own a dialog; the window that it is in does
    CProbeDialog inner(IDD_PROBE, &dialog);
    dialog.m_inLoop = [&] {
        EXPECT_EQ(::GetWindow(dialog, GW_OWNER), m_owner);
        inner.DoModal();
        EXPECT_TRUE(dialog.IsWindowEnabled() && !m_owner.IsWindowEnabled());
        EXPECT_EQ(::GetActiveWindow(), dialog);
        dialog.EndDialog(IDOK);
    };
    inner.m_inLoop = [&] {
        EXPECT_EQ(::GetWindow(inner, GW_OWNER), dialog);
        EXPECT_FALSE(dialog.IsWindowEnabled() || m_owner.IsWindowEnabled());
        const size_t before = CWnd::TemporaryCountForTesting();
        const CClientDC context(&inner);
        for (const int id : {IDOK, IDCANCEL}) {
            inner.SendMessage(WM_CTLCOLORBTN, reinterpret_cast<WPARAM>(context.m_hDC),
                              reinterpret_cast<LPARAM>(::GetDlgItem(inner, id)));
        }
        EXPECT_EQ(CWnd::TemporaryCountForTesting(), before) << "they end with the message, not when the loop is idle";
        inner.EndDialog(IDOK);
    };
    dialog.DoModal();
    EXPECT_TRUE(inner.m_ownerWasEnabled && dialog.m_ownerWasEnabled)
        << "or another program's window would come to the front";
    child.DestroyWindow();
    ExpectOver(dialog);
}

TEST_F(DialogTest, ATemplateWithoutAPlaceIsCenteredUnlessItWasMovedAndStaysOnTheScreen) {
    CProbeDialog dialog(IDD_NO_PLACE, &m_owner);
    CRect place;
    dialog.m_inLoop = [&] {
        dialog.GetWindowRect(place);
        dialog.EndDialog(IDOK);
    };
    dialog.DoModal();
    EXPECT_NEAR(place.left + place.right, 300 + 700, 2);
    EXPECT_NEAR(place.top + place.bottom, 200 + 500, 2);
    m_owner.MoveWindow(-300, -200, 400, 300);
    dialog.DoModal();
    CRect work;
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    EXPECT_EQ(place.TopLeft(), work.TopLeft());
    dialog.m_onInit = [&] { dialog.SetWindowPos(nullptr, 77, 55, 0, 0, SWP_NOSIZE | SWP_NOZORDER); };
    dialog.DoModal();
    EXPECT_EQ(place.TopLeft(), CPoint(77, 55));
}
