#include "profiles/ShellFolders.h"

#include "files/SystemTokens.h"
#include "helpers/AsciiCase.h"
#include "profiles/PathTokens.h"

namespace {

constexpr wchar_t kAdministrativeTools[] = L"Administrative Tools";

constexpr std::array<const wchar_t*, kUserPathCount> kNames = {
    L"profile",
    L"localprofile",
    L"Desktop",
    L"Personal",
    L"My Pictures",
    L"My Video",
    L"My Music",
    L"Cache",
    L"Programs",
    L"Favorites",
    L"History",
    L"Templates",
    L"Cookies",
    L"AppData",
    L"Local AppData",
    L"Start Menu",
    L"Recent",
    L"Startup",
    L"{56784854-C6CB-462B-8169-88E350ACB882}",
    L"{BFB9D5E0-C6A9-404C-B2B2-AE6DB6AF4968}",
    L"{7D1D3A04-DEBB-4115-95CF-2F29DA2920DA}",
};

constexpr const wchar_t* Name(UserPath path) {
    // cppcheck-suppress CastIntegerToAddressAtReturn ; the array's elements are texts
    return kNames[static_cast<std::size_t>(path)];
}

constexpr std::array<ClassicFolder, 14> kClassicFolders = {{
    {Name(UserPath::Contacts), L"\\Contacts"},
    {kAdministrativeTools, L"\\Start Menu\\Programs\\Administrative Tools"},
    {Name(UserPath::Searches), L"\\Searches"},
    {Name(UserPath::Links), L"\\Links"},
    {Name(UserPath::AppData), L"\\Application Data"},
    {Name(UserPath::Desktop), L"\\Desktop"},
    {Name(UserPath::Favorites), L"\\Favorites"},
    {Name(UserPath::MyMusic), L"\\My Documents\\My Music"},
    {Name(UserPath::MyPictures), L"\\My Documents\\My Pictures"},
    {Name(UserPath::MyVideo), L"\\My Documents\\My Video"},
    {Name(UserPath::Personal), L"\\My Documents"},
    {Name(UserPath::Programs), L"\\Start Menu\\Programs"},
    {Name(UserPath::StartMenu), L"\\Start Menu"},
    {Name(UserPath::Startup), L"\\Start Menu\\Programs\\Startup"},
}};

constexpr RedirectedFolder Whole(UserPath path) {
    return {Name(path), path, L""};
}

constexpr std::array<RedirectedFolder, 14> kRedirectedFolders = {{
    Whole(UserPath::AppData),
    Whole(UserPath::Desktop),
    Whole(UserPath::MyPictures),
    Whole(UserPath::Personal),
    Whole(UserPath::Programs),
    Whole(UserPath::StartMenu),
    Whole(UserPath::Startup),
    Whole(UserPath::Contacts),
    {kAdministrativeTools, UserPath::Programs, L"\\Administrative Tools"},
    Whole(UserPath::Searches),
    Whole(UserPath::Links),
    Whole(UserPath::Favorites),
    Whole(UserPath::MyMusic),
    Whole(UserPath::MyVideo),
}};

constexpr std::array<UserPath, 11> kListedFolders = {
    UserPath::AppData,   UserPath::Contacts,  UserPath::Desktop, UserPath::Personal,
    UserPath::Favorites, UserPath::Links,     UserPath::MyMusic, UserPath::MyPictures,
    UserPath::Searches,  UserPath::StartMenu, UserPath::MyVideo,
};

// Programs and Favorites stand here twice. The second place is reached only when the first is filled, and then it is
// filled as well.
constexpr std::array<UserPath, 20> kUpdateOrder = {
    UserPath::Profile,  UserPath::LocalProfile, UserPath::AppData,   UserPath::Desktop,      UserPath::MyPictures,
    UserPath::Personal, UserPath::Programs,     UserPath::StartMenu, UserPath::Startup,      UserPath::Favorites,
    UserPath::MyMusic,  UserPath::MyVideo,      UserPath::Cache,     UserPath::Programs,     UserPath::Favorites,
    UserPath::History,  UserPath::Templates,    UserPath::Cookies,   UserPath::LocalAppData, UserPath::Recent,
};

}  // namespace

const wchar_t* NameOf(UserPath path) {
    return Name(path);
}

const std::array<ClassicFolder, 14>& ClassicFolders() {
    return kClassicFolders;
}

const std::array<RedirectedFolder, 14>& RedirectedFolders() {
    return kRedirectedFolders;
}

const std::array<UserPath, 11>& ListedFolders() {
    return kListedFolders;
}

std::optional<UserPath> PathToUpdate(std::wstring_view name, const std::bitset<kUserPathCount>& empty) {
    for (const UserPath path : kUpdateOrder) {
        if (empty[static_cast<std::size_t>(path)] && EqualIgnoringAsciiCase(name, NameOf(path))) return path;
    }
    return std::nullopt;
}

std::wstring LocalFolder(std::wstring_view text, std::wstring_view localProfile) {
    if (localProfile.empty()) return std::wstring(text);
    return ReplaceEvery(text, PathTokens::kUserProfile, localProfile);
}

std::wstring RoamingFolder(std::wstring_view text, std::wstring_view roamingProfile, std::wstring_view localProfile,
                           std::wstring_view localAppData) {
    std::wstring local = LocalFolder(text, localProfile);
    // A Local AppData path that is not known is held by every text: such a user's folders all stay local.
    if (local.find(localAppData) != local.npos) return local;
    return ReplaceEvery(ReplaceEvery(text, PathTokens::kUserProfile, roamingProfile), localProfile, roamingProfile);
}
