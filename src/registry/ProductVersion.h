// Comparing versions, and the product versions that are recognised.
#pragma once

#include <afx.h>

#include "registry/VersionText.h"

// The first four numbers between dots; see ParseVersionParts.
void ParseVersion(const CString& text, VersionParts& parts);

// Compares the first `count` parts, at most four. Equal versions are at least, and so is everything for a count of 0.
bool IsVersionAtLeast(const CString& a, const CString& b, int count);
bool IsVersionOlder(const CString& a, const CString& b, int count);
bool IsVersionOlderThanModule(const CString& text, int count);

// Whether the text begins with one of the recognised versions.
bool IsKnownProductVersion(const CString& text);
bool IsKnownProductVersion(LPCWSTR text);
bool IsProductVersion7OrLater(const CString& text);
