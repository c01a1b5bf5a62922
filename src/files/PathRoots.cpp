#include "files/PathRoots.h"

#include "files/LongPathPrefix.h"
#include "helpers/AsciiCase.h"

namespace PathText {

namespace {

constexpr auto kNone = std::wstring_view::npos;
constexpr std::wstring_view kUncStart = L"\\\\";
constexpr std::size_t kClassicLimit = 260;

// `path` up to the classic limit, without an element that the limit would cut in two.
std::wstring_view WholeElementsWithinLimit(std::wstring_view path) {
    if (path.size() <= kClassicLimit) return path;
    const auto cut = path.substr(0, kClassicLimit);
    return cut.substr(0, cut.rfind(L'\\'));
}

std::wstring_view WithoutPrefix(std::wstring_view path) {
    return HasLongPathPrefix(path) ? path.substr(kLongPathPrefix.size()) : path;
}

}  // namespace

bool IsDriveLetter(wchar_t c) {
    return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z');
}

bool IsBareDrive(std::wstring_view path) {
    return path.size() == 2 && IsDriveLetter(path[0]) && path[1] == L':';
}

bool IsRootPath(std::wstring_view path) {
    if (path == L"\\") return true;
    const auto drive = WithoutPrefix(path);
    if (IsBareDrive(drive) || (drive.size() == 3 && IsBareDrive(drive.substr(0, 2)) && drive[2] == L'\\')) return true;
    constexpr std::size_t kShortestShare = 6;
    if (path.size() < kShortestShare || !path.starts_with(kUncStart)) return false;
    const auto share = path.find(L'\\', kUncStart.size());
    return share != kNone && share == path.rfind(L'\\');
}

bool IsDrivePath(std::wstring_view path) {
    return IsBareDrive(WithoutPrefix(path).substr(0, 2));
}

bool IsUncPath(std::wstring_view path) {
    if (HasLongPathPrefix(path)) {
        path.remove_prefix(kLongPathPrefix.size());
        if (StartsWithIgnoringAsciiCase(path, L"UNC\\")) return true;
    }
    path = WholeElementsWithinLimit(path);
    return path.starts_with(kUncStart) && path.find(L'\\', kUncStart.size()) != kNone;
}

bool IsDottedServerPath(std::wstring_view path) {
    if (!path.starts_with(kUncStart)) return false;
    path.remove_prefix(kUncStart.size());
    return path.substr(0, path.find(L'\\')).find(L'.') != kNone;
}

PathPieces GetDriveRoot(std::wstring_view path) {
    const auto colon = path.find(L':');
    if (colon == kNone || colon == 0 || !IsDriveLetter(path[colon - 1])) return {};
    return {{path.substr(colon - 1, 2), L"\\"}};
}

std::wstring_view GetUncRelativePart(std::wstring_view path) {
    if (path.size() <= 4 || !path.starts_with(kUncStart)) return {};
    const auto share = path.find(L'\\', kUncStart.size());
    if (share == kNone) return {};
    const auto relative = path.find(L'\\', share + 1);
    return relative == kNone ? std::wstring_view() : path.substr(relative + 1);
}

std::wstring_view GetUncRoot(std::wstring_view path) {
    const auto root = path.substr(0, path.size() - GetUncRelativePart(path).size());
    return root.substr(0, root.find_last_not_of(L"\\/") + 1);
}

}  // namespace PathText
