// What the mouse does on the dialog itself: it drags a rule, or the gap between tree and list. Both hold the capture,
// and every way out of either goes through EndMouseMode.
#include "dialog/RegistryRulesDlg.h"
#include "helpers/CursorHelper.h"

namespace {
// What the device says, as the release may have gone to another window.
bool IsLeftButtonDown() {
    return GetAsyncKeyState(GetSystemMetrics(SM_SWAPBUTTON) != 0 ? VK_RBUTTON : VK_LBUTTON) < 0;
}
}  // namespace

void CRegistryRulesDlg::EndMouseMode() {
    if (m_dragActive) RemoveDragImage();
    if (m_splitterActive != 0) ClipCursor(nullptr);
    m_dragActive = false;
    m_splitterActive = 0;
    if (HasCapture()) ReleaseCapture();
}

bool CRegistryRulesDlg::HasCapture() const {
    return ::GetCapture() == m_hWnd;
}

// The gap is let go of at once, as a clipped cursor could not reach what has taken the mouse. The drag of a rule ends
// by the release alone and waits for it, out of sight.
LRESULT CRegistryRulesDlg::OnCaptureChanged(WPARAM, LPARAM taker) {
    if (reinterpret_cast<HWND>(taker) != m_hWnd) {
        if (m_dragActive)
            CImageList::DragShowNolock(FALSE);
        else
            EndMouseMode();
    }
    return Default();
}

// A box over the dialog takes the mouse first.
LRESULT CRegistryRulesDlg::OnEnableMessage(WPARAM enabled, LPARAM) {
    if (enabled == 0) {
        if (HasCapture()) ReleaseCapture();
    } else if (m_dragActive) {
        if (IsLeftButtonDown())
            SetCapture();
        else
            EndMouseMode();
    }
    return Default();
}

// After a capture that was lost the controls get the mouse, and from what they get it is seen whether the button is
// still down.
BOOL CRegistryRulesDlg::PreTranslateMessage(MSG* message) {
    const UINT number = message->message;
    if (m_dragActive && !HasCapture() && number >= WM_MOUSEFIRST && number <= WM_MOUSELAST) {
        if (number != WM_LBUTTONDOWN && (message->wParam & MK_LBUTTON) != 0)
            SetCapture();
        else
            EndMouseMode();
    }
    return CBvDialogBase::PreTranslateMessage(message);
}

void CRegistryRulesDlg::OnLButtonDown(UINT flags, CPoint point) {
    EndMouseMode();
    if (IsInSplitter(point)) BeginSplitterDrag(point);
    CBvDialogBase::OnLButtonDown(flags, point);
}

void CRegistryRulesDlg::OnLButtonUp(UINT flags, CPoint point) {
    const bool drops = m_dragActive;
    EndMouseMode();
    if (drops) DropRule(point);
    CBvDialogBase::OnLButtonUp(flags, point);
}

void CRegistryRulesDlg::OnMouseMove(UINT flags, CPoint point) {
    if ((flags & MK_LBUTTON) == 0) EndMouseMode();  // the release was elsewhere: there is no drop
    if (m_dragActive)
        UpdateRuleDrag(point);
    else
        TrackSplitter(point);
    CBvDialogBase::OnMouseMove(flags, point);
}

void CRegistryRulesDlg::OnDestroy() {
    EndMouseMode();
    // Over the gap the sizing cursor is in force, and the host need not touch the cursor until the mouse moves.
    if (m_hostCursor != nullptr && ::GetCursor() == ::LoadCursorW(nullptr, IDC_SIZEWE)) ::SetCursor(m_hostCursor);
    CBvDialogBase::OnDestroy();
}

// A drag begins while the button that drags is down: a box about an open cell may have come up since the press.
bool CRegistryRulesDlg::MayBeginRuleDrag() {
    return m_ruleList.EndOpenEdit() && IsLeftButtonDown();
}
