// The framework as a program with windows needs it.
#pragma once

#include "afx.h"
#include "framework/Dialog.h"
#include "framework/StandardControls.h"
#include "framework/WinApp.h"
#include "framework/WinThread.h"
