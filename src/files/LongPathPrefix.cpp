#include "files/LongPathPrefix.h"

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
    return {{kLongPathPrefix, path}};
}

PathPieces RemoveLongPathPrefix(std::wstring_view path) {
    if (!HasLongPathPrefix(path)) return {{path}};
    path.remove_prefix(kLongPathPrefix.size());
    if (path.starts_with(kUnc)) return {{kUncStart, path.substr(kUnc.size())}};
    return {{path}};
}

}  // namespace PathText
