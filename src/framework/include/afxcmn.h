// The common controls.
#pragma once

#include "afxwin.h"
