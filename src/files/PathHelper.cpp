#include "files/PathHelper.h"

#include "files/LongPathPrefix.h"
#include "files/PathParts.h"
#include "files/PathRoots.h"
#include "files/PathView.h"

CString CPathHelper::GetDriveRoot(const CString& path) {
    return TextOf(PathText::GetDriveRoot(ViewOf(path)));
}

CString CPathHelper::GetUncRelativePart(const CString& path) {
    return TextOf(PathText::GetUncRelativePart(ViewOf(path)));
}

CString CPathHelper::GetUncRoot(const CString& path) {
    return TextOf(PathText::GetUncRoot(ViewOf(path)));
}

CString CPathHelper::GetRelativePath(const CString& path, const CString& base) {
    if (!IsSubPath(base, path)) return path;
    return TextOf(PathText::BelowBase(ViewOf(path), ViewOf(base).size()));
}

CString CPathHelper::GetParentPath(const CString& path) {
    return TextOf(PathText::GetParentPath(ViewOf(path)));
}

CString CPathHelper::GetFileName(const CString& path) {
    return TextOf(PathText::GetFileName(ViewOf(path)));
}

CString CPathHelper::GetExtension(const CString& path) {
    return TextOf(PathText::GetExtension(ViewOf(path)));
}

CString CPathHelper::GetFileTitle(const CString& path) {
    return TextOf(PathText::GetNameWithoutExtension(ViewOf(path)));
}

CString CPathHelper::CombinePath(const CString& base, LPCWSTR relative) {
    if (relative == nullptr) return base;
    return TextOf(PathText::CombinePath(ViewOf(base), relative));
}

CString CPathHelper::ReplaceExtension(const CString& path, LPCWSTR extension) {
    return TextOf(PathText::ReplaceExtension(ViewOf(path), ViewOf(extension)));
}

CString CPathHelper::AbbreviatePath(const CString& path) {
    return TextOf(PathText::AbbreviatePath(ViewOf(path)));
}

CString CPathHelper::AddLongPathPrefix(const CString& path) {
    return TextOf(PathText::AddLongPathPrefix(ViewOf(path)));
}

CString CPathHelper::RemoveLongPathPrefix(const CString& path) {
    return TextOf(PathText::RemoveLongPathPrefix(ViewOf(path)));
}

CString CPathHelper::MakeLongPath(const CString& path) {
    return PathText::NeedsLongPathPrefix(ViewOf(path)) ? AddLongPathPrefix(path) : path;
}

bool CPathHelper::IsSubPath(const CString& parent, const CString& path) {
    CString foldedPath = path;
    CString foldedParent = parent;
    return PathText::HoldsPath(ViewOf(foldedPath.MakeUpper()), ViewOf(foldedParent.MakeUpper()));
}

bool CPathHelper::IsRootPath(const CString& path) {
    return PathText::IsRootPath(ViewOf(path));
}

bool CPathHelper::IsDrivePath(const CString& path) {
    return PathText::IsDrivePath(ViewOf(path));
}

bool CPathHelper::IsUncPath(const CString& path) {
    return PathText::IsUncPath(ViewOf(path));
}

bool CPathHelper::IsDottedServerPath(const CString& path) {
    return PathText::IsDottedServerPath(ViewOf(path));
}
