#include "helpers/NumberText.h"

#include <algorithm>
#include <cerrno>
#include <cwchar>
#include <limits>
#include <string>

namespace {

// `long` has 32 bits on Windows and 64 elsewhere; clamping makes both answer alike.
std::int32_t Clamp(long number) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<long>(number, Limits::min(), Limits::max()));
}

}  // namespace

bool IsIntInRange(const wchar_t* text, std::int32_t min, std::int32_t max) {
    if (!text || !*text) return false;
    wchar_t* end = nullptr;
    errno = 0;
    const long number = std::wcstol(text, &end, 10);
    return errno == 0 && *end == L'\0' && number >= min && number <= max;
}

std::int32_t LeadingNumber(std::wstring_view text) {
    return Clamp(std::wcstol(std::wstring(text).c_str(), nullptr, 10));
}

std::uint32_t GroupingNumber(std::wstring_view text) {
    const std::wstring list(text);
    const wchar_t* const listEnd = list.c_str() + list.size();
    std::uint32_t total = 0;
    for (const wchar_t* at = list.c_str(); at < listEnd;) {
        wchar_t* end = nullptr;
        total += static_cast<std::uint32_t>(Clamp(std::wcstol(at, &end, 10)));
        if (std::wstring_view(end) == L";0") break;
        total *= 10;
        at = end + 1;
    }
    return total;
}

ScaledSize ScaleByteSize(double bytes) {
    constexpr double kKilobyte = 1024;
    constexpr double kMegabyte = kKilobyte * 1024;
    constexpr double kGigabyte = kMegabyte * 1024;
    if (bytes > kGigabyte) return {bytes / kGigabyte, ByteUnit::Gigabytes};
    if (bytes > kMegabyte) return {bytes / kMegabyte, ByteUnit::Megabytes};
    if (bytes > kKilobyte) return {bytes / kKilobyte, ByteUnit::Kilobytes};
    return {bytes, ByteUnit::Bytes};
}
