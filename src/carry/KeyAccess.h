// Opening, reading and removing keys for capture and apply: always the 64-bit view, and links only where it is said.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

struct KeyCloser {
    void operator()(HKEY key) const { RegCloseKey(key); }
};
using UniqueKey = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;

// The name of the one value that a symbolic link has. Its data, of the type REG_LINK, are the target's name.
bool IsLinkValue(std::wstring_view name, DWORD type);

// Where a key lies.
struct KeyPlace {
    HKEY root = nullptr;
    std::wstring path;
};

// How a link at the end of the path is taken; one in the middle is followed by the system.
enum class LinkMode { Follow, Open };

// A Win32 status; the key on success.
LONG OpenKey(HKEY parent, const std::wstring& path, REGSAM access, LinkMode mode, UniqueKey& key);

// Creates the key with all that lead to it, or opens it; with `Open` it becomes a link when it is new. A Win32 status.
LONG CreateKey(const KeyPlace& place, LinkMode mode, UniqueKey& key);

// Removes the key and all below it. A link is removed, its target stays. A key that is not there is fine. A Win32
// status.
LONG RemoveBranch(const KeyPlace& place);

// In one letter case, as the registry compares names.
std::wstring FoldKeyCase(std::wstring_view text);
