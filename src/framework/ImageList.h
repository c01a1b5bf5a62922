// Lists of pictures of one size, and the picture that floats under the cursor during a drag:
//
//     image->BeginDrag(0, CPoint(10, 10));            // picture 0, held 10 pixels from its corner
//     CImageList::DragEnter(nullptr, screenPoint);    // on the whole screen
//     CImageList::DragMove(screenPoint);              // ... at every move
//     CImageList::DragLeave(nullptr);
//     CImageList::EndDrag();
#pragma once

#include <windows.h>
#include <commctrl.h>

#include "framework/GdiObject.h"
#include "framework/Window.h"

// Owns an image list, and destroys it at the end unless it is detached before.
class AFX_API CImageList : public CObject {
    DECLARE_DYNAMIC(CImageList)

public:
    HIMAGELIST m_hImageList = nullptr;

    CImageList() = default;
    ~CImageList() override { DeleteImageList(); }

    // Temporary, see CWnd::FromHandle; null for null.
    static CImageList* FromHandle(HIMAGELIST list);

    // `width` and `height` in pixels, `flags` ILC_..., `initial` and `grow` in pictures. FALSE on failure or if there
    // is a list already.
    BOOL Create(int width, int height, UINT flags, int initial, int grow) {
        return Attach(::ImageList_Create(width, height, flags, initial, grow));
    }
    // FALSE and nothing taken if the handle is null or one is held already.
    BOOL Attach(HIMAGELIST list);
    HIMAGELIST Detach();
    BOOL DeleteImageList();

    int GetImageCount() const { return ::ImageList_GetImageCount(m_hImageList); }
    // The index of the new picture, or -1. The list keeps copies; icon and bitmap stay the caller's.
    int Add(HICON icon) { return ::ImageList_ReplaceIcon(m_hImageList, -1, icon); }
    int Add(CBitmap* bitmap, COLORREF mask) { return ::ImageList_AddMasked(m_hImageList, *bitmap, mask); }

    BOOL BeginDrag(int image, CPoint hotSpot) {
        return ::ImageList_BeginDrag(m_hImageList, image, hotSpot.x, hotSpot.y);
    }
    // Points are relative to the window's own corner, frame included; null for the screen.
    static BOOL DragEnter(CWnd* window, CPoint point) { return ::ImageList_DragEnter(Lock(window), point.x, point.y); }
    static BOOL DragMove(CPoint point) { return ::ImageList_DragMove(point.x, point.y); }
    static BOOL DragShowNolock(BOOL show) { return ::ImageList_DragShowNolock(show); }
    static BOOL DragLeave(CWnd* window) { return ::ImageList_DragLeave(Lock(window)); }
    static void EndDrag() { ::ImageList_EndDrag(); }

private:
    static HWND Lock(CWnd* window) { return window != nullptr ? window->m_hWnd : ::GetDesktopWindow(); }
};
