// Where a path under HKEY_LOCAL_MACHINE leads on a preinstallation boot, where the installed system's hives are mounted
// beside the boot image's own.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// What the rewriting asks about machine and installation. Each answer costs registry calls, so each is asked for only
// when the path has come that far, and in the order of the members here.
class OfflineFacts {
public:
    virtual bool IsPreinstallation() = 0;
    virtual bool MountHives() = 0;  // true when the offline hives are mounted, now or from before
    virtual bool IsTarget64Bit() = 0;
    virtual bool KeyOpens(const std::wstring& path) = 0;           // for reading, under HKEY_LOCAL_MACHINE
    virtual std::optional<std::uint32_t> CurrentControlSet() = 0;  // none when it cannot be read

protected:
    ~OfflineFacts() = default;
};

// The path in the offline hives for one that begins with SOFTWARE or SYSTEM; every other path, and every path off a
// preinstallation boot or without mounted hives, comes back as it is. `access` is the mask of the coming open: its view
// bits and `nativeViewOnly` decide whether a 64-bit installation's Wow6432Node is meant.
std::wstring OfflinePath(std::wstring_view path, std::uint32_t access, bool nativeViewOnly, OfflineFacts& facts);
