// The root of what can receive messages and commands.
#pragma once

#include "framework/Object.h"

class AFX_API CCmdTarget : public CObject {
    DECLARE_DYNAMIC(CCmdTarget)
};
