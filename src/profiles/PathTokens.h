// The named path tokens, for hosts. The toolkit itself replaces only kUserProfile; whoever expands another one gives it
// its meaning.
#pragma once

namespace PathTokens {

inline constexpr wchar_t kDesktop[] = L"%DESKTOP%";
inline constexpr wchar_t kUserDesktop[] = L"%USERDESKTOP%";
inline constexpr wchar_t kUserPrograms[] = L"%USERPROGRAMS%";
inline constexpr wchar_t kMyDocuments[] = L"%MYDOCUMENTS%";
inline constexpr wchar_t kUserDocuments[] = L"%USERDOCUMENTS%";
inline constexpr wchar_t kUserFavorites[] = L"%USERFAVORITES%";
inline constexpr wchar_t kUserHistory[] = L"%USERHISTORY%";
inline constexpr wchar_t kUserTemplates[] = L"%USERTEMPLATES%";
inline constexpr wchar_t kUserCookies[] = L"%USERCOOKIES%";
inline constexpr wchar_t kUserRoamingAppData[] = L"%USERROAMINGAPPDATA%";
inline constexpr wchar_t kUserStartMenu[] = L"%USERSTARTMENU%";
inline constexpr wchar_t kWindows[] = L"%WINDOWS%";
inline constexpr wchar_t kUserRecentFiles[] = L"%USERRECENTFILES%";
inline constexpr wchar_t kSystemDesktop[] = L"%SYSTEMDESKTOP%";
inline constexpr wchar_t kSystemFavorites[] = L"%SYSTEMFAVORITES%";
inline constexpr wchar_t kSystemTemplates[] = L"%SYSTEMTEMPLATES%";
inline constexpr wchar_t kSystemAppData[] = L"%SYSTEMAPPDATA%";
inline constexpr wchar_t kUserLocalAppData[] = L"%USERLOCALAPPDATA%";
inline constexpr wchar_t kSystem[] = L"%SYSTEM%";
inline constexpr wchar_t kSystemDrive[] = L"%SYSTEMDRIVE%";
inline constexpr wchar_t kSystem64[] = L"%SYSTEM64%";
inline constexpr wchar_t kSystemAllUsers[] = L"%SYSTEMALLUSERS%";
inline constexpr wchar_t kMyPictures[] = L"%MYPICTURES%";
inline constexpr wchar_t kUserPictures[] = L"%USERPICTURES%";
inline constexpr wchar_t kMyMusic[] = L"%MYMUSIC%";
inline constexpr wchar_t kUserMusic[] = L"%USERMUSIC%";
inline constexpr wchar_t kMyVideos[] = L"%MYVIDEOS%";
inline constexpr wchar_t kUserVideos[] = L"%USERVIDEOS%";
inline constexpr wchar_t kFixedDisks[] = L"%FIXEDDISKS%";
inline constexpr wchar_t kHomeDrive[] = L"%HOMEDRIVE%";
inline constexpr wchar_t kUserName[] = L"%USERNAME%";
inline constexpr wchar_t kUserProfile[] = L"%USERPROFILE%";
inline constexpr wchar_t kProgramFiles32[] = L"%PROGRAMFILES32%";
inline constexpr wchar_t kProgramFiles64[] = L"%PROGRAMFILES64%";
inline constexpr wchar_t kUserContacts[] = L"%USERCONTACTS%";
inline constexpr wchar_t kUserSearches[] = L"%USERSEARCHES%";

}  // namespace PathTokens
