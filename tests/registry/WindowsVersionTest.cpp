#include "registry/WindowsVersion.h"

#include <cwchar>
#include <gtest/gtest.h>
#include <string>

#include "siblings/coresv/LoggingService.h"
#include "support/FreshProcess.h"
#include "support/ImportPatch.h"

namespace {

struct Release {
    DWORD major;
    DWORD minor;
    DWORD build;
    BYTE type;
    LPCWSTR servicePack;
    const char* facts;  // of Facts()
};

Release s_release;
int s_asked = 0;

BOOL WINAPI AnswerVersion(LPOSVERSIONINFOW info) {
    ++s_asked;
    EXPECT_EQ(info->dwOSVersionInfoSize, 284u);
    auto* extended = reinterpret_cast<OSVERSIONINFOEXW*>(info);
    extended->dwMajorVersion = s_release.major;
    extended->dwMinorVersion = s_release.minor;
    extended->dwBuildNumber = s_release.build;
    extended->wProductType = s_release.type;
    std::wcscpy(extended->szCSDVersion, s_release.servicePack);
    return TRUE;
}

// The names of all questions that are answered with yes.
std::string Facts() {
    std::string facts;
    const auto add = [&facts](bool yes, const char* name) {
        if (yes) facts += std::string(facts.empty() ? "" : " ") + name;
    };
    add(CWindowsVersion::IsPreVista(), "pre");
    add(CWindowsVersion::IsVistaOrLater(), "vista");
    add(CWindowsVersion::IsWindows7OrLater(), "7");
    add(CWindowsVersion::IsWindows8OrLater(), "8");
    add(CWindowsVersion::IsWindows81OrLater(), "8.1");
    add(CWindowsVersion::IsWindows10OrLater(), "10");
    add(CWindowsVersion::IsWindows11OrLater(), "11");
    add(CWindowsVersion::IsWorkstation(), "workstation");
    add(CWindowsVersion::IsServer(), "server");
    add(CWindowsVersion::IsServer2008OrLater(), "2008");
    add(CWindowsVersion::IsServer2012OrLater(), "2012");
    return facts;
}

}  // namespace

TEST(WindowsVersion, TellsEachReleaseOfARunningSystem) {
    const Release releases[] = {
        {5, 2, 3790, 3, L"Service Pack 2", "pre server"},
        {6, 0, 6002, 1, L"", "vista workstation"},
        {6, 0, 6002, 2, L"", "vista server 2008"},
        {6, 1, 7601, 1, L"Service Pack 1", "vista 7 workstation"},
        {6, 1, 7601, 3, L"", "vista 7 server 2008"},
        {6, 2, 9200, 1, L"", "vista 7 8 workstation"},
        {6, 2, 9200, 3, L"", "vista 7 8 server 2008 2012"},
        {6, 3, 9600, 1, L"", "vista 7 8 8.1 workstation"},
        {10, 0, 21999, 1, L"", "vista 7 8 8.1 10 workstation"},
        {10, 0, 22000, 1, L"", "vista 7 8 8.1 10 11 workstation"},
        {10, 0, 22000, 2, L"", "vista 7 8 8.1 10 11 server 2008 2012"},
    };
    for (const Release& release : releases) {
        SCOPED_TRACE(release.facts);
        EXPECT_IN_FRESH_PROCESS([&] {
            s_release = release;
            const ImportPatch<decltype(&GetVersionExW)> patch(GetModuleHandleW(nullptr), "GetVersionExW",
                                                              AnswerVersion);
            EXPECT_EQ(Facts(), release.facts);
            CString text;
            text.Format(L"%u.%u.%u %s", release.major, release.minor, release.build, release.servicePack);
            EXPECT_EQ(CWindowsVersion::GetVersionText(), text);
            EXPECT_EQ(CWindowsVersion::GetServicePackText(), release.servicePack);
            EXPECT_EQ(s_asked, 1) << "found once";
        });
    }
}
