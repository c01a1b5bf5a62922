#include "framework/Dialog.h"

#include <algorithm>
#include <utility>

#include "framework/DialogInit.h"
#include "framework/WindowProcedure.h"
#include "framework/WindowThread.h"

IMPLEMENT_DYNAMIC(CDialog, CWnd)
IMPLEMENT_DYNAMIC(CDialogEx, CDialog)

BEGIN_MESSAGE_MAP(CDialog, CWnd)
ON_MESSAGE(WM_INITDIALOG, &CDialog::HandleInitDialog)
ON_COMMAND(IDOK, &CDialog::OnOK)
ON_COMMAND(IDCANCEL, &CDialog::OnCancel)
END_MESSAGE_MAP()

namespace {

// A dialog is owned by a top-level window; of the active window's popups by the one in front.
HWND FindOwner(const CWnd* parent) {
    const HWND start = parent != nullptr ? parent->m_hWnd : ::GetActiveWindow();
    if (start == nullptr) return nullptr;
    const HWND top = ::GetAncestor(start, GA_ROOT);
    return parent != nullptr ? top : ::GetLastActivePopup(top);
}

// The owner is disabled, and so is the window that owns the owner in the end: else it could be worked beside the
// dialog.
class DisabledOwner {
public:
    explicit DisabledOwner(HWND owner) : m_owner(Disable(owner)), m_top(Disable(::GetAncestor(owner, GA_ROOTOWNER))) {}
    ~DisabledOwner() { Enable(); }
    DisabledOwner(const DisabledOwner&) = delete;
    DisabledOwner& operator=(const DisabledOwner&) = delete;

    void Enable() {
        for (HWND* window : {&m_top, &m_owner}) {
            if (*window != nullptr) ::EnableWindow(std::exchange(*window, nullptr), TRUE);
        }
    }

private:
    // Null for a window that was not disabled here.
    static HWND Disable(HWND window) {
        if (window == nullptr || window == ::GetDesktopWindow() || !::IsWindowEnabled(window)) return nullptr;
        ::EnableWindow(window, FALSE);
        return window;
    }

    HWND m_owner;
    HWND m_top;
};

// Whether the template asks for no place of its own.
bool LeavesPlaceOpen(const DLGTEMPLATE* resource) {
    struct Extended {
        WORD version, signature;
        DWORD helpId, exStyle, style;
        WORD items;
        short x, y;
    };
    const auto* extended = reinterpret_cast<const Extended*>(resource);
    const bool isExtended = extended->signature == 0xFFFF;
    const DWORD style = isExtended ? extended->style : resource->style;
    const bool isAtOrigin = isExtended ? extended->x == 0 && extended->y == 0 : resource->x == 0 && resource->y == 0;
    return isAtOrigin && (style & (DS_CENTER | DS_CENTERMOUSE | DS_ABSALIGN | WS_CHILD)) == 0;
}

// Into the middle of the owner, or of the work area if there is none to be seen, and wholly inside the work area.
void Center(CWnd& dialog) {
    const HWND owner = ::GetWindow(dialog, GW_OWNER);
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    ::GetMonitorInfoW(::MonitorFromWindow(owner != nullptr ? owner : dialog.m_hWnd, MONITOR_DEFAULTTOPRIMARY),
                      &monitor);
    const CRect work(monitor.rcWork);
    CRect around = work;
    if (owner != nullptr && ::IsWindowVisible(owner) && !::IsIconic(owner)) ::GetWindowRect(owner, around);
    CRect own;
    dialog.GetWindowRect(own);
    const int left = (around.left + around.right) / 2 - own.Width() / 2;
    const int top = (around.top + around.bottom) / 2 - own.Height() / 2;
    const int x = std::max<int>(work.left, std::min<int>(left, work.right - own.Width()));
    const int y = std::max<int>(work.top, std::min<int>(top, work.bottom - own.Height()));
    dialog.SetWindowPos(nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// The window that the message is for is asked first, then its parents up to the top.
bool PreTranslate(MSG& message) {
    for (HWND window = message.hwnd; window != nullptr; window = ::GetParent(window)) {
        CWnd* const object = CWnd::FromHandlePermanent(window);
        if (object != nullptr && CWindowProcedure::PreTranslate(object, &message)) return true;
    }
    return false;
}

}  // namespace

INT_PTR CDialog::DoModal() {
    const HINSTANCE module = AfxFindResourceHandle(m_lpszTemplateName, RT_DIALOG);
    const HRSRC found = ::FindResourceW(module, m_lpszTemplateName, RT_DIALOG);
    const HGLOBAL loaded = found != nullptr ? ::LoadResource(module, found) : nullptr;
    if (loaded == nullptr) return -1;
    const auto* dialogTemplate = static_cast<const DLGTEMPLATE*>(::LockResource(loaded));

    afx::RegisterCommonControls();
    afx::ModalScope modal;
    const HWND owner = FindOwner(m_pParentWnd);
    DisabledOwner disabled(owner);
    m_isModal = true;
    m_modalResult = -1;
    m_centers = LeavesPlaceOpen(dialogTemplate);
    {
        const afx::CreationScope creation(this);
        ::CreateDialogIndirectParamW(module, dialogTemplate, owner, &DialogProcedure, 0);
    }
    try {
        RunModalLoop(owner);
    } catch (...) {
        modal.KeepCurrentException();
    }
    m_isModal = false;
    if (m_hWnd != nullptr) {
        // Hidden first: then the system does not repaint what lies under it window by window, and enabling the owner
        // before the end makes it the window that is activated next.
        SetWindowPos(nullptr, 0, 0, 0, 0, SWP_HIDEWINDOW | SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE | SWP_NOZORDER);
        disabled.Enable();
        if (owner != nullptr && ::GetActiveWindow() == m_hWnd) ::SetActiveWindow(owner);
        DestroyWindow();
    }
    modal.RethrowException();
    return m_modalResult;
}

void CDialog::RunModalLoop(HWND owner) {
    const auto goesOn = [this] { return m_isModal && m_hWnd != nullptr && !afx::ThisThread().modal->HasException(); };
    if (!goesOn()) return;
    ShowWindow(SW_SHOWNORMAL);
    while (goesOn()) {
        MSG next;
        if (!::PeekMessageW(&next, nullptr, 0, 0, PM_NOREMOVE)) {
            if (owner != nullptr && (GetStyle() & DS_NOIDLEMSG) == 0)
                ::SendMessageW(owner, WM_ENTERIDLE, MSGF_DIALOGBOX, reinterpret_cast<LPARAM>(m_hWnd));
            afx::ThisThread().modal->TrimTemporaries();
            if (!goesOn()) return;
        }
        PumpMessage();
    }
}

void CDialog::PumpMessage() {
    MSG message;
    if (::GetMessageW(&message, nullptr, 0, 0) <= 0) {
        // The end of the program: it is for the outermost loop to see, too.
        ::PostQuitMessage(static_cast<int>(message.wParam));
        m_isModal = false;
        return;
    }
    if (PreTranslate(message)) return;
    ::TranslateMessage(&message);
    ::DispatchMessageW(&message);
}

void CDialog::EndDialog(int result) {
    m_modalResult = result;
    m_isModal = false;
    PostMessage(WM_NULL);  // the loop may be asleep: the handler can have been called by a sent message
}

// A window that goes without EndDialog, with its owner say, must wake the loop as well.
void CDialog::PostNcDestroy() {
    if (m_isModal) ::PostThreadMessageW(::GetCurrentThreadId(), WM_NULL, 0, 0);
    CWnd::PostNcDestroy();
}

BOOL CDialog::PreTranslateMessage(MSG* message) {
    const UINT number = message->message;
    const bool isInput =
        (number >= WM_KEYFIRST && number <= WM_KEYLAST) || (number >= WM_MOUSEFIRST && number <= WM_MOUSELAST);
    return isInput && ::IsDialogMessageW(m_hWnd, message);
}

INT_PTR CALLBACK CDialog::DialogProcedure(HWND, UINT, WPARAM, LPARAM) {
    return FALSE;
}

LRESULT CDialog::HandleInitDialog(WPARAM, LPARAM) {
    CRect created;
    GetWindowRect(created);
    const BOOL setFocus = OnInitDialog();
    CRect now;
    GetWindowRect(now);
    if (m_centers && now == created) Center(*this);
    return setFocus;
}

BOOL CDialog::OnInitDialog() {
    const bool filled =
        afx::RunDialogInit(m_hWnd, AfxFindResourceHandle(m_lpszTemplateName, RT_DIALOG), m_lpszTemplateName);
    if (filled && UpdateData(FALSE)) return TRUE;
    EndDialog(-1);
    return FALSE;
}

void CDialog::OnOK() {
    if (UpdateData(TRUE)) EndDialog(IDOK);
}

void CDialog::OnCancel() {
    EndDialog(IDCANCEL);
}
