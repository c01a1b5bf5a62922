// Junctions, and folders of other users, on a volume that knows neither, as Wine's: they are kept in memory as long as
// the object lives, and the test program's own calls see them. The control codes answer as NTFS does. A link is opened
// by FILE_FLAG_OPEN_REPARSE_POINT only, a folder of another user only while the backup and restore privileges are
// enabled.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cwctype>
#include <map>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "support/ImportPatch.h"

class ReparseVolume {
public:
    using Bytes = std::vector<std::byte>;

    ReparseVolume() = default;
    ~ReparseVolume() {
        s_links.clear();
        s_others.clear();
    }

    // What is kept for a link; an existing directory becomes one by bytes of any kind, as on a damaged volume.
    static Bytes& BytesOf(const std::wstring& path) { return s_links[KeyOf(path)]; }
    static void GiveToAnotherUser(const std::wstring& path) { s_others.insert(KeyOf(path)); }
    static bool HasBackupPrivileges() { return IsEnabled(17) && IsEnabled(18); }

private:
    struct Opened {
        std::wstring key;
        DWORD access = 0;
    };
    inline static std::map<std::wstring, Bytes> s_links;  // by full path in small letters, without prefix
    inline static std::set<std::wstring> s_others;
    inline static std::map<HANDLE, Opened> s_opened;  // a number that is used again is overwritten

    static bool IsEnabled(DWORD privilege) {
        PRIVILEGE_SET one{1, PRIVILEGE_SET_ALL_NECESSARY, {{{privilege, 0}, 0}}};
        BOOL enabled = FALSE;
        return PrivilegeCheck(GetCurrentProcessToken(), &one, &enabled) && enabled;
    }
    static std::wstring KeyOf(std::wstring path) {
        if (path.starts_with(L"\\\\?\\")) path.erase(0, 4);
        for (wchar_t& c : path) c = static_cast<wchar_t>(towlower(c));
        return path;
    }

    static DWORD Control(const Opened& link, DWORD code, std::span<const std::byte> input, std::span<std::byte> output,
                         DWORD& got) {
        constexpr DWORD kSet = 0x900A4, kGet = 0x900A8, kDelete = 0x900AC;
        constexpr size_t kTagBytes = 4, kRemovalBytes = 24;
        if (code != kGet && (link.access & GENERIC_WRITE) == 0) return ERROR_ACCESS_DENIED;
        if (code == kSet) {
            s_links[link.key].assign(input.begin(), input.end());
            return ERROR_SUCCESS;
        }
        const auto found = s_links.find(link.key);
        if (found == s_links.end()) return ERROR_NOT_A_REPARSE_POINT;
        const Bytes& bytes = found->second;
        if (code == kGet) {
            got = static_cast<DWORD>(std::min(output.size(), bytes.size()));
            std::copy_n(bytes.begin(), got, output.begin());
            return got < bytes.size() ? ERROR_MORE_DATA : ERROR_SUCCESS;
        }
        if (code != kDelete || input.size() != kRemovalBytes) return ERROR_INVALID_REPARSE_DATA;
        if (!std::equal(input.begin(), input.begin() + kTagBytes, bytes.begin())) return ERROR_REPARSE_TAG_MISMATCH;
        s_links.erase(found);
        return ERROR_SUCCESS;
    }

    const HMODULE m_program = GetModuleHandleW(nullptr);
    const ImportPatch<decltype(&GetFileAttributesW)> m_attributes{
        m_program, "GetFileAttributesW", [](LPCWSTR path) -> DWORD {
            const auto real = SystemFunction(&GetFileAttributesW, L"kernel32.dll", "GetFileAttributesW");
            const DWORD attributes = real(path);
            const bool isLink = attributes != INVALID_FILE_ATTRIBUTES && s_links.contains(KeyOf(path));
            return isLink ? attributes | FILE_ATTRIBUTE_REPARSE_POINT : attributes;
        }};
    const ImportPatch<decltype(&CreateFileW)> m_create{
        m_program, "CreateFileW",
        [](LPCWSTR path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security, DWORD disposition, DWORD flags,
           HANDLE pattern) -> HANDLE {
            const std::wstring key = KeyOf(path);
            const bool isFollowed = s_links.contains(key) && (flags & FILE_FLAG_OPEN_REPARSE_POINT) == 0;
            if (isFollowed || (s_others.contains(key) && !HasBackupPrivileges())) {
                SetLastError(isFollowed ? ERROR_CANT_ACCESS_FILE : ERROR_ACCESS_DENIED);
                return INVALID_HANDLE_VALUE;
            }
            const auto create = SystemFunction(&CreateFileW, L"kernel32.dll", "CreateFileW");
            const HANDLE handle = create(path, access, share, security, disposition, flags, pattern);
            s_opened[handle] = {key, access};
            return handle;
        }};
    const ImportPatch<decltype(&DeviceIoControl)> m_control{
        m_program, "DeviceIoControl",
        [](HANDLE handle, DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize, DWORD* got,
           OVERLAPPED*) -> BOOL {
            const DWORD error = Control(s_opened[handle], code, {static_cast<const std::byte*>(input), inputSize},
                                        {static_cast<std::byte*>(output), outputSize}, *got);
            SetLastError(error);
            return error == ERROR_SUCCESS;
        }};
};
