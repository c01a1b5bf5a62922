#include "files/JunctionBuffer.h"

#include <algorithm>

namespace Junction {

namespace {

constexpr std::wstring_view kSystemPrefix = L"\\??\\";
constexpr std::size_t kUnit = 2;          // bytes of a UTF-16 unit
constexpr std::size_t kTagAndLength = 8;  // what the length in the head does not count
constexpr std::size_t kNameNumbers = 8;   // offset and length of the target and of the name to be shown
constexpr std::size_t kHead = kTagAndLength + kNameNumbers;
constexpr std::size_t kTerminators = 2 * kUnit;
constexpr std::size_t kRemovalBytes = 24;

void Append(std::vector<std::byte>& bytes, std::uint32_t number, std::size_t width) {
    for (std::size_t i = 0; i < width; ++i) bytes.push_back(static_cast<std::byte>(number >> (8 * i)));
}

std::uint32_t NumberAt(std::span<const std::byte> bytes, std::size_t offset, std::size_t width) {
    std::uint32_t number = 0;
    for (std::size_t i = width; i > 0; --i)
        number = number << 8 | std::to_integer<std::uint32_t>(bytes[offset + i - 1]);
    return number;
}

}  // namespace

std::optional<std::vector<std::byte>> Encode(std::wstring_view target) {
    constexpr std::size_t kLongest = (kBufferBytes - kHead - kTerminators) / kUnit - kSystemPrefix.size();
    if (target.size() > kLongest) return std::nullopt;
    const auto nameBytes = static_cast<std::uint32_t>((target.size() + kSystemPrefix.size()) * kUnit);
    std::vector<std::byte> bytes;
    bytes.reserve(kHead + nameBytes + kTerminators);
    Append(bytes, kMountPointTag, 4);
    Append(bytes, nameBytes + kNameNumbers + kTerminators, 2);
    Append(bytes, 0, 2);
    Append(bytes, 0, 2);  // the target: offset
    Append(bytes, nameBytes, 2);
    Append(bytes, nameBytes + kUnit, 2);  // the name to be shown, which is empty: offset
    Append(bytes, 0, 2);
    for (const auto part : {kSystemPrefix, target}) {
        for (const wchar_t unit : part) Append(bytes, static_cast<std::uint32_t>(unit), kUnit);
    }
    Append(bytes, 0, kTerminators);
    return bytes;
}

std::vector<std::byte> EncodeRemoval() {
    std::vector<std::byte> bytes;
    Append(bytes, kMountPointTag, 4);
    bytes.resize(kRemovalBytes);
    return bytes;
}

std::wstring Decode(std::span<const std::byte> bytes) {
    if (bytes.size() < kHead || NumberAt(bytes, 0, 4) != kMountPointTag) return {};
    bytes = bytes.first(std::min(bytes.size(), kBufferBytes));
    std::wstring target;
    for (std::size_t at = kHead; at + kUnit <= bytes.size(); at += kUnit) {
        const auto unit = static_cast<wchar_t>(NumberAt(bytes, at, kUnit));
        if (unit == L'\0') break;
        target += unit;
    }
    if (target.starts_with(kSystemPrefix)) target.erase(0, kSystemPrefix.size());
    return target;
}

}  // namespace Junction
