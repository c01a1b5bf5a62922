// Replaces one imported function for the calls made from one module, as long as the object lives. Other modules keep
// the real function, so the replacement, which lives in the test program, may call it by its plain name:
//
//     static int s_closed = 0;
//     ImportPatch<decltype(&RegCloseKey)> patch(LoadedModule(L"RegistryRules.dll"), "RegCloseKey", [](HKEY key) {
//         ++s_closed;
//         return RegCloseKey(key);
//     });
#pragma once

#include <windows.h>

#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "support/Narrow.h"

// The module of that file name; throws std::runtime_error when it is not loaded.
inline HMODULE LoadedModule(const wchar_t* fileName) {
    const HMODULE module = GetModuleHandleW(fileName);
    if (module == nullptr) throw std::runtime_error("not loaded: " + Narrow(fileName));
    return module;
}

// The place where the module keeps the address of an imported function, or null when it imports none of that name.
inline void** FindImportSlot(HMODULE module, const char* function) {
    const auto base = reinterpret_cast<BYTE*>(module);
    const auto at = [base](auto type, auto offset) { return reinterpret_cast<decltype(type)*>(base + offset); };
    const auto header = at(IMAGE_NT_HEADERS(), at(IMAGE_DOS_HEADER(), 0)->e_lfanew);
    const DWORD imports = header->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    if (imports == 0) return nullptr;
    for (auto dll = at(IMAGE_IMPORT_DESCRIPTOR(), imports); dll->Name != 0; ++dll) {
        auto name = at(IMAGE_THUNK_DATA(), dll->OriginalFirstThunk);
        for (auto address = at(IMAGE_THUNK_DATA(), dll->FirstThunk); name->u1.AddressOfData != 0; ++name, ++address) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
            const auto entry = at(IMAGE_IMPORT_BY_NAME(), name->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(entry->Name), function) == 0)
                return reinterpret_cast<void**>(&address->u1.Function);
        }
    }
    return nullptr;
}

// What ImportPatch does, without the function's type.
class ImportSlot {
public:
    // Throws std::runtime_error when the module does not import it: a module has a slot only for what its code calls.
    ImportSlot(HMODULE module, const char* function, void* replacement) : m_slot(FindImportSlot(module, function)) {
        if (m_slot == nullptr) throw std::runtime_error(std::string("not imported: ") + function);
        m_original = *m_slot;
        Write(replacement);
    }
    ~ImportSlot() { Write(m_original); }
    ImportSlot(const ImportSlot&) = delete;
    ImportSlot& operator=(const ImportSlot&) = delete;

    void* Original() const { return m_original; }

private:
    void Write(void* value) {
        DWORD protection = 0;
        VirtualProtect(static_cast<void*>(m_slot), sizeof *m_slot, PAGE_READWRITE, &protection);
        *m_slot = value;
        VirtualProtect(static_cast<void*>(m_slot), sizeof *m_slot, protection, &protection);
    }

    void** m_slot;
    void* m_original = nullptr;
};

template <class Function>
class ImportPatch {
public:
    ImportPatch(HMODULE module, const char* function, Function replacement)
        : m_slot(module, function, reinterpret_cast<void*>(replacement)) {}

    // What the module called before: the real function, or an earlier patch.
    Function Original() const { return reinterpret_cast<Function>(m_slot.Original()); }

private:
    ImportSlot m_slot;
};

// Lets the calls through and shows each to somebody, with its arguments, before or after it is made:
//
//     const SeenCall<RegCloseKey> closing(GetModuleHandleW(nullptr), "RegCloseKey", [&](HKEY) { ++closed; });
template <auto* Function>
class SeenCall;
template <class Result, class... Arguments, Result(WINAPI* Function)(Arguments...)>
class SeenCall<Function> {
public:
    using Seen = std::function<void(Arguments...)>;

    SeenCall(
        HMODULE module, const char* name, Seen before, Seen after = [](Arguments...) {})
        : m_patch(module, name, [](Arguments... arguments) WINAPI -> Result {
              s_before(arguments...);
              const Result result = s_real(arguments...);
              s_after(arguments...);
              return result;
          }) {
        s_before = std::move(before);
        s_after = std::move(after);
        s_real = m_patch.Original();
    }

private:
    static inline Result(WINAPI* s_real)(Arguments...) = nullptr;
    static inline Seen s_before, s_after;
    ImportPatch<Result(WINAPI*)(Arguments...)> m_patch;
};

// The system's own function. For replacements of calls that the test program itself makes, as it does when the product
// is linked into it: there a plain call would come back to the replacement.
template <class Function>
Function* SystemFunction(Function*, const wchar_t* dll, const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(LoadedModule(dll), name)));
}
