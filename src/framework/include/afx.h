// Objects, exceptions, strings.
#pragma once

#include "framework/CString.h"
#include "framework/Exception.h"
#include "framework/ModuleState.h"
#include "framework/Object.h"
