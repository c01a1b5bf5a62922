#include "entry/StripKeys.h"

#include "entry/PrivateMessages.h"

bool IsStripKey(UINT key) {
    return key == VK_RETURN || key == VK_TAB;
}

void TellStripKey(HWND edit, UINT key) {
    if (!IsStripKey(key)) return;
    UINT message = RRM_STRIP_ENTER;
    if (key == VK_TAB) {
        const bool shift = (GetAsyncKeyState(VK_SHIFT) & 0x8000) != 0;
        message = shift ? RRM_STRIP_BACK_TAB : RRM_STRIP_TAB;
    }
    ::SendMessageW(::GetParent(edit), message, 0, 0);
}
