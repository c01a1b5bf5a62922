// The input is a text, or two with a line break between them.
#include "files/LongPathPrefix.h"
#include "files/PathParts.h"
#include "files/PathRoots.h"
#include "fuzz/FuzzInput.h"
#include "helpers/AsciiCase.h"

namespace {

using namespace PathText;

void CheckPath(std::wstring_view path) {
    Require(!(IsDrivePath(path) && IsUncPath(path)));
    Require(!IsDottedServerPath(path) || path.starts_with(L"\\\\"));
    Require(GetDriveRoot(path).size() == 0 || GetDriveRoot(path).size() == 3);
    Require(path.ends_with(GetUncRelativePart(path)) && path.starts_with(GetUncRoot(path)));
    const auto name = GetFileName(path);
    Require(path.ends_with(name) && path.ends_with(GetExtension(path)));
    Require(std::wstring(GetNameWithoutExtension(path)).append(GetExtension(name)) == name);
    Require(HoldsPath(path, path) && path.starts_with(AbbreviatePath(path).parts[0]));
    for (std::wstring parent(path); !parent.empty();) {
        const std::wstring above = GetParentPath(parent).Joined();
        Require(above.size() < parent.size());
        parent = above;
    }
    const std::wstring prefixed = AddLongPathPrefix(path).Joined();
    Require(HasLongPathPrefix(prefixed) && !NeedsLongPathPrefix(prefixed));
    if (HasLongPathPrefix(path) || StartsWithIgnoringAsciiCase(path, L"UNC\\")) return;
    const std::wstring whole = std::wstring(path).append(IsBareDrive(path) ? L"\\" : L"");
    Require(RemoveLongPathPrefix(prefixed).Joined() == whole);
}

void CheckPair(std::wstring_view first, std::wstring_view second) {
    const std::wstring combined = CombinePath(first, second).Joined();
    Require(combined.ends_with(second));
    Require(GetFileName(combined).size() <= combined.size());
    Require(ReplaceExtension(first, second).Joined().ends_with(second));
    if (HoldsPath(first, second)) Require(first.ends_with(BelowBase(first, second.size())));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::wstring text = Utf16Units(data, size);
    const auto end = std::min(text.find(L'\n'), text.size());
    const auto first = std::wstring_view(text).substr(0, end);
    const auto second = std::wstring_view(text).substr(std::min(end + 1, text.size()));
    for (const auto path : {first, second}) CheckPath(path);
    CheckPair(first, second);
    CheckPair(second, first);
    return 0;
}
