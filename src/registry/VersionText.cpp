#include "registry/VersionText.h"

#include <algorithm>

#include "helpers/DottedText.h"
#include "helpers/NumberText.h"

namespace {

constexpr std::wstring_view kKnownProductVersions[] = {L"8.0",  L"8.1",  L"8.2",  L"8.5",  L"8.6",  L"8.7",  L"8.8",
                                                       L"10.0", L"10.1", L"10.2", L"10.3", L"10.4", L"10.5", L"11.0"};

}  // namespace

VersionParts ParseVersionParts(std::wstring_view text) {
    VersionParts parts{};
    const auto pieces = SplitAtDots(text);
    const auto count = std::min(pieces.size(), parts.size());
    for (std::size_t i = 0; i < count; ++i) parts[i] = static_cast<std::uint32_t>(LeadingNumber(pieces[i]));
    return parts;
}

bool IsAtLeast(const VersionParts& a, const VersionParts& b, int count) {
    const auto compared = static_cast<std::size_t>(std::clamp(count, 0, static_cast<int>(a.size())));
    for (std::size_t i = 0; i < compared; ++i) {
        if (a[i] != b[i]) return a[i] > b[i];
    }
    return true;
}

bool BeginsWithKnownProductVersion(std::wstring_view text) {
    return std::ranges::any_of(kKnownProductVersions,
                               [text](std::wstring_view version) { return text.starts_with(version); });
}
