#include "support/ScopedRegistryPlace.h"

#include <cstring>
#include <stdexcept>

namespace {

void Check(LSTATUS status, const char* what) {
    if (status != ERROR_SUCCESS) throw std::runtime_error(std::string(what) + ": error " + std::to_string(status));
}

// Empty when the whole path exists.
std::wstring TopmostMissing(HKEY root, const std::wstring& path) {
    for (size_t end = 0; end != path.npos;) {
        end = path.find(L'\\', end + 1);
        const std::wstring part = path.substr(0, end);
        HKEY key = nullptr;
        if (RegOpenKeyExW(root, part.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return part;
        RegCloseKey(key);
    }
    return {};
}

}  // namespace

ScopedRegistryPlace::ScopedRegistryPlace(HKEY root, const std::wstring& path)
    : m_root(root), m_created(TopmostMissing(root, path)) {
    Check(RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &m_key, nullptr),
          "creating a key");
}

ScopedRegistryPlace::~ScopedRegistryPlace() {
    for (const std::wstring& name : m_names) Remove(name.c_str());
    RegCloseKey(m_key);
    if (!m_created.empty()) RegDeleteTreeW(m_root, m_created.c_str());
}

void ScopedRegistryPlace::SetText(const wchar_t* name, std::wstring_view text, DWORD type) {
    const std::wstring terminated(text);
    SetData(name, type, terminated.c_str(), (terminated.size() + 1) * sizeof(wchar_t));
}

void ScopedRegistryPlace::SetData(const wchar_t* name, DWORD type, const void* data, size_t bytes) {
    m_names.emplace_back(name);
    // The system adds a terminator to a text that lacks one when it sees it behind the data.
    std::vector<BYTE> guarded(bytes + 4, 0xff);
    if (bytes != 0) std::memcpy(guarded.data(), data, bytes);
    Check(RegSetValueExW(m_key, name, 0, type, guarded.data(), static_cast<DWORD>(bytes)), "setting a value");
}
