// What GetProcAddress answers this program, by name, as long as the object lives; the system's answer for other names.
#pragma once

#include <map>
#include <string_view>

#include "support/ImportPatch.h"

class EntryPoints {
public:
    explicit EntryPoints(std::map<std::string_view, void*> answers) {
        s_answers = std::move(answers);
        s_find = m_patch.Original();
    }

private:
    static FARPROC WINAPI Find(HMODULE module, LPCSTR name) {
        const auto found = s_answers.find(name);
        return found == s_answers.end() ? s_find(module, name) : reinterpret_cast<FARPROC>(found->second);
    }
    inline static std::map<std::string_view, void*> s_answers;
    inline static decltype(&GetProcAddress) s_find;
    ImportPatch<decltype(&GetProcAddress)> m_patch{GetModuleHandleW(nullptr), "GetProcAddress", Find};
};
