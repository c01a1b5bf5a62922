#include "controls/AnchorLayout.h"

#include <cwchar>
#include <iterator>

void CAnchorLayout::Attach(HWND parent) {
    m_hWndParent = parent;
    m_Controls.clear();
    if (!IsWindow(parent)) return;
    GetWindowRect(parent, &m_rcOriginal);
    for (HWND child = GetTopWindow(parent); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) AddControl(child);
}

void CAnchorLayout::AddControl(HWND child) {
    if (m_hWndParent == nullptr || child == nullptr) return;
    RECT rect{};
    GetWindowRect(child, &rect);
    POINT corners[] = {{rect.left, rect.top}, {rect.right, rect.bottom}};
    for (POINT& corner : corners) ScreenToClient(m_hWndParent, &corner);
    m_Controls.push_back({{corners[0].x, corners[0].y, corners[1].x, corners[1].y}, child});
}

bool CAnchorLayout::SetAnchors(int controlId, std::uint32_t horizontalFlags, std::uint32_t verticalFlags) {
    const HWND child = GetDlgItem(m_hWndParent, controlId);
    for (AnchoredControl& control : m_Controls) {
        if (control.m_hWnd != child) continue;
        control.m_nHorizontalFlags = horizontalFlags;
        control.m_nVerticalFlags = verticalFlags;
        return true;
    }
    return false;
}

void CAnchorLayout::SetAnchorsByClass(LPCWSTR className, std::uint32_t horizontalFlags, std::uint32_t verticalFlags) {
    for (AnchoredControl& control : m_Controls) {
        wchar_t name[201] = {};
        GetClassNameW(control.m_hWnd, name, static_cast<int>(std::size(name)));
        if (std::wcscmp(name, className) != 0) continue;
        control.m_nHorizontalFlags = horizontalFlags;
        control.m_nVerticalFlags = verticalFlags;
    }
}

void CAnchorLayout::Resize() {
    if (!IsWindow(m_hWndParent)) return;
    RECT now{};
    GetWindowRect(m_hWndParent, &now);
    for (const AnchoredControl& control : m_Controls) {
        const RECT& original = control.m_rcOriginal;
        const AnchoredSpan x = FollowSize({original.left, original.right}, control.m_nHorizontalFlags,
                                          m_rcOriginal.right - m_rcOriginal.left, now.right - now.left);
        const AnchoredSpan y = FollowSize({original.top, original.bottom}, control.m_nVerticalFlags,
                                          m_rcOriginal.bottom - m_rcOriginal.top, now.bottom - now.top);
        MoveWindow(control.m_hWnd, x.start, y.start, x.end - x.start, y.end - y.start, TRUE);
    }
}
