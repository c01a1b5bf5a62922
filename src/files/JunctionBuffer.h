// The bytes in which a file system keeps a junction, as its control calls take and give them: little-endian, a fixed
// head, then the target in UTF-16 behind the system's own prefix, with its terminator.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Junction {

constexpr std::size_t kBufferBytes = 0x4000;
constexpr std::uint32_t kMountPointTag = 0xA0000003;

// What sets a junction to `target`, exactly as many bytes as the call takes. Nothing when they would be more than
// kBufferBytes. Each wchar_t counts as one UTF-16 unit.
std::optional<std::vector<std::byte>> Encode(std::wstring_view target);

// What removes a junction.
std::vector<std::byte> EncodeRemoval();

// The target, without the system's prefix: the text behind the head up to its first zero, or to the end of the bytes.
// The offsets and lengths in the head are not trusted with anything, so they may be wrong. Empty for bytes without a
// whole head, and for another kind of link.
std::wstring Decode(std::span<const std::byte> bytes);

}  // namespace Junction
