// Registry keys.
#pragma once

#include "framework/RegKey.h"
