#include "framework/CommandTarget.h"

IMPLEMENT_DYNAMIC(CCmdTarget, CObject)
