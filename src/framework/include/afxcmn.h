// The common controls.
#pragma once

#include "afxwin.h"
#include "framework/ListControl.h"
#include "framework/TreeControl.h"
