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

std::wstring FileNameOf(HMODULE module) {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    return path.substr(path.find_last_of(L'\\') + 1);
}

}  // namespace

HMODULE LoadedModule(const wchar_t* fileName) {
    const HMODULE module = GetModuleHandleW(fileName);
    if (module == nullptr) throw std::runtime_error("not loaded: " + Narrow(fileName));
    return module;
}

void** FindImportSlot(HMODULE module, const char* function) {
    const auto base = reinterpret_cast<BYTE*>(module);
    const auto dosHeader = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto header = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dosHeader->e_lfanew);
    const DWORD imports = header->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    if (imports == 0) return nullptr;

    for (auto dll = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports); dll->Name != 0; ++dll) {
        auto name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + dll->OriginalFirstThunk);
        auto address = reinterpret_cast<IMAGE_THUNK_DATA*>(base + dll->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++address) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
            const auto entry = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(entry->Name), function) == 0)
                return reinterpret_cast<void**>(&address->u1.Function);
        }
    }
    return nullptr;
}

ImportSlot::ImportSlot(HMODULE module, const char* function, void* replacement)
    : m_slot(FindImportSlot(module, function)), m_original(nullptr) {
    if (m_slot == nullptr) throw std::runtime_error(Narrow(FileNameOf(module)) + " does not import " + function);
    m_original = *m_slot;
    Write(m_slot, replacement);
}

ImportSlot::~ImportSlot() {
    Write(m_slot, m_original);
}
