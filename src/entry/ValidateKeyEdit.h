// An edit control that checks the key path in it.
#pragma once

#include <afxwin.h>

// What ValidateKey answers. Callers go on at KEY_OK and stay at any other value.
inline constexpr int KEY_OK = 0;           // blank, the watermark or accepted
inline constexpr int KEY_DISMISSED = 604;  // refused, and the user pressed Cancel in the message box
inline constexpr int KEY_RETRY = 605;      // refused; the user pressed OK and is back in the control to correct it

class CValidateKeyEdit : public CEdit {
public:
    // Checks the control's text, as it stands and of any length. An accepted key releases, and a refused one holds or
    // releases, the window two levels up (RRM_RELEASE_EDIT, RRM_HOLD_EDIT), which for a cell's editor is the dialog; a
    // control without a grandparent sends nothing. A refused key is told in a message box with OK and Cancel: OK puts
    // the focus back and selects what is wrong; Cancel empties the control if it was the hive that was not known.
    // Runs a nested message loop while the box is up. A control that is destroyed meanwhile answers KEY_DISMISSED.
    int ValidateKey();
};
