// How a cell editor hands its text to the list.
#pragma once

#include <afxwin.h>

// Sends the list an LVN_ENDLABELEDITW that names the list itself as its sender, so that the framework gives it back to
// the list's own handler. `text` need not outlive the call.
void SendEndLabelEdit(HWND list, int row, int column, CString text);
