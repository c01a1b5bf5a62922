// Dotted version numbers and the product versions that are recognised.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

using VersionParts = std::array<std::uint32_t, 4>;

// The first four pieces between dots as numbers. A missing piece, or one that is no number, reads 0; pieces past the
// fourth are ignored.
VersionParts ParseVersionParts(std::wstring_view text);

// True when the first `count` parts of `a` (at most four) are not older than those of `b`; a count of 0 or less is
// true.
bool IsAtLeast(const VersionParts& a, const VersionParts& b, int count);

// True when the text begins with a recognised product version, as "10.5.1.2" does.
bool BeginsWithKnownProductVersion(std::wstring_view text);
