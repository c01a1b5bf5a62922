#include "entry/EntryMessage.h"

namespace {

// Boxes are shown on the thread of the dialog only.
int s_boxesUp = 0;

}  // namespace

int ShowEntryMessage(HWND edit, const CString& text, UINT type) {
    if (!::IsWindowVisible(edit)) return IDCANCEL;
    struct Count {
        Count() { ++s_boxesUp; }
        ~Count() { --s_boxesUp; }
    } count;
    return AfxMessageBox(text.GetString(), type);
}

bool IsEntryMessageUp() {
    return s_boxesUp > 0;
}
