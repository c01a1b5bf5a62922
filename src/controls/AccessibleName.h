// The name by which a screen reader calls a control that has no text of its own and no label before it in the tab
// order.
#pragma once

#include <afxwin.h>

// Until the window goes, or gets another name. What else the system tells of the window stays as it is. What is no
// window of this thread's is not named.
void SetAccessibleName(HWND window, const CString& name);
