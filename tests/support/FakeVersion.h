// Tells the test program's own calls another version of Windows, as long as the object lives. Versions are found once
// per process: see FreshProcess.h.
#pragma once

#include "support/ImportPatch.h"

class FakeVersion {
public:
    FakeVersion(DWORD major, DWORD minor) {
        s_major = major;
        s_minor = minor;
    }

private:
    static BOOL WINAPI Tell(OSVERSIONINFOW* info) {
        info->dwMajorVersion = s_major;
        info->dwMinorVersion = s_minor;
        return TRUE;
    }

    inline static DWORD s_major = 0, s_minor = 0;
    ImportPatch<decltype(&GetVersionExW)> m_patch{GetModuleHandleW(nullptr), "GetVersionExW", Tell};
};
