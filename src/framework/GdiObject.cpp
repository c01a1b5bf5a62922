#include "framework/GdiObject.h"

#include <utility>

#include "framework/DeviceContext.h"
#include "framework/Temporary.h"

IMPLEMENT_DYNAMIC(CGdiObject, CObject)
IMPLEMENT_DYNAMIC(CBrush, CGdiObject)
IMPLEMENT_DYNAMIC(CFont, CGdiObject)
IMPLEMENT_DYNAMIC(CBitmap, CGdiObject)

BOOL CGdiObject::Attach(HGDIOBJ object) {
    if (object == nullptr || m_hObject != nullptr) return FALSE;
    m_hObject = object;
    return TRUE;
}

HGDIOBJ CGdiObject::Detach() {
    return std::exchange(m_hObject, nullptr);
}

BOOL CGdiObject::DeleteObject() {
    return m_hObject != nullptr && ::DeleteObject(Detach());
}

CFont* CFont::FromHandle(HFONT font) {
    return afx::MakeTemporary<CFont>(font);
}

CBitmap* CBitmap::FromHandle(HBITMAP bitmap) {
    return afx::MakeTemporary<CBitmap>(bitmap);
}

BOOL CBitmap::CreateCompatibleBitmap(CDC* context, int width, int height) {
    return Attach(::CreateCompatibleBitmap(context->m_hDC, width, height));
}
