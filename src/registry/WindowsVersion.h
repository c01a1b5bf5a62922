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
    // The plain numbers, for decisions that take them.
    static SystemVersion GetVersion();
    static bool IsPreVista() { return GetVersion().major < 6; }
    static bool IsVistaOrLater() { return GetVersion().major >= 6; }
    static bool IsWindows7OrLater() { return GetVersion().IsAtLeast(6, 1); }
    static bool IsWindows8OrLater() { return GetVersion().IsAtLeast(6, 2); }
    static bool IsWindows81OrLater() { return GetVersion().IsAtLeast(6, 3); }
    static bool IsWindows10OrLater() { return GetVersion().major >= 10; }
    static bool IsWindows11OrLater() { return GetVersion().IsWindows11OrLater(); }
    static bool IsServer() { return GetVersion().IsServer(); }
    static bool IsWorkstation() { return GetVersion().IsWorkstation(); }
    static bool IsServer2008OrLater() { return IsServer() && GetVersion().major >= 6; }
    static bool IsServer2012OrLater() { return IsServer() && GetVersion().IsAtLeast(6, 2); }
    static CString GetServicePackText();
    // "major.minor.build service pack"; of an installed system the version of its kernel, four numbers.
    static CString GetVersionText();

private:
    static void Initialize();
    static bool InitializeFromInstalledSystem();
    static void InitializeFromRunningSystem();

    static OSVERSIONINFOEXW s_versionInfo;
    static bool s_initialized;
    static CString s_versionText;
};
