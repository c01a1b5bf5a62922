#include "siblings/uictrl/BvDialogBase.h"

BEGIN_MESSAGE_MAP(CBvDialogBase, CDialogEx)
END_MESSAGE_MAP()

BOOL CBvDialogBase::OnInitDialog() {
    const BOOL setFocus = CDialogEx::OnInitDialog();
    if (m_font.GetSafeHandle() != nullptr) {
        for (HWND child = ::GetWindow(m_hWnd, GW_CHILD); child != nullptr; child = ::GetWindow(child, GW_HWNDNEXT))
            ::SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(m_font.m_hObject), TRUE);
    }
    return setFocus;
}
