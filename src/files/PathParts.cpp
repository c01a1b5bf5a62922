#include "files/PathParts.h"

#include "files/PathRoots.h"

namespace PathText {

namespace {

constexpr auto kNone = std::wstring_view::npos;
constexpr std::wstring_view kSlashes = L"\\/";

}  // namespace

PathPieces GetParentPath(std::wstring_view path) {
    const auto last = path.rfind(L'\\');
    if (last == kNone || IsRootPath(path)) return {};
    const auto parent = path.substr(0, last);
    return {{parent, IsBareDrive(parent) ? L"\\" : L""}};
}

std::wstring_view GetFileName(std::wstring_view path) {
    if (IsBareDrive(path) || (IsRootPath(path) && !IsUncPath(path))) return {};
    return path.substr(path.rfind(L'\\') + 1);
}

std::wstring_view GetExtension(std::wstring_view path) {
    const auto dot = path.rfind(L'.');
    if (dot == kNone) return {};
    const auto extension = path.substr(dot);
    return extension.find_first_of(L" /\\") == kNone ? extension : std::wstring_view();
}

std::wstring_view GetNameWithoutExtension(std::wstring_view path) {
    const auto name = GetFileName(path);
    return name.substr(0, name.size() - GetExtension(name).size());
}

PathPieces CombinePath(std::wstring_view base, std::wstring_view relative) {
    if (relative.starts_with(L'\\')) return {{relative}};
    return {{base.substr(0, base.find_last_not_of(kSlashes) + 1), L"\\", relative}};
}

PathPieces ReplaceExtension(std::wstring_view path, std::wstring_view extension) {
    const auto dot = path.rfind(L'.');
    const auto slash = path.find_last_of(kSlashes);
    const bool hasExtension = dot != kNone && (slash == kNone || dot > slash);
    return {{hasExtension ? path.substr(0, dot) : path, extension}};
}

bool HoldsPath(std::wstring_view path, std::wstring_view parent) {
    // Both are meant with a backslash at their ends, whether they have it or not.
    if (parent.ends_with(L'\\')) parent.remove_suffix(1);
    if (path.ends_with(L'\\')) path.remove_suffix(1);
    for (auto at = path.find(parent); at != kNone; at = path.find(parent, at + 1)) {
        const auto end = at + parent.size();
        if (end == path.size() || path[end] == L'\\') return true;
    }
    return false;
}

std::wstring_view BelowBase(std::wstring_view path, std::size_t baseLength) {
    if (baseLength > path.size()) return {};
    path.remove_prefix(baseLength);
    const auto start = path.find_first_not_of(L'\\');
    return start == kNone ? std::wstring_view() : path.substr(start);
}

PathPieces AbbreviatePath(std::wstring_view path) {
    constexpr int kKeptBackslashes = 4;
    std::size_t at = 0;
    for (int i = 0; i < kKeptBackslashes; ++i) {
        at = path.find(L'\\', at + 1);
        if (at == kNone) return {{path}};
    }
    return {{path.substr(0, at + 1), L"...", path.substr(path.rfind(L'\\'))}};
}

}  // namespace PathText
