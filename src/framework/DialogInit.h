// The dialog initialisation resource: messages that fill a dialog's controls, stored beside the template.
#pragma once

#include "framework/Api.h"

namespace afx {

// Sends the messages of the resource of type 240 with that name to the dialog's controls. True if there is no such
// resource; false if it is cut short or a control refused its item.
bool RunDialogInit(HWND dialog, HINSTANCE module, LPCWSTR name);

}  // namespace afx
