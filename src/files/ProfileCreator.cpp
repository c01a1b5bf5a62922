#include "files/ProfileCreator.h"

#include <sddl.h>

#include "files/FileAcl.h"
#include "files/FileFindEx.h"
#include "files/Junctions.h"
#include "files/LongPathFile.h"
#include "files/PathHelper.h"
#include "helpers/LocalMemory.h"
#include "helpers/ResourceString.h"
#include "registry/WindowsVersion.h"
#include "siblings/coresv/LogMethodEntryExit.h"

namespace {

constexpr int kShortestPath = 4;

// Sets the words for the user and logs them.
template <class... Arguments>
bool Fail(CString& errorText, LPCWSTR format, Arguments... arguments) {
    errorText.Format(format, arguments...);
    Logger().LogErrorMessage(errorText);
    return false;
}

bool FailJunction(CString& errorText, const CString& target, const CString& linkTarget, DWORD error) {
    CString message;
    message.Format(LoadResourceString(kJunctionNotCreatedText), target.GetString(), linkTarget.GetString(), error);
    Logger().LogErrorMessage(message);
    errorText += message;
    SetLastError(error);
    return false;
}

// Like its parent, whose attributes the directory takes. The plain paths come first, because they may be relative.
bool CreateLikeParent(const CString& target) {
    if (LongPath::IsRefused(target)) return false;
    const CString parent = target.Left(target.ReverseFind(L'\\'));
    if (CreateDirectoryExW(parent, target, nullptr)) return true;
    if (target.Left(4) == L"\\\\?\\") return false;
    return CreateDirectoryExW(CPathHelper::MakeLongPath(parent), CPathHelper::MakeLongPath(target), nullptr) != FALSE;
}

bool EnsureDirectory(const CString& target, CString& errorText) {
    Logger().LogVerboseMessageFormat(L"Creating the directory '%s'", target.GetString());
    if (CreateLikeParent(target)) return true;
    const DWORD error = GetLastError();
    if (error == ERROR_ALREADY_EXISTS) return true;
    return Fail(errorText, L"Unable to create the directory (%s) Error:%u", target.GetString(), error);
}

// In both an entry that cannot be added or written leaves the access as it was; the copy goes on.
void GiveAccessToDirectory(const CString& path, CProfileUser& user) {
    CFileAcl acl(path);
    Logger().LogTraceMessageFormat(L"Adding a full access ACE to '%s' for the SID '%s'", path.GetString(),
                                   user.GetSidText().GetString());
    acl.AddFullAccessEntryToAcl(user.GetSid());
    Logger().LogTraceMessage(L"Committing the ACL changes");
    acl.Commit();
}

void GiveAccessToFile(const CString& path, CProfileUser& user) {
    Logger().LogTraceMessageFormat(L"Adding a full access ACE for '%s' to '%s'", user.GetSidText().GetString(),
                                   path.GetString());
    CFileAcl acl(path);
    acl.AddFullAccessEntryToAcl(user.GetSid());
    acl.Commit();
    Logger().LogTraceMessageFormat(L"The ACL for '%s' was successfully updated", path.GetString());
}

bool IsDirectory(DWORD attributes) {
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// Only the attributes that every system lets a junction have.
void CopyJunctionAttributes(const CString& source, const CString& target) {
    if (CWindowsVersion::IsWindows7OrLater() && IsJunctionSystem(source)) {
        Logger().LogTraceMessageFormat(
            L"The source junction point (%s) has the system flag set, setting the target junction point (%s)",
            source.GetString(), target.GetString());
        MarkJunctionSystem(target);
    }
    if (IsJunctionHidden(source)) {
        Logger().LogTraceMessageFormat(
            L"The source junction point (%s) is hidden, hiding the target junction point (%s)", source.GetString(),
            target.GetString());
        HideJunction(target);
    }
}

}  // namespace

CProfileUser::CProfileUser(PSID sid) : m_sid(GetLengthSid(sid)) {
    CopySid(static_cast<DWORD>(m_sid.size()), m_sid.data(), sid);
}

const CString& CProfileUser::GetSidText() {
    LPWSTR text = nullptr;
    if (m_sidText.IsEmpty() && ConvertSidToStringSidW(m_sid.data(), &text)) {
        const LocalMemory<WCHAR> memory(text);
        m_sidText = text;
    }
    return m_sidText;
}

void CProfileCreator::OnCopying(const CString&, const CString&) {}

bool CProfileCreator::CopyFilesAndFolders(const CString& source, const CString& target, const CString& originalSource,
                                          const CString& originalTarget, CProfileUser& user, CString& errorText,
                                          [[maybe_unused]] bool recursive) {
    return CopyTree({originalSource, originalTarget, user, errorText}, source, target);
}

bool CProfileCreator::CopyTree(const Copy& copy, const CString& source, const CString& target) {
    const CLogMethodEntryExit log(L"CProfileCreator::CopyFilesAndFolders");
    if (source.GetLength() < kShortestPath || target.GetLength() < kShortestPath) {
        return Fail(copy.errorText,
                    L"One of the following paths is smaller than 4 characters and cannot be processed by "
                    L"CopyFilesAndFolders: Source: %s, Target: %s",
                    source.GetString(), target.GetString());
    }
    Logger().LogTraceMessageFormat(
        L"Recursive call. originalSource = '%s', originalTarget = '%s', csSourcePath = '%s', csTargetPath = '%s'",
        copy.originalSource.GetString(), copy.originalTarget.GetString(), source.GetString(), target.GetString());
    OnCopying(source, target);
    if (!EnsureDirectory(target, copy.errorText)) return false;
    GiveAccessToDirectory(target, copy.user);

    const DWORD attributes = LongPath::GetFileAttributes(source);
    if (!IsDirectory(attributes)) {
        return Fail(copy.errorText, L"The source directory (%s) does not exist.", source.GetString());
    }
    if (!LongPath::SetFileAttributes(target, attributes)) {
        copy.errorText.Format(L"Unable to set attributes on the new folder '%s' due to %u", target.GetString(),
                              GetLastError());
    }
    return CopyEntries(copy, source, target);
}

bool CProfileCreator::CopyEntries(const Copy& copy, const CString& source, const CString& target) {
    CFileFindEx search;
    BOOL more = search.FindFile(CPathHelper::CombinePath(source, L"*"));
    Logger().LogVerboseMessage(
        L"Copying files and directories from the template profile directory to the target profile directory");
    while (more) {
        more = search.FindNextFile();
        if (search.IsDots()) continue;
        const CString sourcePath = search.GetFilePath();
        const CString targetPath = CPathHelper::CombinePath(target, search.GetFileName());
        Logger().LogTraceMessageFormat(L"Source: '%s', Target: '%s'", sourcePath.GetString(), targetPath.GetString());
        const bool done = search.IsDirectory() ? CopyDirectoryEntry(copy, sourcePath, targetPath)
                                               : CopyFileEntry(copy, sourcePath, targetPath);
        if (!done) return false;
    }
    return true;
}

bool CProfileCreator::CopyDirectoryEntry(const Copy& copy, const CString& source, const CString& target) {
    Logger().LogTraceMessageFormat(L"The source (%s) is a directory", source.GetString());
    if (IsJunction(source)) return CopyJunction(copy, source, target);
    Logger().LogTraceMessageFormat(L"Processing a regular directory (%s)", source.GetString());
    if (CopyTree(copy, source, target)) return true;
    const DWORD error = GetLastError();
    Logger().LogErrorMessageFormat(L"The directory '%s' could not be copied to '%s'. Possible error code is 0x%x",
                                   source.GetString(), target.GetString(), error);
    return false;
}

bool CProfileCreator::CopyFileEntry(const Copy& copy, const CString& source, const CString& target) {
    Logger().LogTraceMessageFormat(L"Processing a file (%s)", source.GetString());
    OnCopying(source, target);
    if (!LongPath::CopyFile(source, target, true)) {
        const DWORD error = GetLastError();
        if (error != ERROR_FILE_EXISTS) {
            copy.errorText += LoadResourceString(kFileNotCopiedText);
            Logger().LogErrorMessageFormat(L"The file '%s' could not be copied to '%s'. Possible error code: 0x%x",
                                           source.GetString(), target.GetString(), error);
            SetLastError(error);  // the callers log it, too
            return false;
        }
        Logger().LogInformationalMessageFormat(
            L"Skipping the file '%s' (target = '%s') since the target file already exists", source.GetString(),
            target.GetString());
    }
    GiveAccessToFile(target, copy.user);
    return true;
}

bool CProfileCreator::CopyJunction(const Copy& copy, const CString& source, const CString& target) {
    OnCopying(source, target);
    CString linkTarget = GetJunctionTarget(source);
    const DWORD readError = GetLastError();
    Logger().LogTraceMessageFormat(L"The source (%s) is a directory and a junction point with the target path '%s'",
                                   source.GetString(), linkTarget.GetString());
    // Without a target the link would lead nowhere.
    if (linkTarget.IsEmpty()) return FailJunction(copy.errorText, target, linkTarget, readError);
    linkTarget.Replace(copy.originalSource, copy.originalTarget);
    Logger().LogTraceMessageFormat(L"The target path for the new junction point is '%s'", linkTarget.GetString());
    if (!CreateJunction(target, linkTarget)) return FailJunction(copy.errorText, target, linkTarget, GetLastError());
    Logger().LogTraceMessage(L"Successfully created the junction point");
    CopyJunctionAttributes(source, target);
    return true;
}
