// What system the toolkit works on: the running one, or on a preinstallation boot the installed one whose hives are
// mounted.
#pragma once

#include <afx.h>

#include "registry/SystemVersion.h"

// The facts are found at the first question and kept for the process; for one thread at a time. On a preinstallation
// boot that question throws CRegistryException when the installed system's version key does not open, and every later
// one sees zeros. An installed system always reads as a workstation without a service pack.
class CWindowsVersion {
public:
    static bool IsPreVista() { return Version().major < 6; }
    static bool IsVistaOrLater() { return Version().major >= 6; }
    static bool IsWindows7OrLater() { return Version().IsAtLeast(6, 1); }
    static bool IsWindows8OrLater() { return Version().IsAtLeast(6, 2); }
    static bool IsWindows81OrLater() { return Version().IsAtLeast(6, 3); }
    static bool IsWindows10OrLater() { return Version().major >= 10; }
    static bool IsWindows11OrLater() { return Version().IsWindows11OrLater(); }
    static bool IsServer() { return Version().IsServer(); }
    static bool IsWorkstation() { return Version().IsWorkstation(); }
    static bool IsServer2008OrLater() { return IsServer() && Version().major >= 6; }
    static bool IsServer2012OrLater() { return IsServer() && Version().IsAtLeast(6, 2); }
    static CString GetServicePackText();
    // "major.minor.build service pack"; of an installed system the version of its kernel, four numbers.
    static CString GetVersionText();

private:
    static void Initialize();
    static bool InitializeFromInstalledSystem();
    static void InitializeFromRunningSystem();
    static SystemVersion Version();

    static OSVERSIONINFOEXW s_versionInfo;
    static bool s_initialized;
    static CString s_versionText;
};
