#include "carry/UserProfile.h"

#include <sddl.h>

#include <vector>

#include "carry/CarryReport.h"
#include "carry/KeyAccess.h"
#include "carry/ValueBuffer.h"
#include "files/LongPathFile.h"
#include "helpers/AsciiCase.h"
#include "helpers/LocalMemory.h"
#include "profiles/ProfilePathHelper.h"
#include "registry/RegistryException.h"

namespace {

constexpr WCHAR kProfileList[] = L"\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList";
constexpr std::wstring_view kSystemDrive = L"%SystemDrive%";

[[noreturn]] void NoSuchUser(const std::wstring& user, DWORD status) {
    throw CarryException(CarryFailure::Failed, "there is no such user", user, status);
}

bool IsSid(const std::wstring& user) {
    return StartsWithIgnoringAsciiCase(user, L"S-1-");
}

bool IsProfileFolder(const std::wstring& folder) {
    return LongPath::FileAccess((folder + L"\\NTUSER.DAT").c_str()) == 0;
}

std::wstring SidOfAccount(const std::wstring& name) {
    DWORD sidBytes = SECURITY_MAX_SID_SIZE;
    std::vector<BYTE> sid(sidBytes);
    WCHAR domain[256];
    DWORD domainChars = 256;
    SID_NAME_USE use{};
    if (!LookupAccountNameW(nullptr, name.c_str(), sid.data(), &sidBytes, domain, &domainChars, &use)) {
        NoSuchUser(name, GetLastError());
    }
    LPWSTR text = nullptr;
    if (!ConvertSidToStringSidW(sid.data(), &text)) NoSuchUser(name, GetLastError());
    const LocalMemory<WCHAR> owner(text);
    return text;
}

std::wstring LocalProfile(const std::wstring& user, const std::wstring& sid) {
    DWORD status = ERROR_FILE_NOT_FOUND;
    try {
        const CString folder = CProfilePathHelper::GetLocalProfilePath(sid.c_str());
        if (!folder.IsEmpty()) return folder.GetString();
    } catch (CRegistryException* problem) {
        status = problem->GetStatus();
        problem->Delete();
    }
    NoSuchUser(user, status);
}

// The folder of one entry in the list of profiles, on the drive of its installation; empty when there is none.
std::wstring OfflineFolder(HKEY list, const std::wstring& sid, WCHAR drive) {
    UniqueKey key;
    ValueBuffer value;
    if (OpenKey(list, sid, KEY_QUERY_VALUE, LinkMode::Follow, key) != ERROR_SUCCESS ||
        value.Query(key.get(), L"ProfileImagePath") != ERROR_SUCCESS) {
        return {};
    }
    std::wstring folder(reinterpret_cast<const WCHAR*>(value.Data().data()), value.Data().size() / sizeof(WCHAR));
    folder.resize(std::min(folder.find(L'\0'), folder.size()));
    if (StartsWithIgnoringAsciiCase(folder, kSystemDrive)) folder.replace(0, kSystemDrive.size(), L"C:");
    if (folder.size() > 1 && folder[1] == L':') folder[0] = drive;
    return folder;
}

bool IsFolderOf(const std::wstring& folder, const std::wstring& user) {
    return FoldKeyCase(folder.substr(folder.rfind(L'\\') + 1)) == FoldKeyCase(user);
}

}  // namespace

UserProfile FindUserProfile(const std::wstring& user) {
    if (IsProfileFolder(user)) return {{}, user};
    const std::wstring sid = IsSid(user) ? user : SidOfAccount(user);
    UniqueKey key;
    if (OpenKey(HKEY_USERS, sid, KEY_READ, LinkMode::Follow, key) == ERROR_SUCCESS) return {sid, {}};
    return {{}, LocalProfile(user, sid)};
}

UserProfile FindOfflineUserProfile(const std::wstring& user, WCHAR drive, const std::wstring& software) {
    if (IsProfileFolder(user)) return {{}, user};
    UniqueKey list;
    const LONG status = OpenKey(HKEY_LOCAL_MACHINE, software + kProfileList, KEY_READ, LinkMode::Follow, list);
    if (status != ERROR_SUCCESS) NoSuchUser(user, static_cast<DWORD>(status));
    if (IsSid(user)) {
        const std::wstring folder = OfflineFolder(list.get(), user, drive);
        if (!folder.empty()) return {{}, folder};
    }
    for (DWORD index = 0;; ++index) {
        WCHAR sid[256];
        DWORD length = 256;
        if (RegEnumKeyExW(list.get(), index, sid, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        const std::wstring folder = OfflineFolder(list.get(), sid, drive);
        if (!folder.empty() && IsFolderOf(folder, user)) return {{}, folder};
    }
    NoSuchUser(user, ERROR_NONE_MAPPED);
}
