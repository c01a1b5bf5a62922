// Device contexts: where drawing and measuring happen.
//
//     CClientDC dc(this);
//     CFont* previous = dc.SelectObject(&m_font);
//     const CSize extent = dc.GetTextExtent(L"Type");    // pixels
//     dc.SelectObject(previous);
#pragma once

#include "framework/CString.h"
#include "framework/GdiObject.h"

class CWnd;

// Owns a context and deletes it at the end, unless it is detached before.
class AFX_API CDC : public CObject {
    DECLARE_DYNAMIC(CDC)

public:
    HDC m_hDC = nullptr;        // for output
    HDC m_hAttribDC = nullptr;  // for questions; the same one here

    CDC() = default;
    ~CDC() override { DeleteDC(); }

    // Temporary, see CWnd::FromHandle; null for null.
    static CDC* FromHandle(HDC context);

    HDC GetSafeHdc() const { return m_hDC; }
    // FALSE and nothing taken if the handle is null or one is held already.
    BOOL Attach(HDC context);
    HDC Detach();
    // A context in memory that draws like `context`, or like the screen for null.
    BOOL CreateCompatibleDC(CDC* context);
    BOOL DeleteDC();

    // Each returns what was selected before: put that back before the new object is deleted.
    CFont* SelectObject(CFont* font);
    CBitmap* SelectObject(CBitmap* bitmap);

    COLORREF SetBkColor(COLORREF color) { return ::SetBkColor(m_hDC, color); }
    COLORREF SetTextColor(COLORREF color) { return ::SetTextColor(m_hDC, color); }
    int SetBkMode(int mode) { return ::SetBkMode(m_hDC, mode); }
    // The size of one line in the selected font, in pixels; 0, 0 on failure.
    CSize GetTextExtent(LPCWSTR text, int length) const;
    CSize GetTextExtent(const CString& text) const { return GetTextExtent(text, text.GetLength()); }
    // Also leaves `color` as the background colour.
    void FillSolidRect(const RECT* rect, COLORREF color);
};

// The client area of a window, from construction to destruction.
class AFX_API CClientDC : public CDC {
    DECLARE_DYNAMIC(CClientDC)

public:
    // Null for the screen. CResourceException if there is no context to be had.
    explicit CClientDC(CWnd* window);
    ~CClientDC() override;

private:
    HWND m_hWnd;
};
