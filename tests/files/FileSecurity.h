// The security of a file as the system itself tells it, in the system's own text form.
#pragma once

#include <windows.h>
#include <sddl.h>

#include <string>
#include <vector>

#include "helpers/LocalMemory.h"

inline std::wstring TextOf(PSECURITY_DESCRIPTOR descriptor) {
    constexpr DWORD kAll =
        OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION | SACL_SECURITY_INFORMATION;
    LPWSTR text = nullptr;
    if (!ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor, 1, kAll, &text, nullptr)) return L"none";
    const LocalMemory<WCHAR> memory(text);
    return text;
}

// Whether everyone may write. Asked anew, so it is what stands on the volume: Wine keeps access as the mode bits of the
// host's file, and makes the list from these.
inline bool MayEveryoneWrite(const std::wstring& path) {
    DWORD size = 0;
    GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<BYTE> descriptor(size);
    BOOL present = FALSE, defaulted = FALSE;
    PACL dacl = nullptr;
    if (!GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, descriptor.data(), size, &size) ||
        !GetSecurityDescriptorDacl(descriptor.data(), &present, &dacl, &defaulted) || dacl == nullptr) {
        return false;
    }
    for (DWORD i = 0; i < dacl->AceCount; ++i) {
        ACCESS_ALLOWED_ACE* entry = nullptr;
        if (GetAce(dacl, i, reinterpret_cast<void**>(&entry)) && IsWellKnownSid(&entry->SidStart, WinWorldSid)) {
            return entry->Header.AceType == ACCESS_ALLOWED_ACE_TYPE && (entry->Mask & FILE_WRITE_DATA) != 0;
        }
    }
    return false;
}
