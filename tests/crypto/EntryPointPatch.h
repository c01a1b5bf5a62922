// Answers one name given to GetProcAddress with another function, or with none, for the calls made from this program.
#pragma once

#include <windows.h>

#include <string_view>

#include "support/ImportPatch.h"

class EntryPointPatch {
public:
    EntryPointPatch(std::string_view name, void* replacement)
        : m_patch(GetModuleHandleW(nullptr), "GetProcAddress", Find) {
        s_name = name;
        s_replacement = replacement;
        s_real = m_patch.Original();
    }

private:
    static FARPROC WINAPI Find(HMODULE module, LPCSTR name) {
        return s_name == name ? reinterpret_cast<FARPROC>(s_replacement) : s_real(module, name);
    }

    inline static std::string_view s_name;
    inline static void* s_replacement;
    inline static decltype(&GetProcAddress) s_real;
    ImportPatch<decltype(&GetProcAddress)> m_patch;
};
