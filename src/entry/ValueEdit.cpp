#include "entry/ValueEdit.h"

#include "entry/StripKeys.h"

BEGIN_MESSAGE_MAP(CValueEdit, CEdit)
ON_WM_GETDLGCODE()
ON_WM_KEYDOWN()
END_MESSAGE_MAP()

void CValueEdit::PreSubclassWindow() {
    CEdit::PreSubclassWindow();
    LimitText(0);  // as in CColorEdit
}

UINT CValueEdit::OnGetDlgCode() {
    // As in CColorEdit.
    return static_cast<UINT>(DefWindowProc(WM_GETDLGCODE, 0, 0)) | DLGC_WANTALLKEYS;
}

void CValueEdit::OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags) {
    TellStripKey(m_hWnd, nChar);
    CEdit::OnKeyDown(nChar, nRepCnt, nFlags);
}
