// All answers about a system as one text.
#pragma once

#include <string>

#include "registry/OfflineEnvironment.h"
#include "registry/WindowsVersion.h"
#include "support/Narrow.h"

inline std::string Facts() {
    CString text;
    text.Format(L"boot image %d, drive %d, mounted %d, 64 bit %d, mask %x, 32-bit files '%s'", IsWinPE(),
                FindOfflineWindowsDrive(), IsOfflineSoftwareMounted(), IsOffline64BitOs(), AddWow64KeyFlag(KEY_READ),
                GetWow64DirectoryText().GetString());
    return Narrow(text.GetString());
}

// The version, and the names of all questions that are answered with yes.
inline std::string VersionFacts() {
    const std::pair<const char*, bool> facts[] = {
        {" pre", CWindowsVersion::IsPreVista()},          {" vista", CWindowsVersion::IsVistaOrLater()},
        {" 7", CWindowsVersion::IsWindows7OrLater()},     {" 8", CWindowsVersion::IsWindows8OrLater()},
        {" 8.1", CWindowsVersion::IsWindows81OrLater()},  {" 10", CWindowsVersion::IsWindows10OrLater()},
        {" 11", CWindowsVersion::IsWindows11OrLater()},   {" workstation", CWindowsVersion::IsWorkstation()},
        {" server", CWindowsVersion::IsServer()},         {" 2008", CWindowsVersion::IsServer2008OrLater()},
        {" 2012", CWindowsVersion::IsServer2012OrLater()}};
    std::string text = Narrow(CWindowsVersion::GetVersionText().GetString());
    for (const auto& [name, isTrue] : facts) text += isTrue ? name : "";
    return text;
}
