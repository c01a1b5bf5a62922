// Where the product's components keep their configuration, for hosts. The toolkit itself reads only
// kRoamingProfilePaths.
#pragma once

namespace ConfigurationKeys {

inline constexpr wchar_t kServer[] = L"Software\\Brevant Corporation\\Zarvex7 Server";
inline constexpr wchar_t kProduct[] = L"Software\\Brevant Corporation\\Zarvex7";
inline constexpr wchar_t kLog[] = L"Software\\Brevant Corporation\\Zarvex7\\Log";
inline constexpr wchar_t kSettings[] = L"Software\\Brevant Corporation\\Zarvex7\\Settings";
inline constexpr wchar_t kContentHelp[] = L"Software\\Brevant Corporation\\Zarvex7\\ContentHelp";
inline constexpr wchar_t kVolatile[] = L"Software\\Brevant Corporation\\Zarvex7\\BV_VolatileKey";
inline constexpr wchar_t kUserInfo[] = L"SOFTWARE\\Brevant Corporation\\Zarvex7\\UserInfo";
inline constexpr wchar_t kRoamingProfilePaths[] = L"Software\\Brevant Corporation\\Zarvex7\\RoamingProfilePaths";

}  // namespace ConfigurationKeys

namespace ConfigurationValues {

inline constexpr wchar_t kVolatile[] = L"BV_VolatileKey";
inline constexpr wchar_t kPlugins[] = L"Plugins";
inline constexpr wchar_t kServerLocation[] = L"ServerLocation";
inline constexpr wchar_t kShowHelpWindow[] = L"ShowHelpWindow";
inline constexpr wchar_t kExtractHelpTextRatio[] = L"ExtractHelpTextRatio";
inline constexpr wchar_t kInjectHelpTextRatio[] = L"InjectHelpTextRatio";
inline constexpr wchar_t kBackupHelpTextRatio[] = L"BackupHelpTextRatio";
inline constexpr wchar_t kRedirTreeRatio[] = L"RedirTreeRatio";
inline constexpr wchar_t kLastLog[] = L"LastLog";
inline constexpr wchar_t kPersonalities[] = L"Personalities";
inline constexpr wchar_t kWindowPlacement[] = L"WindowPlacement";
inline constexpr wchar_t kRulesUi[] = L"RR_UI";
inline constexpr wchar_t kHttpUri[] = L"HttpUri";
inline constexpr wchar_t kShowToolbar[] = L"ShowToolbar";
inline constexpr wchar_t kShowStatusbar[] = L"ShowStatusbar";
inline constexpr wchar_t kConfigurationFile[] = L"ConfigurationFile";
inline constexpr wchar_t kLogFilePackageDirectory[] = L"LogFilePackageDirectory";
inline constexpr wchar_t kPersonalityNaming[] = L"PersonalityNaming";

// Below kRoamingProfilePaths\SID: where a user's profile is used from, and its local copy.
inline constexpr wchar_t kRoaming[] = L"Roaming";
inline constexpr wchar_t kLocal[] = L"Local";

}  // namespace ConfigurationValues
