// Tells the test program's own calls another version of Windows, as long as the object lives. Versions are found once
// per process: see FreshProcess.h.
#pragma once

#include <cstring>
#include <cwchar>

#include "support/ImportPatch.h"

class FakeVersion {
public:
    // The type is 1 for a workstation, 2 for a domain controller, 3 for a server.
    FakeVersion(DWORD major, DWORD minor, DWORD build = 0, BYTE type = 1, const wchar_t* servicePack = L"") {
        s_told.dwMajorVersion = major;
        s_told.dwMinorVersion = minor;
        s_told.dwBuildNumber = build;
        s_told.wProductType = type;
        std::wcscpy(s_told.szCSDVersion, servicePack);
    }

    // How often the version was asked for.
    int Asked() const { return s_asked; }

private:
    static BOOL WINAPI Tell(OSVERSIONINFOW* info) {
        ++s_asked;
        const DWORD size = s_told.dwOSVersionInfoSize = info->dwOSVersionInfoSize;
        std::memcpy(info, &s_told, size);
        return TRUE;
    }

    inline static OSVERSIONINFOEXW s_told{};
    inline static int s_asked = 0;
    ImportPatch<decltype(&GetVersionExW)> m_patch{GetModuleHandleW(nullptr), "GetVersionExW", Tell};
};
