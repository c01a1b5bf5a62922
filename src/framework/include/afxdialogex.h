// Dialogs with a coloured background.
#pragma once

#include "afxwin.h"
