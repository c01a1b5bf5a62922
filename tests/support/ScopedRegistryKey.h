// A registry key that goes, with what the test put there, when the object does, also after a failure: either one of the
// test's own, or one at a path that the code under test reads or writes, such as the list of profiles.
#pragma once

#include <windows.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// All members throw std::runtime_error on failure. A path is below the key; keys on the way to it are created.
class ScopedRegistryKey {
public:
    // A unique key below `Software` of the root.
    explicit ScopedRegistryKey(HKEY root = HKEY_CURRENT_USER) : ScopedRegistryKey(root, UniquePath()) {}
    // The key at that path, created when missing; keys and values that were there before stay.
    ScopedRegistryKey(HKEY root, const std::wstring& path)
        : m_root(root), m_path(path), m_created(TopmostMissing(root, path)) {
        Check(RegCreateKeyW(root, path.c_str(), &m_key));
    }
    ~ScopedRegistryKey() {
        for (const std::wstring& name : m_names) RegDeleteValueW(m_key, name.c_str());
        RegCloseKey(m_key);
        if (!m_created.empty()) RegDeleteTreeW(m_root, m_created.c_str());
    }
    ScopedRegistryKey(const ScopedRegistryKey&) = delete;
    ScopedRegistryKey& operator=(const ScopedRegistryKey&) = delete;

    // Open for everything as long as the object lives; the object closes it.
    HKEY Key() const { return m_key; }
    // The path below the root, and its last element.
    const std::wstring& Path() const { return m_path; }
    std::wstring Name() const { return m_path.substr(m_path.find_last_of(L'\\') + 1); }

    void AddKey(const std::wstring& path) {
        HKEY key = nullptr;
        Check(RegCreateKeyW(m_key, path.c_str(), &key));
        RegCloseKey(key);
    }
    // Set a value of the key at a path.
    void SetData(const std::wstring& path, const std::wstring& name, DWORD type, const void* data, size_t bytes) {
        if (path.empty()) m_names.push_back(name);
        // The system adds a terminator to a text that lacks one when it sees it behind the data.
        std::vector<BYTE> guarded(bytes + 4, 0xff);
        if (bytes != 0) std::memcpy(guarded.data(), data, bytes);
        Check(RegSetKeyValueW(m_key, path.c_str(), name.c_str(), type, guarded.data(), static_cast<DWORD>(bytes)));
    }
    void SetText(const std::wstring& path, const std::wstring& name, std::wstring_view text, DWORD type = REG_SZ) {
        const std::wstring terminated(text);
        SetData(path, name, type, terminated.c_str(), (terminated.size() + 1) * sizeof(wchar_t));
    }
    void SetNumber(const std::wstring& path, const std::wstring& name, DWORD number) {
        SetData(path, name, REG_DWORD, &number, sizeof(number));
    }
    // The same for a value of the key itself.
    void SetText(const std::wstring& name, std::wstring_view text, DWORD type = REG_SZ) {
        SetText(L"", name, text, type);
    }
    void SetNumber(const std::wstring& name, DWORD number) { SetNumber(L"", name, number); }
    void Remove(const wchar_t* name) { RegDeleteValueW(m_key, name); }

private:
    static void Check(LSTATUS status) {
        if (status != ERROR_SUCCESS) throw std::runtime_error("key or value of a test: " + std::to_string(status));
    }
    static std::wstring UniquePath() {
        static int s_count = 0;
        return L"Software\\RegistryRulesTest-" + std::to_wstring(++s_count);
    }
    // Empty when the whole path exists.
    static std::wstring TopmostMissing(HKEY root, const std::wstring& path) {
        for (size_t end = 0; end != path.npos;) {
            end = path.find(L'\\', end + 1);
            HKEY key = nullptr;
            if (RegOpenKeyW(root, path.substr(0, end).c_str(), &key) != ERROR_SUCCESS) return path.substr(0, end);
            RegCloseKey(key);
        }
        return {};
    }

    HKEY m_root;
    std::wstring m_path;
    std::wstring m_created;  // the topmost key that was missing; empty for none
    HKEY m_key = nullptr;
    std::vector<std::wstring> m_names;  // of values that were set in the key itself
};
