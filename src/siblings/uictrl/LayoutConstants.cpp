#include "siblings/uictrl/LayoutConstants.h"

const SIZE LayoutConstants::ControlSpacing = {7, 7};
