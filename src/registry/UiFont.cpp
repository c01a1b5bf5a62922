#include "registry/UiFont.h"

#include "helpers/Fonts.h"
#include "registry/WindowsVersion.h"

BOOL CreateUiFont(CFont& font, bool italic, bool bold, LONG height) {
    const LPCWSTR face = CWindowsVersion::IsWindows7OrLater() ? L"Segoe UI" : L"MS Shell Dlg 2";
    return CreateFaceFont(font, face, height, bold ? FW_BOLD : FW_NORMAL, italic);
}
