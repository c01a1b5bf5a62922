// Taking paths apart and putting them together. Pure text; only the backslash separates unless a function says
// otherwise, and the answers point into the texts that were given. An empty answer means "none".
#pragma once

#include <string_view>

#include "files/PathPieces.h"

namespace PathText {

// The path up to its last backslash, `C:\` for `C:\a`. Empty for a root, for a bare drive and without a backslash.
PathPieces GetParentPath(std::wstring_view path);

// What follows the last backslash; the whole path without one. Of roots only a share has a name; a path that ends in a
// backslash has none.
std::wstring_view GetFileName(std::wstring_view path);

// From the last dot on, with it. Empty when a blank or a slash of either kind follows.
std::wstring_view GetExtension(std::wstring_view path);

// The file name without its extension.
std::wstring_view GetNameWithoutExtension(std::wstring_view path);

// One backslash between both; slashes of either kind at the end of `base` go. A relative path that starts with a
// backslash comes back alone.
PathPieces CombinePath(std::wstring_view base, std::wstring_view relative);

// The path with `extension` in place of what follows the last dot of its last element, or behind it. Slashes of either
// kind separate. The dot is part of the extension; an empty one takes the old one away.
PathPieces ReplaceExtension(std::wstring_view path, std::wstring_view extension);

// Whether `parent` occurs in `path`, at its start or anywhere else, up to the end of an element. The caller has folded
// both to one case. An empty parent occurs everywhere.
bool HoldsPath(std::wstring_view path, std::wstring_view parent);

// The path from `baseLength` on, without backslashes at its start.
std::wstring_view BelowBase(std::wstring_view path, std::size_t baseLength);

// `C:\1\2\3\...\n.dat`: up to the fourth backslash, then the last element. A path with fewer, the first character not
// counted, comes back whole.
PathPieces AbbreviatePath(std::wstring_view path);

}  // namespace PathText
