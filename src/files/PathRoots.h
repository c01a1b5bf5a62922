// Where a path starts: drives, shares, servers. Pure text; only the backslash separates unless a function says
// otherwise, and the answers point into the path that was given. An empty answer means "none".
#pragma once

#include <string_view>

#include "files/PathPieces.h"

namespace PathText {

bool IsDriveLetter(wchar_t c);  // A to Z in either case

// A letter and a colon, and nothing else.
bool IsBareDrive(std::wstring_view path);

// `\`, `C:`, `C:\`, the last two also behind `\\?\`, and `\\server\share`. Neither `\\server` nor `\\server\share\` is
// one, nor is a share whose whole text has fewer than six characters.
bool IsRootPath(std::wstring_view path);

// Starts with a letter and a colon, directly or behind `\\?\`.
bool IsDrivePath(std::wstring_view path);

// Names a share, or something on one: a server alone is not enough. Of a path that is longer than 260 characters only
// the whole elements among the first 260 are looked at.
bool IsUncPath(std::wstring_view path);

// Starts with two backslashes and a first element that holds a dot, as `\\server.example\share` does.
bool IsDottedServerPath(std::wstring_view path);

// `C:\` for a path whose first colon stands behind that letter, wherever in the path that is.
PathPieces GetDriveRoot(std::wstring_view path);

// What follows the backslash behind the share of a path that starts with two backslashes. The long-path prefix is taken
// for a server and a share like any other.
std::wstring_view GetUncRelativePart(std::wstring_view path);

// The path without its relative part and without slashes of either kind at its end. A path that has no relative part,
// also one on a drive, is all root.
std::wstring_view GetUncRoot(std::wstring_view path);

}  // namespace PathText
