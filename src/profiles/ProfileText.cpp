#include "profiles/ProfileText.h"

#include <algorithm>

#include "files/PathRoots.h"

std::wstring_view ProfilePathExtension(const SystemVersion& version, std::uint32_t extensionVersion) {
    if (version.major >= 10) return L".V6";
    if (extensionVersion != 0 && version.IsAtLeast(6, 3)) return L".V4";
    if (extensionVersion != 0 && version.IsAtLeast(6, 2)) return L".V3";
    return L".V2";  // also where profiles have no suffix: a version below 6
}

std::wstring_view WithoutProfilePathExtension(std::wstring_view path) {
    constexpr size_t kLength = 3;
    // ".V5" belongs to no system that ProfilePathExtension names, but folders that carry it exist.
    for (const std::wstring_view suffix : {L".V2", L".V3", L".V4", L".V5", L".V6"}) {
        // At least one character stands before a suffix.
        if (path.size() > kLength && path.ends_with(suffix)) return path.substr(0, path.size() - kLength);
    }
    return path;
}

bool UsesCentralProfile(std::wstring_view centralPath, std::uint32_t localProfilePolicy) {
    return !centralPath.empty() && localProfilePolicy == 0;
}

std::wstring_view ShortUserName(std::wstring_view qualifiedName) {
    const auto next = [&qualifiedName] {
        qualifiedName.remove_prefix(std::min(qualifiedName.find_first_not_of(L'\\'), qualifiedName.size()));
        const std::wstring_view part = qualifiedName.substr(0, qualifiedName.find(L'\\'));
        qualifiedName.remove_prefix(part.size());
        return part;
    };
    next();
    return next();
}

std::wstring_view ServerOf(std::wstring_view path) {
    const std::wstring_view root = PathText::GetUncRoot(path);
    const auto cut = root.rfind(L'\\');
    return cut == root.npos ? std::wstring_view() : root.substr(0, cut);
}
