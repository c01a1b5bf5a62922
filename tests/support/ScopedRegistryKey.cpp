#include "support/ScopedRegistryKey.h"

#include <atomic>
#include <stdexcept>

namespace {

void Check(LSTATUS status, const char* what) {
    if (status != ERROR_SUCCESS) throw std::runtime_error(std::string(what) + ": error " + std::to_string(status));
}

HKEY Create(HKEY parent, std::wstring_view path, DWORD options) {
    HKEY key = nullptr;
    Check(RegCreateKeyExW(parent, std::wstring(path).c_str(), 0, nullptr, options, KEY_ALL_ACCESS, nullptr, &key,
                          nullptr),
          "creating a key");
    return key;
}

std::wstring UniqueName() {
    static std::atomic<int> s_count{0};
    return L"RegistryRulesTest-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++s_count);
}

}  // namespace

ScopedRegistryKey::ScopedRegistryKey(HKEY root, DWORD options)
    : m_root(root), m_options(options), m_name(UniqueName()), m_key(Create(root, Path(), options)) {}

ScopedRegistryKey::~ScopedRegistryKey() {
    RegCloseKey(m_key);
    RegDeleteTreeW(m_root, Path().c_str());
}

void ScopedRegistryKey::AddKey(std::wstring_view path) {
    RegCloseKey(Create(m_key, path, m_options));
}

void ScopedRegistryKey::SetText(std::wstring_view path, std::wstring_view name, std::wstring_view text, DWORD type) {
    const std::wstring terminated(text);
    SetData(path, name, type, terminated.c_str(), (terminated.size() + 1) * sizeof(wchar_t));
}

void ScopedRegistryKey::SetData(std::wstring_view path, std::wstring_view name, DWORD type, const void* data,
                                size_t bytes) {
    const HKEY key = path.empty() ? m_key : Create(m_key, path, m_options);
    const LSTATUS status = RegSetValueExW(key, std::wstring(name).c_str(), 0, type, static_cast<const BYTE*>(data),
                                          static_cast<DWORD>(bytes));
    if (key != m_key) RegCloseKey(key);
    Check(status, "setting a value");
}
