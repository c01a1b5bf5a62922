// Path operations on the string class. Those of the first group are pure text: see PathRoots.h, PathParts.h and
// LongPathPrefix.h, which say what each answers for odd paths. An empty result means "none".
//
//     const CString file = CPathHelper::CombinePath(CPathHelper::GetParentPath(path), L"Local\\list.txt");
//     if (!CPathHelper::FileExists(file)) CPathHelper::CreateDirectoryTree(CPathHelper::GetParentPath(file));
#pragma once

#include <afx.h>

// The system's headers make macros of some of the names here, which is harmless as long as everybody sees the macro.
#include <commdlg.h>

class CPathHelper {
public:
    static CString GetDriveRoot(const CString& path);
    static CString GetUncRelativePart(const CString& path);
    static CString GetUncRoot(const CString& path);
    // The path below `base` if IsSubPath(base, path), else the whole path.
    static CString GetRelativePath(const CString& path, const CString& base);
    static CString GetParentPath(const CString& path);
    static CString GetFileName(const CString& path);
    static CString GetExtension(const CString& path);
    static CString GetFileTitle(const CString& path);
    // A null `relative` gives `base` as it is.
    static CString CombinePath(const CString& base, LPCWSTR relative);
    // A null `extension` takes the old one away.
    static CString ReplaceExtension(const CString& path, LPCWSTR extension);
    static CString AbbreviatePath(const CString& path);
    static CString AddLongPathPrefix(const CString& path);
    static CString RemoveLongPathPrefix(const CString& path);
    // As AddLongPathPrefix, for paths of more than 247 characters only.
    static CString MakeLongPath(const CString& path);

    // Whether `parent` occurs anywhere in `path`, ignoring case, up to the end of an element.
    static bool IsSubPath(const CString& parent, const CString& path);
    static bool IsRootPath(const CString& path);
    static bool IsDrivePath(const CString& path);
    static bool IsUncPath(const CString& path);
    static bool IsDottedServerPath(const CString& path);
};
