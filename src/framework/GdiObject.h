// Fonts, brushes and bitmaps that are deleted with their object.
#pragma once

#include "framework/Geometry.h"
#include "framework/Object.h"

class CDC;

// Owns a GDI object's handle. A handle that belongs to somebody else is detached before the object ends.
class AFX_API CGdiObject : public CObject {
    DECLARE_DYNAMIC(CGdiObject)

public:
    HGDIOBJ m_hObject = nullptr;

    CGdiObject() = default;
    ~CGdiObject() override { DeleteObject(); }

    HGDIOBJ GetSafeHandle() const { return m_hObject; }
    // Takes the handle over. FALSE and nothing taken if it is null or one is held already.
    BOOL Attach(HGDIOBJ object);
    // Gives the handle away; its new owner deletes it.
    HGDIOBJ Detach();
    // FALSE if there is none.
    BOOL DeleteObject();
};

class AFX_API CBrush : public CGdiObject {
    DECLARE_DYNAMIC(CBrush)
public:
    CBrush() = default;
    explicit CBrush(COLORREF color) { CreateSolidBrush(color); }
    BOOL CreateSolidBrush(COLORREF color) { return Attach(::CreateSolidBrush(color)); }
    operator HBRUSH() const { return static_cast<HBRUSH>(m_hObject); }  // NOLINT(google-explicit-constructor)
};

class AFX_API CFont : public CGdiObject {
    DECLARE_DYNAMIC(CFont)
public:
    // May be temporary, see CWnd::FromHandle; null for null.
    static CFont* FromHandle(HFONT font);
    BOOL CreateFontIndirect(const LOGFONTW* description) { return Attach(::CreateFontIndirectW(description)); }
    operator HFONT() const { return static_cast<HFONT>(m_hObject); }  // NOLINT(google-explicit-constructor)
};

class AFX_API CBitmap : public CGdiObject {
    DECLARE_DYNAMIC(CBitmap)
public:
    static CBitmap* FromHandle(HBITMAP bitmap);
    BOOL CreateCompatibleBitmap(CDC* context, int width, int height);
    operator HBITMAP() const { return static_cast<HBITMAP>(m_hObject); }  // NOLINT(google-explicit-constructor)
};
