// The name of the user whom this process works for: asked of the companion in the user's session while its channel is
// on, and of the system otherwise. Names above 256 characters, like all failures, give an empty text.
#pragma once

#include <afx.h>

// The plain name.
CString CurrentUserName();

// DOMAIN\name.
CString CurrentQualifiedUserName();
