// Decisions on the paths of user profiles.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "registry/SystemVersion.h"

// The folder suffix, ".V2" to ".V6", that a system of this version gives its roaming profiles. `extensionVersion` is
// the setting that lets 6.2 and 6.3 use a suffix of their own; 0 stands for none.
std::wstring_view ProfilePathExtension(const SystemVersion& version, std::uint32_t extensionVersion);

// The path without one of the suffixes ".V2" to ".V6", which are seen with a capital V only.
std::wstring_view WithoutProfilePathExtension(std::wstring_view path);

// Whether a user's profile is used from its central copy: there is one, and no policy keeps profiles local.
bool UsesCentralProfile(std::wstring_view centralPath, std::uint32_t localProfilePolicy);

// The name behind the domain: the second of the parts between backslashes, where several backslashes count as one.
// Empty for a name without a domain.
std::wstring_view ShortUserName(std::wstring_view qualifiedName);

// The server of a path on a share: "\\server" for "\\server\share\folder". A path on a drive loses its last element, as
// it has no server to be found; one without a backslash gives an empty text.
std::wstring_view ServerOf(std::wstring_view path);
