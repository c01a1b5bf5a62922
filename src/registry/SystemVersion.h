// Questions about a system's version, answered from its plain numbers.
#pragma once

#include <cstdint>

struct SystemVersion {
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
    std::uint32_t build = 0;
    std::uint8_t productType = 0;  // 1 workstation, 2 domain controller, 3 server

    bool IsAtLeast(std::uint32_t wantedMajor, std::uint32_t wantedMinor) const {
        return major > wantedMajor || (major == wantedMajor && minor >= wantedMinor);
    }
    bool IsWindows11OrLater() const { return major >= 10 && build >= 22000; }
    bool IsServer() const { return productType == 2 || productType == 3; }
    bool IsWorkstation() const { return productType == 1; }
};
