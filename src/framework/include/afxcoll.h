// Ready-made collections.
#pragma once

#include "framework/List.h"
#include "framework/Map.h"
#include "framework/PtrArray.h"
