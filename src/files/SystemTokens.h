// The tokens for the system's folder and drive in a path.
#pragma once

#include <string>
#include <string_view>

// `path` with "%systemroot%" replaced by `systemRoot` and "%systemdrive%" by its first two characters, each in its
// three common spellings only: all lower case, all upper case, and "%SystemRoot%", "%SystemDrive%". An empty root
// replaces nothing.
std::wstring ReplaceSystemTokens(std::wstring_view path, std::wstring_view systemRoot);

// Every occurrence of `from`, scanned from the left; what was put in is not searched again. An empty `from` replaces
// nothing.
std::wstring ReplaceEvery(std::wstring_view text, std::wstring_view from, std::wstring_view to);
