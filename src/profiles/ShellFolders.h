// What a user's shell folders are called in the registry, in which orders they are written, and where they lie for a
// user whose profile roams.
#pragma once

#include <array>
#include <bitset>
#include <optional>
#include <string>
#include <string_view>

// A user's paths: the two profile paths, then the shell folders.
enum class UserPath {
    Profile,
    LocalProfile,
    Desktop,
    Personal,
    MyPictures,
    MyVideo,
    MyMusic,
    Cache,
    Programs,
    Favorites,
    History,
    Templates,
    Cookies,
    AppData,
    LocalAppData,
    StartMenu,
    Recent,
    Startup,
    Contacts,
    Links,
    Searches,
};
constexpr std::size_t kUserPathCount = static_cast<std::size_t>(UserPath::Searches) + 1;

// The name of the folder's registry value; "profile" and "localprofile" for the first two, which have none.
const wchar_t* NameOf(UserPath path);

// A value of the classic set, and what stands behind the base path in it.
struct ClassicFolder {
    const wchar_t* name;
    const wchar_t* below;
};
// In the order in which they are written.
const std::array<ClassicFolder, 14>& ClassicFolders();

// A value that a redirection writes: the text of `path`, with `below` behind it.
struct RedirectedFolder {
    const wchar_t* name;
    UserPath path;
    const wchar_t* below;
};
// In the order in which they are written.
const std::array<RedirectedFolder, 14>& RedirectedFolders();

// The folders that a host is offered as a list, in its order.
const std::array<UserPath, 11>& ListedFolders();

// Which path an update by name fills: the first that has the name, in any case, and is empty. None when there is none,
// and for the folders that are named by a GUID.
std::optional<UserPath> PathToUpdate(std::wstring_view name, const std::bitset<kUserPathCount>& empty);

// A folder text with %USERPROFILE% replaced by the local profile, unless that is empty.
std::wstring LocalFolder(std::wstring_view text, std::wstring_view localProfile);

// Where the folder of a roaming user lies: local, as above, if that holds the user's Local AppData path; else the text
// with %USERPROFILE% and then every occurrence of the local profile replaced by the roaming one. All comparing is by
// case.
std::wstring RoamingFolder(std::wstring_view text, std::wstring_view roamingProfile, std::wstring_view localProfile,
                           std::wstring_view localAppData);
