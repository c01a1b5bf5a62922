#include "framework/StandardControls.h"

IMPLEMENT_DYNAMIC(CButton, CWnd)
IMPLEMENT_DYNAMIC(CStatic, CWnd)
IMPLEMENT_DYNAMIC(CScrollBar, CWnd)
IMPLEMENT_DYNAMIC(CEdit, CWnd)
IMPLEMENT_DYNAMIC(CComboBox, CWnd)

void CComboBox::GetLBText(int index, CString& text) const {
    const int length = Ask(CB_GETLBTEXTLEN, static_cast<WPARAM>(index));
    if (length == CB_ERR) AfxThrowInvalidArgException();
    Ask(CB_GETLBTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text.GetBuffer(length)));
    text.ReleaseBuffer(length);
}
