// Collection templates.
#pragma once

#include "framework/List.h"
#include "framework/PtrArray.h"
