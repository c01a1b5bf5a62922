// The one road of user-visible text out of the string table.
#pragma once

#include <afx.h>

// String `id` of the current module state's resources, else of the program (there cut to 999 characters), else a text
// that names the missing id. It never fails and is never empty.
CString LoadResourceString(UINT id);
