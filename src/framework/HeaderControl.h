// The column headers of a report list.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include "framework/Window.h"

class AFX_API CHeaderCtrl : public CWnd {
    DECLARE_DYNAMIC(CHeaderCtrl)

public:
    // -1 on failure.
    int GetItemCount() const { return static_cast<int>(SendMessage(HDM_GETITEMCOUNT)); }
};
