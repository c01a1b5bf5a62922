// The prefix that takes a path past the classic limit of Windows. Lengths are in characters.
#pragma once

#include "files/PathPieces.h"

namespace PathText {

constexpr std::wstring_view kLongPathPrefix = L"\\\\?\\";
constexpr std::size_t kLongestPlainPath = 247;

bool HasLongPathPrefix(std::wstring_view path);

// Whether the path must get the prefix before it reaches a file call: longer than 247 and without it.
bool NeedsLongPathPrefix(std::wstring_view path);

// `\\?\C:\a` for `C:\a`, `\\?\UNC\server\share` for `\\server\share`, whatever the length. A drive alone, `C:`, comes
// with the backslash of its root. A path that has the prefix stays as it is.
PathPieces AddLongPathPrefix(std::wstring_view path);

// The other way. Only the first prefix goes; `UNC\` behind it may be in small letters.
PathPieces RemoveLongPathPrefix(std::wstring_view path);

}  // namespace PathText
