#include "support/ScopedRegistryPlace.h"

#include <cstring>
#include <stdexcept>

namespace {

void Check(LSTATUS status, const char* what) {
    if (status != ERROR_SUCCESS) throw std::runtime_error(std::string(what) + ": error " + std::to_string(status));
}

bool Exists(HKEY root, const std::wstring& path) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
}

// Empty when the whole path exists.
std::wstring TopmostMissing(HKEY root, const std::wstring& path) {
    for (size_t end = 0; end != path.npos;) {
        end = path.find(L'\\', end + 1);
        const std::wstring part = path.substr(0, end);
        if (!Exists(root, part)) return part;
    }
    return {};
}

}  // namespace

ScopedRegistryPlace::ScopedRegistryPlace(HKEY root, std::wstring_view path)
    : m_root(root), m_created(TopmostMissing(root, std::wstring(path))) {
    Check(RegCreateKeyExW(root, std::wstring(path).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &m_key, nullptr),
          "creating a key");
}

ScopedRegistryPlace::~ScopedRegistryPlace() {
    for (auto value = m_earlier.rbegin(); value != m_earlier.rend(); ++value) {
        if (value->type) {
            RegSetValueExW(m_key, value->name.c_str(), 0, *value->type, value->data.data(),
                           static_cast<DWORD>(value->data.size()));
        } else {
            RegDeleteValueW(m_key, value->name.c_str());
        }
    }
    RegCloseKey(m_key);
    if (!m_created.empty()) RegDeleteTreeW(m_root, m_created.c_str());
}

void ScopedRegistryPlace::SetText(const wchar_t* name, std::wstring_view text, DWORD type) {
    const std::wstring terminated(text);
    SetData(name, type, terminated.c_str(), (terminated.size() + 1) * sizeof(wchar_t));
}

void ScopedRegistryPlace::SetData(const wchar_t* name, DWORD type, const void* data, size_t bytes) {
    Remember(name);
    // The system adds a terminator to a text that lacks one when it sees it behind the data.
    std::vector<BYTE> guarded(bytes + 4, 0xff);
    if (bytes != 0) std::memcpy(guarded.data(), data, bytes);
    Check(RegSetValueExW(m_key, name, 0, type, guarded.data(), static_cast<DWORD>(bytes)), "setting a value");
}

void ScopedRegistryPlace::Remove(const wchar_t* name) {
    Remember(name);
    RegDeleteValueW(m_key, name);
}

void ScopedRegistryPlace::Remember(const wchar_t* name) {
    Earlier value{name, std::nullopt, {}};
    DWORD type = REG_NONE;
    DWORD bytes = 0;
    if (RegQueryValueExW(m_key, name, nullptr, &type, nullptr, &bytes) == ERROR_SUCCESS) {
        value.type = type;
        value.data.resize(bytes);
        Check(RegQueryValueExW(m_key, name, nullptr, nullptr, value.data.data(), &bytes), "reading a value");
    }
    m_earlier.push_back(std::move(value));
}
