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

// The module of that file name; throws std::runtime_error when it is not loaded.
HMODULE LoadedModule(const wchar_t* fileName);

// The place where the module keeps the address of an imported function, or null when it imports none of that name.
void** FindImportSlot(HMODULE module, const char* function);

// What ImportPatch does, without the function's type.
class ImportSlot {
public:
    // Throws std::runtime_error when the module does not import it: a module has a slot only for what its code calls.
    ImportSlot(HMODULE module, const char* function, void* replacement);
    ~ImportSlot();
    ImportSlot(const ImportSlot&) = delete;
    ImportSlot& operator=(const ImportSlot&) = delete;

    void* Original() const { return m_original; }

private:
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

// The system's own function. For replacements of calls that the test program itself makes, as it does when the product
// is linked into it: there a plain call would come back to the replacement.
template <class Function>
Function* SystemFunction(Function*, const wchar_t* dll, const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(LoadedModule(dll), name)));
}
