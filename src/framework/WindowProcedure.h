// The one window procedure: takes the messages of bound windows to their objects.
#pragma once

#include "framework/Window.h"

class CWindowProcedure {
public:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    // Puts the procedure in the place of the window's own, which the object keeps. FALSE and nothing bound if object or
    // window is bound already.
    static BOOL Install(CWnd* object, HWND window);
    // Puts the window's own procedure back, if nobody else has replaced ours since.
    static void Remove(CWnd* object);
    // What the object does with a message, in its own module state; whatever it throws leaves here.
    static LRESULT Dispatch(CWnd* object, UINT message, WPARAM wParam, LPARAM lParam);
    static BOOL PreTranslate(CWnd* object, MSG* message);
};
