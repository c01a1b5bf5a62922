// A variable of the user's session.
#pragma once

#include <afx.h>

// The value of an environment variable: of the user's session, asked of the companion there, while its pipe channel is
// on, and of this process, as the C run-time library has it, otherwise. A variable that is not set gives true and an
// empty text, like one that is set to nothing; the call always succeeds.
bool GetEnvironmentValue(const CString& name, CString& value);
