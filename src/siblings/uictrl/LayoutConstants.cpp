#include "siblings/uictrl/LayoutConstants.h"

const SIZE LayoutConstants::ControlSpacing = {4, 4};
