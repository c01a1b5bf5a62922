#include "support/ScopedRegistryKey.h"

#include <cstring>
#include <stdexcept>

namespace {

void Check(LSTATUS status, const char* what) {
    if (status != ERROR_SUCCESS) throw std::runtime_error(std::string(what) + ": error " + std::to_string(status));
}

HKEY Create(HKEY parent, std::wstring_view path, DWORD options) {
    HKEY key = nullptr;
    const std::wstring name(path);
    Check(RegCreateKeyExW(parent, name.c_str(), 0, nullptr, options, KEY_ALL_ACCESS, nullptr, &key, nullptr),
          "creating a key");
    return key;
}

std::wstring UniquePath() {
    static int s_count = 0;
    return L"Software\\RegistryRulesTest-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++s_count);
}

// Empty when the whole path exists.
std::wstring TopmostMissing(HKEY root, const std::wstring& path) {
    for (size_t end = 0; end != path.npos;) {
        end = path.find(L'\\', end + 1);
        HKEY key = nullptr;
        if (RegOpenKeyExW(root, path.substr(0, end).c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
            return path.substr(0, end);
        RegCloseKey(key);
    }
    return {};
}

}  // namespace

ScopedRegistryKey::ScopedRegistryKey(HKEY root, DWORD options)
    : m_root(root), m_options(options), m_path(UniquePath()), m_created(m_path), m_key(Create(root, m_path, options)) {}

ScopedRegistryKey::ScopedRegistryKey(HKEY root, std::wstring path)
    : m_root(root),
      m_options(REG_OPTION_NON_VOLATILE),
      m_path(std::move(path)),
      m_created(TopmostMissing(root, m_path)),
      m_key(Create(root, m_path, m_options)) {}

ScopedRegistryKey::~ScopedRegistryKey() {
    for (const std::wstring& name : m_names) RegDeleteValueW(m_key, name.c_str());
    RegCloseKey(m_key);
    if (!m_created.empty()) RegDeleteTreeW(m_root, m_created.c_str());
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
    if (path.empty()) m_names.emplace_back(name);
    // The system adds a terminator to a text that lacks one when it sees it behind the data.
    std::vector<BYTE> guarded(bytes + 4, 0xff);
    if (bytes != 0) std::memcpy(guarded.data(), data, bytes);
    const HKEY key = path.empty() ? m_key : Create(m_key, path, m_options);
    const LSTATUS status =
        RegSetValueExW(key, std::wstring(name).c_str(), 0, type, guarded.data(), static_cast<DWORD>(bytes));
    if (key != m_key) RegCloseKey(key);
    Check(status, "setting a value");
}
