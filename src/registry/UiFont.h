// The font of the user interface, which follows the system's version.
#pragma once

#include <afxwin.h>

// "Segoe UI" from Windows 7 on, else "MS Shell Dlg 2"; the height as for CreateFaceFont. FALSE when the system makes no
// font. Throws CRegistryException as CWindowsVersion does.
BOOL CreateUiFont(CFont& font, bool italic, bool bold, LONG height);
