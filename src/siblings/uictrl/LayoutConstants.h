// Distances that the dialogs of the product family share.
#pragma once

#include <windows.h>

#include "siblings/uictrl/Api.h"

namespace LayoutConstants {

// The gap between neighbouring controls, in pixels.
extern UICTRL_API const SIZE ControlSpacing;

}  // namespace LayoutConstants
