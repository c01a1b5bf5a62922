#include "support/ReparseVolume.h"

#include <algorithm>
#include <cstring>
#include <cwctype>
#include <map>

namespace {

constexpr DWORD kSet = 0x900A4, kGet = 0x900A8, kDelete = 0x900AC;
constexpr DWORD kTag = 0xA0000003;

std::map<std::wstring, std::vector<std::byte>> s_links;  // by full path in small letters, without prefix
std::map<HANDLE, std::wstring> s_handles;                // what was opened; a number that is used again is overwritten
std::map<HANDLE, std::wstring> s_searches;               // the directories that are being listed

std::wstring KeyOf(std::wstring path) {
    if (path.starts_with(L"\\\\?\\")) path.erase(0, 4);
    std::transform(path.begin(), path.end(), path.begin(), [](wchar_t c) { return static_cast<wchar_t>(towlower(c)); });
    while (path.ends_with(L'\\')) path.pop_back();
    return path;
}

std::wstring KeyOf(HANDLE handle) {
    const auto opened = s_handles.find(handle);
    return opened == s_handles.end() ? std::wstring() : opened->second;
}

DWORD AttributeOf(const std::wstring& key) {
    return s_links.contains(key) ? FILE_ATTRIBUTE_REPARSE_POINT : 0;
}

BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

DWORD WINAPI Attributes(LPCWSTR path) {
    const DWORD attributes = SystemFunction(&GetFileAttributesW, L"kernel32.dll", "GetFileAttributesW")(path);
    return attributes == INVALID_FILE_ATTRIBUTES ? attributes : attributes | AttributeOf(KeyOf(path));
}

// Where the names in the bytes say that the target is.
std::wstring TargetIn(const std::vector<std::byte>& bytes) {
    WORD numbers[2];
    std::memcpy(numbers, bytes.data() + 8, sizeof(numbers));
    std::wstring target(numbers[1] / sizeof(wchar_t), L'\0');
    std::memcpy(target.data(), bytes.data() + 16 + numbers[0], target.size() * sizeof(wchar_t));
    return target.substr(4);
}

HANDLE WINAPI Create(LPCWSTR path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security, DWORD disposition,
                     DWORD flags, HANDLE pattern) {
    const auto link = s_links.find(KeyOf(path));
    const bool isFollowed = link != s_links.end() && (flags & FILE_FLAG_OPEN_REPARSE_POINT) == 0;
    const std::wstring opened = isFollowed ? TargetIn(link->second) : path;
    const auto create = SystemFunction(&CreateFileW, L"kernel32.dll", "CreateFileW");
    const HANDLE handle = create(opened.c_str(), access, share, security, disposition, flags, pattern);
    if (handle != INVALID_HANDLE_VALUE) s_handles[handle] = KeyOf(opened);
    return handle;
}

BOOL SetLink(const std::wstring& key, const std::byte* input, DWORD size) {
    DWORD tag = 0;
    WORD length = 0;
    if (size < 8) return Fail(ERROR_INVALID_PARAMETER);
    std::memcpy(&tag, input, sizeof(tag));
    std::memcpy(&length, input + 4, sizeof(length));
    if (tag != kTag || length + 8u != size || size > 0x4000) return Fail(ERROR_INVALID_REPARSE_DATA);
    s_links[key].assign(input, input + size);
    return TRUE;
}

BOOL DeleteLink(const std::wstring& key, const std::byte* input, DWORD size) {
    DWORD tag = 0;
    if (size != 8 && size != 24) return Fail(ERROR_INVALID_PARAMETER);
    std::memcpy(&tag, input, sizeof(tag));
    if (std::any_of(input + 4, input + size, [](std::byte b) { return b != std::byte{0}; })) {
        return Fail(ERROR_INVALID_REPARSE_DATA);
    }
    if (tag != kTag) return Fail(ERROR_REPARSE_TAG_MISMATCH);
    return s_links.erase(key) != 0 ? TRUE : Fail(ERROR_NOT_A_REPARSE_POINT);
}

BOOL GetLink(const std::wstring& key, void* output, DWORD size, DWORD* got) {
    const auto link = s_links.find(key);
    if (link == s_links.end()) return Fail(ERROR_NOT_A_REPARSE_POINT);
    if (link->second.size() > size) return Fail(ERROR_MORE_DATA);
    std::memcpy(output, link->second.data(), link->second.size());
    *got = static_cast<DWORD>(link->second.size());
    return TRUE;
}

BOOL WINAPI Control(HANDLE handle, DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize, DWORD* got,
                    OVERLAPPED* overlapped) {
    const auto* const bytes = static_cast<const std::byte*>(input);
    if (code == kSet) return SetLink(KeyOf(handle), bytes, inputSize);
    if (code == kDelete) return DeleteLink(KeyOf(handle), bytes, inputSize);
    if (code == kGet) return GetLink(KeyOf(handle), output, outputSize, got);
    const auto control = SystemFunction(&DeviceIoControl, L"kernel32.dll", "DeviceIoControl");
    return control(handle, code, input, inputSize, output, outputSize, got, overlapped);
}

BOOL WINAPI Information(HANDLE handle, BY_HANDLE_FILE_INFORMATION* info) {
    if (!SystemFunction(&GetFileInformationByHandle, L"kernel32.dll", "GetFileInformationByHandle")(handle, info)) {
        return FALSE;
    }
    info->dwFileAttributes |= AttributeOf(KeyOf(handle));
    return TRUE;
}

BOOL WINAPI Remove(LPCWSTR path) {
    if (!SystemFunction(&RemoveDirectoryW, L"kernel32.dll", "RemoveDirectoryW")(path)) return FALSE;
    s_links.erase(KeyOf(path));
    return TRUE;
}

HANDLE WINAPI FindFirst(LPCWSTR pattern, WIN32_FIND_DATAW* data) {
    const HANDLE search = SystemFunction(&FindFirstFileW, L"kernel32.dll", "FindFirstFileW")(pattern, data);
    if (search == INVALID_HANDLE_VALUE) return search;
    const std::wstring key = KeyOf(pattern);
    s_searches[search] = key.substr(0, key.rfind(L'\\') + 1);
    data->dwFileAttributes |= AttributeOf(s_searches[search] + KeyOf(data->cFileName));
    return search;
}

BOOL WINAPI FindNext(HANDLE search, WIN32_FIND_DATAW* data) {
    if (!SystemFunction(&FindNextFileW, L"kernel32.dll", "FindNextFileW")(search, data)) return FALSE;
    const auto directory = s_searches.find(search);
    if (directory != s_searches.end()) {
        data->dwFileAttributes |= AttributeOf(directory->second + KeyOf(data->cFileName));
    }
    return TRUE;
}

bool VolumeHasLinks() {
    WCHAR temporary[MAX_PATH];
    DWORD flags = 0;
    GetTempPathW(MAX_PATH, temporary);
    const WCHAR root[] = {temporary[0], L':', L'\\', L'\0'};
    GetVolumeInformationW(root, nullptr, 0, nullptr, nullptr, &flags, nullptr, 0);
    return (flags & FILE_SUPPORTS_REPARSE_POINTS) != 0;
}

}  // namespace

// A module imports only what it calls.
template <class Function>
void ReparseVolume::Replace(HMODULE module, const char* name, Function replacement) {
    if (FindImportSlot(module, name) == nullptr) return;
    m_slots.push_back(std::make_unique<ImportSlot>(module, name, reinterpret_cast<void*>(replacement)));
}

ReparseVolume::ReparseVolume() : m_isReal(VolumeHasLinks()) {
    if (m_isReal) return;
    const HMODULE program = GetModuleHandleW(nullptr);
    Replace(program, "GetFileAttributesW", &Attributes);
    Replace(program, "CreateFileW", &Create);
    Replace(program, "DeviceIoControl", &Control);
    Replace(program, "GetFileInformationByHandle", &Information);
    Replace(program, "RemoveDirectoryW", &Remove);
    for (const HMODULE module : {program, LoadedModule(L"framework.dll")}) {
        Replace(module, "FindFirstFileW", &FindFirst);
        Replace(module, "FindNextFileW", &FindNext);
    }
}

ReparseVolume::~ReparseVolume() {
    s_links.clear();
    s_handles.clear();
    s_searches.clear();
}

std::vector<std::byte> ReparseVolume::BytesOf(const std::wstring& path) {
    const auto link = s_links.find(KeyOf(path));
    return link == s_links.end() ? std::vector<std::byte>() : link->second;
}

void ReparseVolume::SetBytes(const std::wstring& path, std::vector<std::byte> bytes) {
    s_links[KeyOf(path)] = std::move(bytes);
}
