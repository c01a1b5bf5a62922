#include "files/LongPathPrefix.h"
#include "files/PathCases.h"
#include "files/PathParts.h"
#include "files/PathRoots.h"

namespace {

std::wstring YesIf(bool answer) {
    return answer ? L"yes" : L"";
}

template <class Call>
PathOperation On(Call call) {
    return [call](const std::wstring& path, const std::wstring&) {
        const auto answer = call(path);
        if constexpr (std::is_same_v<decltype(answer), const bool>) {
            return YesIf(answer);
        } else if constexpr (std::is_same_v<decltype(answer), const PathPieces>) {
            return answer.Joined();
        } else {
            return std::wstring(answer);
        }
    };
}

}  // namespace

TEST(PathText, EveryOperationOnEveryKindOfPath) {
    CheckPathCases({
        // clang-format off
        {"GetParentPath", On(PathText::GetParentPath)}, {"GetFileName", On(PathText::GetFileName)},
        {"GetExtension", On(PathText::GetExtension)}, {"GetFileTitle", On(PathText::GetNameWithoutExtension)},
        {"AbbreviatePath", On(PathText::AbbreviatePath)}, {"AddLongPathPrefix", On(PathText::AddLongPathPrefix)},
        {"RemoveLongPathPrefix", On(PathText::RemoveLongPathPrefix)}, {"IsRootPath", On(PathText::IsRootPath)},
        {"IsDrivePath", On(PathText::IsDrivePath)}, {"IsUncPath", On(PathText::IsUncPath)},
        {"IsDottedServerPath", On(PathText::IsDottedServerPath)}, {"GetDriveRoot", On(PathText::GetDriveRoot)},
        {"GetUncRelativePart", On(PathText::GetUncRelativePart)}, {"GetUncRoot", On(PathText::GetUncRoot)},
        {"CombinePath", [](auto& base, auto& path) { return PathText::CombinePath(base, path).Joined(); }},
        {"ReplaceExtension", [](auto& path, auto& with) { return PathText::ReplaceExtension(path, with).Joined(); }},
        {"IsSubPath", [](auto& path, auto& parent) { return YesIf(PathText::HoldsPath(path, parent)); }},
        {"GetRelativePath", [](auto& path, auto& base) {
            return PathText::HoldsPath(path, base) ? std::wstring(PathText::BelowBase(path, base.size())) : path; }},
        {"MakeLongPath", [](auto& path, auto&) {
            return PathText::NeedsLongPathPrefix(path) ? PathText::AddLongPathPrefix(path).Joined() : path; }},
        // clang-format on
    });
}
