// Path operations on the string class. Those of the first group are pure text: see PathRoots.h, PathParts.h and
// LongPathPrefix.h, which say what each answers for odd paths. An empty result means "none". The others ask the system;
// where they work on files, paths may have any length and drive C is that of the target system, unless they say so; a
// path with a zero inside is refused with ERROR_INVALID_NAME.
//
//     const CString file = CPathHelper::CombinePath(CPathHelper::GetParentPath(path), L"Local\\list.txt");
//     if (!CPathHelper::FileExists(file)) CPathHelper::CreateDirectoryTree(CPathHelper::GetParentPath(file));
#pragma once

#include <afx.h>
#include <afxcoll.h>

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
    // Of each path the first 260 characters count.
    static bool IsSameRoot(const CString& first, const CString& second);

    // Variables in the path are expanded first. Both are false for what cannot be reached.
    static bool FileExists(const CString& path);
    static bool DirectoryExists(const CString& path);

    // The short or the long names of all elements of an existing path; GetLongPath takes a drive alone for its root.
    // They throw a CFileException with the cause genericException and the system's error. GetLongPath never answers
    // with the long-path prefix, GetShortPath keeps one, also one that the length made necessary.
    static CString GetShortPath(const CString& path);
    static CString GetLongPath(const CString& path);

    // A folder by its CSIDL number, of at most 259 characters, and a path below it.
    static CString GetSpecialFolderPath(int csidl);
    static CString GetSpecialFolderFile(int csidl, LPCWSTR relative);
    // With a backslash at its end.
    static CString GetTempDirectory();
    // Creates an empty file of a new name there; its removal is up to the caller.
    static CString GetTempFile();

    // Adds the roots of all fixed, removable and network drives. False when the system gives none.
    static bool EnumerateDrives(CStringList& drives);
    // Whether the first letter, in either case, is that of one of those drives.
    static bool IsValidDrive(const CString& root);
    // The network path of one on a mapped drive, from the mappings that the registry keeps for the current user, or for
    // the user whose SID is given. Empty when the drive is not mapped.
    static CString MapNetworkPath(const CString& path, const CString& sid);

    // Creates the directory with all that are missing above it. True when it is there in the end. False for a root that
    // is missing; failures that are not a matter of roots are logged, with what was created so far left in place, and
    // leave the last error.
    static bool CreateDirectoryTree(const CString& path);
    // Makes `destination` a directory, copies `original` onto it and deletes `original`, whatever became of the copy;
    // nothing is deleted when the directory cannot be made. For callers who know that this is what they want.
    static void MoveFile(const CString& original, const CString& destination);
    // Drive C stays. Without `recursive` the directory must be empty; with it the path goes to the shell as it is,
    // which takes neither long paths nor the prefix.
    static bool DeleteDirectory(const CString& path, bool recursive);
};
