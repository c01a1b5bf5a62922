#include "framework/DeviceContext.h"

#include "framework/Temporary.h"
#include "framework/Window.h"

IMPLEMENT_DYNAMIC(CDC, CObject)
IMPLEMENT_DYNAMIC(CClientDC, CDC)

CDC* CDC::FromHandle(HDC context) {
    return afx::MakeTemporary<CDC>(context);
}

BOOL CDC::Attach(HDC context) {
    if (context == nullptr || m_hDC != nullptr) return FALSE;
    m_hDC = m_hAttribDC = context;
    return TRUE;
}

HDC CDC::Detach() {
    m_hAttribDC = nullptr;
    return std::exchange(m_hDC, nullptr);
}

BOOL CDC::CreateCompatibleDC(CDC* context) {
    return Attach(::CreateCompatibleDC(context != nullptr ? context->m_hDC : nullptr));
}

BOOL CDC::DeleteDC() {
    return m_hDC != nullptr && ::DeleteDC(Detach());
}

CFont* CDC::SelectObject(CFont* font) {
    return CFont::FromHandle(static_cast<HFONT>(::SelectObject(m_hDC, font->m_hObject)));
}

CBitmap* CDC::SelectObject(CBitmap* bitmap) {
    return CBitmap::FromHandle(static_cast<HBITMAP>(::SelectObject(m_hDC, bitmap->m_hObject)));
}

CSize CDC::GetTextExtent(LPCWSTR text, int length) const {
    CSize size;
    return ::GetTextExtentPoint32W(m_hAttribDC, text, length, &size) ? size : CSize();
}

void CDC::FillSolidRect(const RECT* rect, COLORREF color) {
    SetBkColor(color);
    ::ExtTextOutW(m_hDC, 0, 0, ETO_OPAQUE, rect, nullptr, 0, nullptr);
}

CClientDC::CClientDC(CWnd* window) : m_hWnd(window != nullptr ? window->m_hWnd : nullptr) {
    if (!Attach(::GetDC(m_hWnd))) AfxThrowResourceException();
}

CClientDC::~CClientDC() {
    ::ReleaseDC(m_hWnd, Detach());
}
