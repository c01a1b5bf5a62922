// Return and Tab in the edits of the new-rule strip.
#pragma once

#include <afxwin.h>

// Whether the key ends the typing in a strip edit.
bool IsStripKey(UINT key);

// Tells the edit's parent of Return (RRM_STRIP_ENTER), Tab (RRM_STRIP_TAB) or Tab with Shift (RRM_STRIP_BACK_TAB).
// Any other key tells it nothing.
void TellStripKey(HWND edit, UINT key);
