#include "files/Junctions.h"

#include <sddl.h>
#include <winioctl.h>

#include <algorithm>

#include "files/FileFindEx.h"
#include "files/JunctionBuffer.h"
#include "files/LongPathFile.h"
#include "files/LongPathPrefix.h"
#include "files/PathHelper.h"
#include "files/PathView.h"
#include "helpers/LocalMemory.h"
#include "helpers/UniqueHandle.h"
#include "registry/ProcessPrivilege.h"
#include "registry/WindowsVersion.h"

namespace {

constexpr DWORD kSetReparsePoint = 0x900A4;
constexpr DWORD kGetReparsePoint = 0x900A8;
constexpr DWORD kDeleteReparsePoint = 0x900AC;

UniqueHandle Open(const CString& path, bool forWriting) {
    return MakeUniqueHandle(OpenJunction(path, forWriting));
}

// cppcheck-suppress passedByValue ; DeviceIoControl takes no constant data
bool Control(const UniqueHandle& link, DWORD code, std::vector<std::byte> bytes) {
    DWORD unused = 0;
    return DeviceIoControl(link.get(), code, bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, 0, &unused,
                           nullptr) != FALSE;
}

bool IsEmptyDirectory(const CString& path) {
    CFileFindEx search;
    for (BOOL more = search.FindFile(CPathHelper::CombinePath(path, L"*")); more;) {
        more = search.FindNextFile();
        if (!search.IsDots()) return false;
    }
    return true;
}

// The right that everyone is denied is the one to create a child, which for a folder is the one to list it: it keeps
// everybody out of what will be a link. Whoever opens the link itself needs the privileges for that.
bool CreateGuardedDirectory(const CString& path) {
    constexpr LPCWSTR kAccess = L"D:(D;;CC;;;WD)(A;OICIID;FA;;;SY)(A;OICIID;FA;;;BA)";
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(kAccess, SDDL_REVISION_1, &descriptor, nullptr)) {
        return false;
    }
    const LocalMemory<void> owner(descriptor);
    SECURITY_ATTRIBUTES security{sizeof(security), descriptor, FALSE};
    return CreateDirectoryW(path, &security) != FALSE;
}

bool AddAttribute(const CString& path, DWORD attribute) {
    const DWORD attributes = GetJunctionAttributes(path);
    return attributes != INVALID_FILE_ATTRIBUTES && SetJunctionAttributes(path, attributes | attribute);
}

bool HasAttribute(const CString& path, DWORD attribute) {
    const DWORD attributes = GetJunctionAttributes(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & attribute) != 0;
}

}  // namespace

HANDLE OpenJunction(const CString& path, bool forWriting) {
    const ScopedBackupPrivileges privileges;
    return LongPath::CreateFile(path, GENERIC_READ | (forWriting ? GENERIC_WRITE : 0), 0, nullptr, OPEN_EXISTING,
                                FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_BACKUP_SEMANTICS);
}

bool IsJunction(const CString& path) {
    constexpr DWORD kBoth = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    const DWORD attributes = LongPath::GetFileAttributes(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & kBoth) == kBoth;
}

bool PrepareJunctionDirectory(const CString& path) {
    if (LongPath::IsRefused(path)) return false;
    const DWORD attributes = LongPath::GetFileAttributes(path);
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return IsEmptyDirectory(path);
    }
    const CString usable = LongPath::ForSystemCall(path);
    if (CWindowsVersion::IsWindows7OrLater()) return CreateGuardedDirectory(usable);
    return CreateDirectoryW(usable, nullptr) != FALSE;
}

bool CreateJunction(const CString& path, const CString& linkTarget) {
    if (LongPath::IsRefused(linkTarget)) return false;
    const auto bytes = Junction::Encode(ViewOf(linkTarget));
    if (!bytes) {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return false;
    }
    const ScopedBackupPrivileges privileges;
    if (!PrepareJunctionDirectory(path)) return false;
    const UniqueHandle link = Open(path, true);
    return link && Control(link, kSetReparsePoint, *bytes);
}

bool DeleteJunction(const CString& path, bool removeDirectory) {
    if (!IsJunction(path)) return false;
    const ScopedBackupPrivileges privileges;
    {
        const UniqueHandle link = Open(path, true);
        if (!link || !Control(link, kDeleteReparsePoint, Junction::EncodeRemoval())) return false;
    }
    return !removeDirectory || RemoveDirectoryW(LongPath::ForSystemCall(path));
}

CString GetJunctionTarget(const CString& path) {
    if (!IsJunction(path)) return path;
    const ScopedBackupPrivileges privileges;
    const UniqueHandle link = Open(path, false);
    if (!link) return {};
    std::vector<std::byte> bytes(Junction::kBufferBytes);
    DWORD got = 0;
    if (!DeviceIoControl(link.get(), kGetReparsePoint, nullptr, 0, bytes.data(), static_cast<DWORD>(bytes.size()), &got,
                         nullptr)) {
        return {};
    }
    const std::wstring target = Junction::Decode(std::span(bytes).first(std::min<std::size_t>(got, bytes.size())));
    if (target.empty()) {
        SetLastError(ERROR_INVALID_REPARSE_DATA);
        return {};
    }
    const bool isPrefixed =
        ViewOf(path).size() > PathText::kLongPathPrefix.size() && PathText::HasLongPathPrefix(ViewOf(path));
    return isPrefixed ? CPathHelper::MakeLongPath(TextOf(target)) : TextOf(target);
}

DWORD GetJunctionAttributes(const CString& path) {
    if (!IsJunction(path)) return INVALID_FILE_ATTRIBUTES;
    const ScopedBackupPrivileges privileges;
    const UniqueHandle link = Open(path, false);
    BY_HANDLE_FILE_INFORMATION info{};
    if (!link || !GetFileInformationByHandle(link.get(), &info)) return INVALID_FILE_ATTRIBUTES;
    return info.dwFileAttributes;
}

bool IsJunctionHidden(const CString& path) {
    return HasAttribute(path, FILE_ATTRIBUTE_HIDDEN);
}

bool IsJunctionSystem(const CString& path) {
    return HasAttribute(path, FILE_ATTRIBUTE_SYSTEM);
}

bool SetJunctionAttributes(const CString& path, DWORD attributes) {
    if (!IsJunction(path)) return false;
    const ScopedBackupPrivileges privileges;
    const UniqueHandle link = Open(path, true);
    FILE_BASIC_INFO info{};
    if (!link || !GetFileInformationByHandleEx(link.get(), FileBasicInfo, &info, sizeof(info))) return false;
    info.FileAttributes = attributes;
    return SetFileInformationByHandle(link.get(), FileBasicInfo, &info, sizeof(info)) == TRUE;
}

bool HideJunction(const CString& path) {
    return AddAttribute(path, FILE_ATTRIBUTE_HIDDEN);
}

bool MarkJunctionSystem(const CString& path) {
    return AddAttribute(path, FILE_ATTRIBUTE_SYSTEM);
}
