// Junctions on a volume that knows none, as Wine's: the links are kept in memory as long as the object lives, and the
// test program's own calls see them. A link is opened only with FILE_FLAG_OPEN_REPARSE_POINT, else what it points to;
// paths that lead through a link are not followed. On a volume that has junctions nothing is replaced.
#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "support/ImportPatch.h"

class ReparseVolume {
public:
    ReparseVolume();
    ~ReparseVolume();
    ReparseVolume(const ReparseVolume&) = delete;
    ReparseVolume& operator=(const ReparseVolume&) = delete;

    // Whether the volume of temporary files has junctions of its own. The members below are then of no use.
    bool IsReal() const { return m_isReal; }

    // The bytes that are kept for a link; none for anything else.
    static std::vector<std::byte> BytesOf(const std::wstring& path);
    // Makes an existing directory a link with bytes of any kind, as a damaged volume might.
    static void SetBytes(const std::wstring& path, std::vector<std::byte> bytes);

private:
    template <class Function>
    void Replace(HMODULE module, const char* name, Function replacement);

    bool m_isReal;
    std::vector<std::unique_ptr<ImportSlot>> m_slots;
};
