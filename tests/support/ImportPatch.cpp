#include "support/ImportPatch.h"

#include <cstring>
#include <stdexcept>
#include <string>

#include "support/Narrow.h"

namespace {

void Write(void** slot, void* value) {
    DWORD protection = 0;
    VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
    *slot = value;
    VirtualProtect(slot, sizeof *slot, protection, &protection);
}

}  // namespace

HMODULE LoadedModule(const wchar_t* fileName) {
    const HMODULE module = GetModuleHandleW(fileName);
    if (module == nullptr) throw std::runtime_error("not loaded: " + Narrow(fileName));
    return module;
}

void** FindImportSlot(HMODULE module, const char* function) {
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

ImportSlot::ImportSlot(HMODULE module, const char* function, void* replacement)
    : m_slot(FindImportSlot(module, function)) {
    if (m_slot == nullptr) throw std::runtime_error(std::string("not imported: ") + function);
    m_original = *m_slot;
    Write(m_slot, replacement);
}

ImportSlot::~ImportSlot() {
    Write(m_slot, m_original);
}
