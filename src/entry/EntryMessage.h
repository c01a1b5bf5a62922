// The message boxes of the key edits and the cell editors.
#pragma once

#include <afxwin.h>

// Shows the text in the framework's message box with the buttons of `type` and returns the id of the one pressed. For
// an edit that is not to be seen, as its dialog has gone already, there is no box, which counts as Cancel.
int ShowEntryMessage(HWND edit, const CString& text, UINT type);

// Whether such a box is up. The box takes the focus and its end gives the focus back; an editor that took these moves
// for the user leaving it would ask about the same text a second time.
bool IsEntryMessageUp();
