#include "files/LongPathPrefix.h"

#include "files/PathRoots.h"
#include "helpers/AsciiCase.h"

namespace PathText {

namespace {

constexpr std::wstring_view kUnc = L"UNC\\";
constexpr std::wstring_view kUncStart = L"\\\\";

}  // namespace

bool HasLongPathPrefix(std::wstring_view path) {
    return path.starts_with(kLongPathPrefix);
}

bool NeedsLongPathPrefix(std::wstring_view path) {
    return path.size() > kLongestPlainPath && !HasLongPathPrefix(path);
}

PathPieces AddLongPathPrefix(std::wstring_view path) {
    if (HasLongPathPrefix(path)) return {{path}};
    if (path.starts_with(kUncStart)) return {{kLongPathPrefix, kUnc, path.substr(kUncStart.size())}};
    // Without the backslash the prefixed drive would be the volume and not its root folder.
    return {{kLongPathPrefix, path, IsBareDrive(path) ? L"\\" : L""}};
}

PathPieces RemoveLongPathPrefix(std::wstring_view path) {
    if (!HasLongPathPrefix(path)) return {{path}};
    path.remove_prefix(kLongPathPrefix.size());
    if (StartsWithIgnoringAsciiCase(path, kUnc)) return {{kUncStart, path.substr(kUnc.size())}};
    return {{path}};
}

}  // namespace PathText
