#include "entry/ColorEdit.h"

#include "entry/StripKeys.h"
#include "helpers/ResourceString.h"
#include "resources/resource.h"

BEGIN_MESSAGE_MAP(CColorEdit, CValidateKeyEdit)
ON_WM_CTLCOLOR_REFLECT()
ON_WM_GETDLGCODE()
ON_WM_KEYDOWN()
ON_WM_LBUTTONUP()
ON_WM_RBUTTONDOWN()
END_MESSAGE_MAP()

CColorEdit::CColorEdit() : m_brBackground(EDIT_BACKGROUND_COLOR) {}

void CColorEdit::SetBackgroundColor(COLORREF color) {
    m_crBackground = color;
    m_brBackground.DeleteObject();
    m_brBackground.CreateSolidBrush(color);
    Redraw();
}

void CColorEdit::SetTextColor(COLORREF color) {
    m_crText = color;
    Redraw();
}

void CColorEdit::Redraw() {
    // Without a window the call would mean the desktop.
    if (m_hWnd != nullptr) RedrawWindow(nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
}

void CColorEdit::SetReadOnly(bool readOnly) {
    if (!readOnly) SetBackgroundColor(EDIT_BACKGROUND_COLOR);
    CValidateKeyEdit::SetReadOnly(readOnly);
}

void CColorEdit::ShowWatermark() {
    SetTextColor(WATERMARK_COLOR);
    SetBackgroundColor(EDIT_BACKGROUND_COLOR);
    SetWindowText(LoadResourceString(IDS_WATERMARK));
}

void CColorEdit::ClearWatermark() {
    SetTextColor(TYPED_TEXT_COLOR);
    SetBackgroundColor(EDIT_BACKGROUND_COLOR);
    SetWindowText(L"");
}

void CColorEdit::ClearIfWatermark() {
    CString text;
    GetWindowText(text);
    if (text == LoadResourceString(IDS_WATERMARK)) ClearWatermark();
}

void CColorEdit::PreSubclassWindow() {
    CValidateKeyEdit::PreSubclassWindow();
    LimitText(0);  // a key may be longer than the 32,767 characters that an edit takes by itself
}

HBRUSH CColorEdit::CtlColor(CDC* pDC, UINT) {
    pDC->SetBkColor(m_crBackground);
    pDC->SetTextColor(m_crText);
    return m_brBackground;
}

UINT CColorEdit::OnGetDlgCode() {
    // Without the key that is asked about: Wine 8.0's edit takes it as a sign that it stands in a dialog and then hands
    // Return on to the dialog's default button, which no single-line edit of Windows does; see
    // Strip.ReturnMakesTheTopRowOfWhatIsTyped.
    return static_cast<UINT>(DefWindowProc(WM_GETDLGCODE, 0, 0)) | DLGC_WANTALLKEYS;
}

void CColorEdit::OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags) {
    SetTextColor(TYPED_TEXT_COLOR);
    if (IsStripKey(nChar)) {
        if (ValidateKey() != KEY_OK) return;
        TellStripKey(m_hWnd, nChar);
    }
    CValidateKeyEdit::OnKeyDown(nChar, nRepCnt, nFlags);
}

void CColorEdit::OnLButtonUp(UINT nFlags, CPoint point) {
    ClearIfWatermark();
    CValidateKeyEdit::OnLButtonUp(nFlags, point);
}

void CColorEdit::OnRButtonDown(UINT nFlags, CPoint point) {
    ClearIfWatermark();
    CValidateKeyEdit::OnRButtonDown(nFlags, point);
}
