// Fonts for the toolkit's windows.
#pragma once

#include <afxwin.h>

// A proportional face without serifs at a height in logical units: below 0 of the characters, above 0 of the cell.
// FALSE when the system makes no font. The face of the user interface is CreateUiFont's (registry/UiFont.h).
BOOL CreateFaceFont(CFont& font, LPCWSTR face, LONG height, LONG weight, bool italic);

BOOL CreateFontFromLogFont(CFont& font, const LOGFONTW& description);

// The font of icon titles, larger by `heightDelta`, smaller for one below 0. `bold` and `italic` add to what the user
// chose. Nothing happens for null, or when the system does not tell the font.
void CreateSystemFont(CFont* font, LONG heightDelta, bool bold, bool italic);

// Selects "MS Shell Dlg 2" in the height, weight and slant of the font that is selected. The device context owns the
// new font from then on; the system deletes it when another one is selected.
void SelectDialogFont(CDC& dc);

// The font for the window and its direct children. It stays the caller's and must outlive them. Nothing happens for
// null.
void ApplyFontToChildren(CFont* font, CWnd* window);
