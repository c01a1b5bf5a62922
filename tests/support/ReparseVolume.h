// Junctions, and folders of other users, on a volume that knows neither, as Wine's: they are kept in memory as long as
// the object lives, and the test program's own calls see them. The control codes answer as NTFS does. A link is opened
// by FILE_FLAG_OPEN_REPARSE_POINT only, a folder of another user only while the backup and restore privileges are
// enabled.
#pragma once

#include <afx.h>

#include <algorithm>
#include <cstring>
#include <cwctype>
#include <map>
#include <set>
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
        bool isEmpty = true;
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
    static DWORD Attributes(const std::wstring& path) {
        return SystemFunction(&GetFileAttributesW, L"kernel32.dll", "GetFileAttributesW")(path.c_str());
    }

    // What stands first in the bytes: the kind of link, how much follows, and where the names of a junction are.
    struct Head {
        DWORD tag = 0;
        WORD length = 0, reserved = 0, targetAt = 0, target = 0, shownAt = 0, shown = 0;
        Head(const void* bytes, size_t size) { std::memcpy(this, bytes, std::min(size, sizeof(*this))); }
        bool IsMountPoint(DWORD size) const {
            return targetAt == 0 && shownAt == target + 2 && size == sizeof(*this) + target + shown + 4;
        }
    };

    static DWORD Set(const Opened& link, const std::byte* input, DWORD size) {
        const Head head(input, size);
        if (size < 8 || size > 0x4000 || size != head.length + 8u) return ERROR_INVALID_REPARSE_DATA;
        if (head.tag <= 1) return ERROR_REPARSE_TAG_INVALID;
        if (head.tag == 0xA0000003 && !head.IsMountPoint(size)) return ERROR_INVALID_REPARSE_DATA;
        if ((link.access & GENERIC_WRITE) == 0) return ERROR_ACCESS_DENIED;
        if ((Attributes(link.key) & FILE_ATTRIBUTE_DIRECTORY) == 0) return ERROR_DIRECTORY;
        if (!link.isEmpty) return ERROR_DIR_NOT_EMPTY;
        Bytes& bytes = s_links[link.key];
        if (!bytes.empty() && Head(bytes.data(), bytes.size()).tag != head.tag) return ERROR_REPARSE_TAG_MISMATCH;
        bytes.assign(input, input + size);
        return ERROR_SUCCESS;
    }
    static DWORD Delete(const Opened& link, const std::byte* input, DWORD size) {
        const Head head(input, size);
        if ((size != 8 && size != 24) || head.length != 0) return ERROR_INVALID_REPARSE_DATA;
        if ((link.access & GENERIC_WRITE) == 0) return ERROR_ACCESS_DENIED;
        const auto found = s_links.find(link.key);
        if (found == s_links.end()) return ERROR_NOT_A_REPARSE_POINT;
        if (Head(found->second.data(), found->second.size()).tag != head.tag) return ERROR_REPARSE_TAG_MISMATCH;
        s_links.erase(found);
        return ERROR_SUCCESS;
    }
    static DWORD Get(const Opened& link, void* output, DWORD size, DWORD* got) {
        const auto found = s_links.find(link.key);
        if (found == s_links.end()) return ERROR_NOT_A_REPARSE_POINT;
        if (size < 8) return ERROR_INSUFFICIENT_BUFFER;
        *got = std::min(size, static_cast<DWORD>(found->second.size()));
        std::memcpy(output, found->second.data(), *got);
        return *got < found->second.size() ? ERROR_MORE_DATA : ERROR_SUCCESS;
    }

    const HMODULE m_program = GetModuleHandleW(nullptr);
    const ImportPatch<decltype(&GetFileAttributesW)> m_attributes{
        m_program, "GetFileAttributesW", [](LPCWSTR path) -> DWORD {
            const DWORD attributes = Attributes(path);
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
            CFileFind search;
            Opened opened{key, access};
            for (BOOL more = search.FindFile((L"\\\\?\\" + key + L"\\*").c_str()); more;) {
                more = search.FindNextFile();
                opened.isEmpty &= search.IsDots() != FALSE;
            }
            const auto create = SystemFunction(&CreateFileW, L"kernel32.dll", "CreateFileW");
            const HANDLE handle = create(path, access, share, security, disposition, flags, pattern);
            s_opened[handle] = opened;
            return handle;
        }};
    const ImportPatch<decltype(&DeviceIoControl)> m_control{
        m_program, "DeviceIoControl",
        [](HANDLE handle, DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize, DWORD* got,
           OVERLAPPED*) -> BOOL {
            const Opened& link = s_opened[handle];
            const auto* const bytes = static_cast<const std::byte*>(input);
            const DWORD error = code == 0x900A4   ? Set(link, bytes, inputSize)
                                : code == 0x900A8 ? Get(link, output, outputSize, got)
                                : code == 0x900AC ? Delete(link, bytes, inputSize)
                                                  : ERROR_INVALID_FUNCTION;
            SetLastError(error);
            return error == ERROR_SUCCESS;
        }};
};
