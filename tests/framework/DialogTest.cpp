#include <afxdialogex.h>
#include <afxwin.h>

#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "framework/WindowTestApp.h"
#include "framework/WindowTestDialogs.h"
#include "support/DialogDriver.h"
#include "support/Throws.h"

namespace {

constexpr UINT kInLoop = WM_APP + 1;

// A dialog whose moments are given by the test: at its initialisation, and once its loop runs.
class CProbeDialog : public CDialogEx {
public:
    explicit CProbeDialog(UINT id = IDD_PROBE, CWnd* parent = nullptr) : CDialogEx(id, parent) {}

    std::function<void()> m_onInit;
    std::function<void()> m_inLoop;
    std::function<void()> m_onTranslate;
    std::vector<std::string> m_log;
    CEdit m_edit;
    CString m_text;
    CString m_choice;
    bool m_refuses = false;
    BOOL m_focusLeftToSystem = TRUE;

    using CWnd::Default;

protected:
    void DoDataExchange(CDataExchange* exchange) override {
        CDialogEx::DoDataExchange(exchange);
        if (m_refuses && exchange->m_bSaveAndValidate) AfxThrowUserException();
        if (::GetDlgItem(m_hWnd, IDC_PROBE_EDIT) == nullptr) return;
        DDX_Control(exchange, IDC_PROBE_EDIT, m_edit);
        DDX_Text(exchange, IDC_PROBE_EDIT, m_text);
        DDX_CBString(exchange, IDC_PROBE_COMBO, m_choice);
    }
    BOOL OnInitDialog() override {
        CDialogEx::OnInitDialog();
        if (m_onInit) m_onInit();
        PostMessage(kInLoop);
        return m_focusLeftToSystem;
    }
    BOOL PreTranslateMessage(MSG* message) override {
        if (message->message == kInLoop && m_onTranslate) m_onTranslate();
        return CDialogEx::PreTranslateMessage(message);
    }
    afx_msg LRESULT OnInLoop(WPARAM, LPARAM) {
        if (m_inLoop) m_inLoop();
        return 0;
    }
    afx_msg void OnEditChange() { m_log.push_back("change"); }
    afx_msg void OnButton() { m_log.push_back("button"); }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CProbeDialog, CDialogEx)
ON_MESSAGE(kInLoop, &CProbeDialog::OnInLoop)
ON_EN_CHANGE(IDC_PROBE_EDIT, &CProbeDialog::OnEditChange)
ON_BN_CLICKED(IDC_PROBE_BUTTON, &CProbeDialog::OnButton)
END_MESSAGE_MAP()

class CPlainOwner : public CWnd {
public:
    CPlainOwner() {
        CreateEx(0, nullptr, L"Owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, CRect(300, 200, 700, 500), nullptr, 0);
    }
};

class DialogTest : public testing::Test {
protected:
    void SetUp() override { m_windows = CWnd::PermanentCountForTesting(); }
    void TearDown() override { EXPECT_EQ(CWnd::PermanentCountForTesting(), m_windows); }

    size_t m_windows = 0;
};

}  // namespace

TEST_F(DialogTest, EachWayToEndHasItsResult) {
    EXPECT_EQ(CProbeDialog(9999).DoModal(), -1) << "no template";
    EXPECT_EQ(CDialogEx(IDD_BAD_INIT).DoModal(), -1) << "a broken initialisation resource";
    CPlainOwner owner;
    CProbeDialog dialog(IDD_PROBE, &owner);
    bool wasInLoop = false;
    dialog.m_inLoop = [&] { wasInLoop = true; };
    dialog.m_onInit = [&] { dialog.EndDialog(12); };
    EXPECT_EQ(dialog.DoModal(), 12) << "ended during its initialisation";
    EXPECT_FALSE(wasInLoop);
    dialog.m_onInit = {};
    dialog.m_inLoop = [&] { ::DestroyWindow(dialog); };
    EXPECT_EQ(dialog.DoModal(), -1) << "a window that goes by itself";
    EXPECT_TRUE(owner.IsWindowEnabled());
    dialog.m_inLoop = [] { ::PostQuitMessage(33); };
    EXPECT_EQ(dialog.DoModal(), -1) << "the end of the program";
    MSG message{};
    EXPECT_TRUE(::PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "is left for the outer loop";
    EXPECT_EQ(message.wParam, 33u);
}

TEST_F(DialogTest, ValuesGoIntoTheControlsAndOnOkBack) {
    CProbeDialog dialog;
    dialog.m_text = CString(L'y', 40000);
    dialog.m_choice = L"k";  // the beginning of an item is enough
    dialog.m_inLoop = [&] {
        CString text;
        dialog.m_edit.GetWindowText(text);
        EXPECT_EQ(text, dialog.m_text);
        EXPECT_EQ(dialog.GetDlgItem(IDC_PROBE_COMBO)->SendMessage(CB_GETCURSEL), 1);
        dialog.m_edit.SetWindowText(CString(L'z', 50000));
        dialog.SendMessage(WM_COMMAND, IDOK);
    };
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_EQ(dialog.m_text, CString(L'z', 50000));
    EXPECT_EQ(dialog.m_choice, L"Key");
    EXPECT_EQ(dialog.m_edit.m_hWnd, nullptr);
}

TEST_F(DialogTest, CancelBringsNothingBackAndARefusedExchangeKeepsTheDialog) {
    CProbeDialog dialog;
    dialog.m_inLoop = [&] {
        dialog.m_edit.SetWindowText(L"typed");
        dialog.m_refuses = true;
        dialog.SendMessage(WM_COMMAND, IDOK);
        EXPECT_TRUE(dialog.IsWindowVisible());
        dialog.SendMessage(WM_CLOSE);
    };
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    EXPECT_EQ(dialog.m_text, L"");
}

TEST_F(DialogTest, AnExchangeSwallowsTheControlsCommandsAndSetsOnlyWhatIsNew) {
    CProbeDialog dialog;
    dialog.m_inLoop = [&] {
        dialog.m_text = L"by the program";
        dialog.UpdateData(FALSE);
        EXPECT_EQ(dialog.m_log, std::vector<std::string>{});
        dialog.m_edit.SetSel(3, 5);
        dialog.UpdateData(FALSE);
        EXPECT_EQ(Dialog::EditSelection(dialog.m_edit), std::make_pair(3, 5));
        dialog.m_edit.SetWindowText(L"by somebody");
        EXPECT_EQ(dialog.m_log, std::vector<std::string>{"change"});
        dialog.EndDialog(IDOK);
    };
    dialog.DoModal();
}

TEST_F(DialogTest, TemporaryObjectsEndWithTheirMessageNotWhenTheLoopGoesIdle) {
    CProbeDialog dialog;
    dialog.m_inLoop = [&] {
        CClientDC context(&dialog);
        const size_t before = CWnd::TemporaryCountForTesting();
        for (int i = 0; i < 3; ++i) {
            dialog.SendMessage(WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(context.m_hDC),
                               reinterpret_cast<LPARAM>(::GetDlgItem(dialog, IDC_PROBE_BUTTON)));
        }
        EXPECT_EQ(CWnd::TemporaryCountForTesting(), before);
        dialog.EndDialog(IDOK);
    };
    dialog.DoModal();
}

TEST_F(DialogTest, TheOwnerIsDisabledMeanwhileAndActiveAfterwards) {
    CPlainOwner owner;
    CWnd child;
    child.Create(nullptr, L"", WS_VISIBLE, CRect(0, 0, 50, 50), &owner, 1);
    CProbeDialog dialog(IDD_PROBE, &child);  // a child cannot own a dialog; the window that it is in does
    CProbeDialog inner(IDD_PROBE, &dialog);
    dialog.m_inLoop = [&] {
        EXPECT_EQ(::GetWindow(dialog, GW_OWNER), owner);
        EXPECT_FALSE(owner.IsWindowEnabled());
        inner.DoModal();
        EXPECT_TRUE(dialog.IsWindowEnabled());
        EXPECT_FALSE(owner.IsWindowEnabled());
        EXPECT_EQ(::GetActiveWindow(), dialog);
        dialog.EndDialog(IDOK);
    };
    inner.m_inLoop = [&] {
        EXPECT_EQ(::GetWindow(inner, GW_OWNER), dialog);
        EXPECT_FALSE(dialog.IsWindowEnabled());
        inner.EndDialog(IDOK);
    };
    dialog.DoModal();
    EXPECT_TRUE(owner.IsWindowEnabled());
    EXPECT_EQ(::GetActiveWindow(), owner);
}

TEST_F(DialogTest, ATemplateWithoutAPlaceIsCenteredInTheOwnerAndStaysOnTheScreen) {
    CPlainOwner owner;
    CProbeDialog dialog(IDD_NO_PLACE, &owner);
    CRect place;
    dialog.m_inLoop = [&] {
        dialog.GetWindowRect(place);
        dialog.EndDialog(IDOK);
    };
    dialog.DoModal();
    EXPECT_NEAR(place.left + place.right, 300 + 700, 2);
    EXPECT_NEAR(place.top + place.bottom, 200 + 500, 2);
    owner.MoveWindow(-300, -200, 400, 300);
    dialog.DoModal();
    CRect work;
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    EXPECT_EQ(place.TopLeft(), work.TopLeft());
}

TEST_F(DialogTest, WhatAHandlerThrowsLeavesDoModalWhenAllIsTakenDown) {
    const auto throwPointer = [] { AfxThrowInvalidArgException(); };
    CPlainOwner owner;
    for (const int place : {0, 1, 2}) {
        CProbeDialog dialog(IDD_PROBE, &owner);
        (place == 0 ? dialog.m_onInit : place == 1 ? dialog.m_inLoop : dialog.m_onTranslate) = throwPointer;
        try {
            dialog.DoModal();
            ADD_FAILURE() << place;
        } catch (CInvalidArgException* problem) {
            problem->Delete();
        }
        EXPECT_EQ(dialog.m_hWnd, nullptr);
        EXPECT_TRUE(owner.IsWindowEnabled());
        EXPECT_EQ(::GetActiveWindow(), owner);
    }
    CProbeDialog dialog(IDD_PROBE, &owner);
    dialog.m_inLoop = [] { throw std::runtime_error("standard"); };
    EXPECT_THROW(dialog.DoModal(), std::runtime_error);
}

namespace {

// An edit that takes Return, but not Escape, before the dialog sees it.
class CReturnEdit : public CEdit {
public:
    explicit CReturnEdit(std::vector<std::string>& log) : m_log(log) {}

    BOOL PreTranslateMessage(MSG* message) override {
        if (message->message != WM_KEYDOWN) return FALSE;
        m_log.push_back("edit " + std::to_string(message->wParam));
        return message->wParam == VK_RETURN;
    }

private:
    std::vector<std::string>& m_log;
};

class CKeyDialog : public CProbeDialog {
public:
    CReturnEdit m_second{m_log};

protected:
    BOOL OnInitDialog() override {
        CProbeDialog::OnInitDialog();
        m_second.SubclassWindow(::GetDlgItem(m_hWnd, IDC_PROBE_SECOND_EDIT));
        m_second.SetFocus();
        return FALSE;
    }
    BOOL PreTranslateMessage(MSG* message) override {
        if (message->message == WM_KEYDOWN) m_log.push_back("dialog " + std::to_string(message->wParam));
        return CProbeDialog::PreTranslateMessage(message);
    }
};

}  // namespace

TEST_F(DialogTest, KeysAreOfferedToTheFocusWindowThenToTheDialogThenTranslated) {
    CPlainOwner owner;
    CKeyDialog dialog;
    INT_PTR result = 0;
    DialogDriver driver;
    driver.Run([&] { result = dialog.DoModal(); },
               [&](Dialog& d) {
                   EXPECT_EQ(d.FocusId(), IDC_PROBE_SECOND_EDIT);
                   d.Key(VK_RETURN);
                   d.Key('A');
                   EXPECT_EQ(d.Text(IDC_PROBE_SECOND_EDIT), L"a");
                   d.Key(VK_TAB);
                   EXPECT_EQ(d.FocusId(), IDOK);
                   d.Alt(L'D');
                   d.Key(VK_ESCAPE);
               });
    EXPECT_EQ(result, IDCANCEL);
    const std::vector<std::string> expected = {"edit 13",  "edit 65", "dialog 65", "edit 9",
                                               "dialog 9", "button",  "dialog 27"};
    EXPECT_EQ(dialog.m_log, expected);
}
