// Keeps the child controls of a resizable window in place when its size changes:
//
//     m_layout.Attach(m_hWnd);                                                         // in OnInitDialog
//     m_layout.SetAnchors(IDOK, kAnchorKeepSize | kAnchorFar, kAnchorKeepSize | kAnchorFar);
//     m_layout.SetAnchors(IDC_LIST, kAnchorNear | kAnchorFar, kAnchorNear | kAnchorFar);
//     m_layout.Resize();                                                               // in OnSize
//
// Controls without flags move and grow in proportion. The windows stay their owners'; one that is gone is passed over.
// For the user interface thread only.
#pragma once

#include <windows.h>

#include <cstdint>
#include <list>

#include "controls/AnchorRules.h"

class CAnchorLayout {
public:
    // Takes the parent with its size and all its children, as they are now, instead of what was there before. Something
    // that is no window has no children.
    void Attach(HWND parent);
    // Takes one more child as it is now. Nothing happens before Attach, or for null.
    void AddControl(HWND child);

    // Flags for left and right, and for top and bottom. False for an id that no registered child has.
    bool SetAnchors(int controlId, std::uint32_t horizontalFlags, std::uint32_t verticalFlags);
    // For every registered child whose class has exactly this name, of which 200 characters count.
    void SetAnchorsByClass(LPCWSTR className, std::uint32_t horizontalFlags, std::uint32_t verticalFlags);

    // Moves the children to where they belong at the parent's size now. It always starts from the places that they were
    // taken with, so that nothing drifts.
    void Resize();

private:
    struct AnchoredControl {
        RECT m_rcOriginal{};  // in the parent's client coordinates
        HWND m_hWnd = nullptr;
        std::uint32_t m_nHorizontalFlags = 0;
        std::uint32_t m_nVerticalFlags = 0;
    };

    std::list<AnchoredControl> m_Controls;
    HWND m_hWndParent = nullptr;
    RECT m_rcOriginal{};  // in screen coordinates
};
