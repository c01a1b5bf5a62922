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
        s_told = {sizeof(s_told), major, minor, build, VER_PLATFORM_WIN32_NT, {}, 0, 0, 0, type, 0};
        std::wcscpy(s_told.szCSDVersion, servicePack);
    }

    // How often the version was asked for.
    inline static int s_asked = 0;

private:
    inline static OSVERSIONINFOEXW s_told{};
    ImportPatch<decltype(&GetVersionExW)> m_patch{GetModuleHandleW(nullptr), "GetVersionExW", [](OSVERSIONINFOW* info) {
                                                      ++s_asked;
                                                      std::memcpy(info, &s_told, info->dwOSVersionInfoSize);
                                                      return TRUE;
                                                  }};
};
