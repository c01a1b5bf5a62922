#include "helpers/Fonts.h"

#include <algorithm>
#include <cwchar>
#include <limits>

namespace {

constexpr wchar_t kDialogFace[] = L"MS Shell Dlg 2";

// A height below 0 means characters, one above 0 cells; either grows away from 0, and 0, the system's choice, stays.
LONG Enlarged(LONG height, LONG delta) {
    if (height == 0) return 0;
    const LONGLONG enlarged = height > 0 ? LONGLONG{height} + delta : LONGLONG{height} - delta;
    using Limits = std::numeric_limits<LONG>;
    return static_cast<LONG>(std::clamp<LONGLONG>(enlarged, Limits::min(), Limits::max()));
}

}  // namespace

BOOL CreateFaceFont(CFont& font, LPCWSTR face, LONG height, LONG weight, bool italic) {
    LOGFONTW description{};
    description.lfHeight = height;
    description.lfWeight = weight;
    description.lfItalic = italic;
    description.lfPitchAndFamily = VARIABLE_PITCH | FF_SWISS;
    std::wcsncpy(description.lfFaceName, face, LF_FACESIZE - 1);
    return CreateFontFromLogFont(font, description);
}

BOOL CreateFontFromLogFont(CFont& font, const LOGFONTW& description) {
    return font.CreateFontIndirect(&description);
}

void CreateSystemFont(CFont* font, LONG heightDelta, bool bold, bool italic) {
    if (font == nullptr) return;
    LOGFONTW description{};
    if (!SystemParametersInfoW(SPI_GETICONTITLELOGFONT, sizeof(description), &description, 0)) return;
    description.lfHeight = Enlarged(description.lfHeight, heightDelta);
    if (bold) description.lfWeight = FW_BOLD;
    if (italic) description.lfItalic = TRUE;
    CreateFontFromLogFont(*font, description);
}

void SelectDialogFont(CDC& dc) {
    TEXTMETRICW metrics{};
    if (!GetTextMetricsW(dc.m_hAttribDC, &metrics)) return;
    // Deleted on return while it is selected: the system keeps it until the context has another one.
    CFont font;
    if (CreateFaceFont(font, kDialogFace, metrics.tmHeight, metrics.tmWeight, metrics.tmItalic != 0)) {
        dc.SelectObject(&font);
    }
}

void ApplyFontToChildren(CFont* font, CWnd* window) {
    if (font == nullptr || window == nullptr) return;
    const auto set = [handle = reinterpret_cast<WPARAM>(HFONT{*font})](HWND target) {
        SendMessageW(target, WM_SETFONT, handle, TRUE);
    };
    set(*window);
    for (HWND child = GetWindow(*window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) set(child);
}
