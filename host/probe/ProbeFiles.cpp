// Files and folders, in the probe's own folder.
#include <afx.h>
#include <aclapi.h>
#include <sddl.h>

#include <memory>
#include <stdexcept>
#include <sys/stat.h>

#include "ProbeRows.h"
#include "files/Junctions.h"
#include "helpers/LocalMemory.h"
#include "helpers/UniqueHandle.h"

namespace {

UniqueHandle MakeFile(const std::wstring& path, DWORD access = GENERIC_WRITE,
                      DWORD attributes = FILE_ATTRIBUTE_NORMAL) {
    auto file = MakeUniqueHandle(CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                             OPEN_ALWAYS, attributes, nullptr));
    if (!file) throw std::runtime_error("a file cannot be made");
    return file;
}

std::string Junction(const ProbePlace& place) {
    const std::wstring target = place.File(L"target");
    CreateDirectoryW(target.c_str(), nullptr);
    if (!CreateJunction(place.File(L"link").c_str(), target.c_str())) return YesOrStatus(false);
    MakeFile(target + L"\\inside");
    const bool isSeen = GetFileAttributesW(place.File(L"link\\inside").c_str()) != INVALID_FILE_ATTRIBUTES;
    const bool isRead = GetJunctionTarget(place.File(L"link").c_str()) == target.c_str();
    DeleteJunction(place.File(L"link").c_str(), true);
    return isSeen && isRead ? "yes" : "yes, but it leads elsewhere";
}

std::string BareDrive(const ProbePlace& place) {
    SetLastError(0);
    const std::wstring drive = L"\\\\?\\" + place.folder.substr(0, 2);
    return YesOrStatus(GetFileAttributesW(drive.c_str()) != INVALID_FILE_ATTRIBUTES);
}

std::string TimeByReader(const ProbePlace& place) {
    MakeFile(place.File(L"time"));
    const UniqueHandle reader = MakeFile(place.File(L"time"), GENERIC_READ);
    const FILETIME time{1, 30000000};
    return YesOrStatus(SetFileTime(reader.get(), nullptr, nullptr, &time) != FALSE);
}

std::string LongNameWithPrefix(const ProbePlace& place) {
    MakeFile(place.File(L"a rather long name.text"));
    wchar_t shortName[MAX_PATH];
    const std::wstring path = L"\\\\?\\" + place.File(L"a rather long name.text");
    if (GetShortPathNameW(path.c_str(), shortName, MAX_PATH) == 0) throw std::runtime_error("there are no short names");
    wchar_t longName[MAX_PATH];
    GetLongPathNameW(shortName, longName, MAX_PATH);
    return longName == path ? "looked up" : "as it was";
}

std::string AccessList(const ProbePlace& place) {
    const std::wstring path = place.File(L"access");
    MakeFile(path);
    PSECURITY_DESCRIPTOR made = nullptr;
    // More than owner, group and everyone can say.
    ConvertStringSecurityDescriptorToSecurityDescriptorW(
        L"D:P(A;;FR;;;WD)(A;;FR;;;S-1-5-21-1-2-3-1001)(A;;FX;;;S-1-5-21-1-2-3-1002)(A;;0x80;;;BG)(A;;FA;;;OW)",
        SDDL_REVISION_1, &made, nullptr);
    const LocalMemory<void> owner(made);
    SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, made);
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR read = nullptr;
    GetNamedSecurityInfoW(path.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &list, nullptr,
                          &read);
    const LocalMemory<void> readOwner(read);
    return list != nullptr && list->AceCount == 5 ? "kept" : "changed";
}

std::string CopyOntoHidden(const ProbePlace& place) {
    MakeFile(place.File(L"source"));
    MakeFile(place.File(L"hidden"), GENERIC_WRITE, FILE_ATTRIBUTE_HIDDEN);
    SetFileAttributesW(place.File(L"hidden").c_str(), FILE_ATTRIBUTE_HIDDEN);
    return YesOrStatus(CopyFileW(place.File(L"source").c_str(), place.File(L"hidden").c_str(), FALSE) != FALSE);
}

std::string FolderWithBackslash(const ProbePlace& place) {
    struct _stat64 status{};
    return _wstat64((place.folder + L"\\").c_str(), &status) == 0 ? "found" : "refused";
}

std::string LongPath(const ProbePlace& place) {
    std::wstring folder = place.folder;
    while (folder.size() < 260) {
        folder += L"\\" + std::wstring(50, L'f');
        CreateDirectoryW((L"\\\\?\\" + folder).c_str(), nullptr);
    }
    return GetFileAttributesW(folder.c_str()) != INVALID_FILE_ATTRIBUTES ? "taken" : "refused";
}

constexpr ProbeRow kRows[] = {
    {24, "junctions are made and lead to their target", Junction, "yes", "no (50)"},
    {28, "a bare drive behind the long-path prefix", BareDrive, nullptr, nullptr},
    {29, "a file's time set by a reader", TimeByReader, "no (5)", "yes"},
    {30, "a short name behind the long-path prefix", LongNameWithPrefix, "looked up", "as it was"},
    {31, "an access list of five entries", AccessList, "kept", "changed"},
    {33, "a copy onto a hidden file", CopyOntoHidden, "no (5)", "yes"},
    {34, "_wstat64 of a folder with a backslash", FolderWithBackslash, "refused", "refused"},
    {36, "a path of more than 260 without the prefix", LongPath, nullptr, nullptr},
};

}  // namespace

std::span<const ProbeRow> FileRows() {
    return kRows;
}
