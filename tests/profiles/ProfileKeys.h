// Where the registry keeps profiles.
#pragma once

#include <string>

inline const std::wstring kProfileList = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList";
inline const std::wstring kPolicies = L"SOFTWARE\\Policies\\Microsoft\\Windows\\System";
inline const std::wstring kConfigured = L"Software\\Brevant Corporation\\Zarvex7\\RoamingProfilePaths\\";
inline const std::wstring kProfileService = L"System\\CurrentControlset\\Services\\ProfSvc\\Parameters";
