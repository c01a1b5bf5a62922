// The mouse cursor: shows one of the system's standard cursors and remembers the one before.
//
//     CursorHelper::SetWaitCursor(true);
//     ... long work ...
//     CursorHelper::RestoreCursor();
//
// For the user interface thread only. One cursor is remembered per process, the arrow at the start.
#pragma once

#include <windows.h>

class CursorHelper {
public:
    // With `remember`, the cursor in force before becomes the remembered one; none in force is remembered as none.
    static void SetWaitCursor(bool remember);
    static void SetArrowCursor(bool remember);
    // Likewise; but if none was in force before, `remember` shows the arrow and remembers the cursor asked for.
    static void SetHandCursor(bool remember);
    static void SetSizeWECursor(bool remember);
    static void SetSizeNSCursor(bool remember);

    // Shows the remembered cursor.
    static void RestoreCursor();
    // Null shows the arrow and remembers what was in force before.
    static void SetRememberedCursor(HCURSOR cursor);
};
