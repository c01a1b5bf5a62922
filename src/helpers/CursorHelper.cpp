#include "helpers/CursorHelper.h"

namespace {

// The system's own cursors are shared and never destroyed.
struct StandardCursors {
    HCURSOR arrow = LoadCursorW(nullptr, IDC_ARROW);
    HCURSOR wait = LoadCursorW(nullptr, IDC_WAIT);
    HCURSOR hand = LoadCursorW(nullptr, IDC_HAND);
    HCURSOR sizeWE = LoadCursorW(nullptr, IDC_SIZEWE);
    HCURSOR sizeNS = LoadCursorW(nullptr, IDC_SIZENS);
    HCURSOR remembered = arrow;
};

StandardCursors& Cursors() {
    static StandardCursors cursors;
    return cursors;
}

void Show(HCURSOR cursor, bool remember) {
    const HCURSOR previous = SetCursor(cursor);
    if (remember) Cursors().remembered = previous;
}

void ShowOverAny(HCURSOR cursor, bool remember) {
    const HCURSOR previous = SetCursor(cursor);
    if (remember) CursorHelper::SetRememberedCursor(previous);
}

}  // namespace

void CursorHelper::SetWaitCursor(bool remember) {
    Show(Cursors().wait, remember);
}

void CursorHelper::SetArrowCursor(bool remember) {
    Show(Cursors().arrow, remember);
}

void CursorHelper::SetHandCursor(bool remember) {
    ShowOverAny(Cursors().hand, remember);
}

void CursorHelper::SetSizeWECursor(bool remember) {
    ShowOverAny(Cursors().sizeWE, remember);
}

void CursorHelper::SetSizeNSCursor(bool remember) {
    ShowOverAny(Cursors().sizeNS, remember);
}

void CursorHelper::RestoreCursor() {
    SetCursor(Cursors().remembered);
}

void CursorHelper::SetRememberedCursor(HCURSOR cursor) {
    Cursors().remembered = cursor != nullptr ? cursor : SetCursor(Cursors().arrow);
}
