// Copying 2,000 files of 4 KB with access for a user, against a bare walk that makes the same calls.
#include <windows.h>
#include <aclapi.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "files/ProfileCreator.h"
#include "siblings/coresv/LoggingService.h"
#include "support/Ratios.h"

namespace {

constexpr int kFolders = 20;
constexpr int kFilesInFolder = 100;

const std::wstring s_folder = (std::filesystem::temp_directory_path() / L"ProfileCopyBench").wstring();
SID s_everyone{SID_REVISION, 1, {SECURITY_WORLD_SID_AUTHORITY}, {SECURITY_WORLD_RID}};

void MakeSource(const std::wstring& source) {
    const std::string bytes(4096, 'x');
    for (int i = 0; i < kFolders; ++i) {
        const std::filesystem::path folder = source + L"\\" + std::to_wstring(i);
        std::filesystem::create_directories(folder);
        for (int j = 0; j < kFilesInFolder; ++j) std::ofstream(folder / std::to_wstring(j)) << bytes;
    }
}

void CopyOurs(const std::wstring& source, const std::wstring& target) {
    CProfileCreator creator;
    CProfileUser user(&s_everyone);
    CString error;
    const CString from = source.c_str();
    const CString to = target.c_str();
    Require(creator.CopyFilesAndFolders(from, to, from, to, user, error, true));
}

// The volume's flags, the descriptor read by two calls, an entry more, and the list written.
void GiveAccessBare(const std::wstring& path) {
    DWORD flags = 0;
    GetVolumeInformationW(path.substr(0, 3).c_str(), nullptr, 0, nullptr, nullptr, &flags, nullptr, 0);
    constexpr SECURITY_INFORMATION kRead = OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;
    DWORD bytes = 0;
    GetFileSecurityW(path.c_str(), kRead, nullptr, 0, &bytes);
    std::vector<BYTE> descriptor(bytes);
    Require(GetFileSecurityW(path.c_str(), kRead, descriptor.data(), bytes, &bytes));
    PACL dacl = nullptr;
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    Require(GetSecurityDescriptorDacl(descriptor.data(), &present, &dacl, &defaulted));
    EXPLICIT_ACCESSW entry{};
    entry.grfAccessPermissions = GENERIC_ALL;
    entry.grfAccessMode = GRANT_ACCESS;
    entry.grfInheritance = SUB_CONTAINERS_AND_OBJECTS_INHERIT;
    entry.Trustee.TrusteeForm = TRUSTEE_IS_SID;
    entry.Trustee.ptstrName = reinterpret_cast<LPWSTR>(&s_everyone);
    PACL added = nullptr;
    Require(SetEntriesInAclW(1, &entry, dacl, &added) == ERROR_SUCCESS);
    SECURITY_DESCRIPTOR absolute;
    InitializeSecurityDescriptor(&absolute, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&absolute, TRUE, added, FALSE);
    Require(SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, &absolute));
    LocalFree(added);
}

void CopyBare(const std::wstring& source, const std::wstring& target) {
    CreateDirectoryExW(target.substr(0, target.rfind(L'\\')).c_str(), target.c_str(), nullptr);
    GiveAccessBare(target);
    SetFileAttributesW(target.c_str(), GetFileAttributesW(source.c_str()));
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW((source + L"\\*").c_str(), &found);
    do {
        const std::wstring name = found.cFileName;
        if (name == L"." || name == L"..") continue;
        const std::wstring from = source + L"\\" + name;
        const std::wstring to = target + L"\\" + name;
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            CopyBare(from, to);
        } else {
            Require(CopyFileW(from.c_str(), to.c_str(), TRUE));
            GiveAccessBare(to);
        }
    } while (FindNextFileW(search, &found));
    FindClose(search);
}

// Into a new folder each time; removing it is not measured.
template <class Copy>
Work IntoNewFolder(Copy copy) {
    return [copy] {
        const std::wstring target = s_folder + L"\\target";
        const double seconds = SecondsOf([&] { copy(s_folder + L"\\source", target); });
        std::filesystem::remove_all(target);
        return seconds;
    };
}

}  // namespace

int wmain() {
    MakeSource(s_folder + L"\\source");
    // A host's log that keeps errors: what the default one costs depends on who listens.
    Logger().SetSink([](LogLevel level, const wchar_t*) { Require(level != LogLevel::Error); });
    Ratios ratios;
    ratios.Compare("profile copy, 2,000 files of 4 KB", 1.15, IntoNewFolder(CopyOurs), IntoNewFolder(CopyBare), 5);
    std::filesystem::remove_all(s_folder);
    ratios.Print();
    return 0;
}
