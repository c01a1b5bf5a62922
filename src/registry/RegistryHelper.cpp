#include "registry/RegistryHelper.h"

#include <new>

#include "registry/RegistryException.h"

namespace {

// No memory is a failure like any other of this layer.
template <class T>
std::unique_ptr<T[]> AllocateZeroed(size_t count) {
    std::unique_ptr<T[]> buffer(new (std::nothrow) T[count]{});
    if (!buffer) ThrowRegistryException(ERROR_OUTOFMEMORY);
    return buffer;
}

std::unique_ptr<WCHAR[]> AllocateName(DWORD longestName) {
    return AllocateZeroed<WCHAR>(static_cast<size_t>(longestName) + 1);
}

// Reads a value of one type into a buffer of fixed size and returns the size of the value. A wrong type is named as
// such even when the value is also too large.
DWORD ReadFixed(HKEY key, LPCWSTR name, DWORD wantedType, void* buffer, DWORD size) {
    DWORD type = REG_NONE;
    const LONG status = RegQueryValueExW(key, name, nullptr, &type, static_cast<BYTE*>(buffer), &size);
    if (status == ERROR_SUCCESS || status == ERROR_MORE_DATA) {
        if (type != wantedType) ThrowRegistryException(ERROR_INVALID_DATATYPE);
    }
    CheckRegistryStatus(status);
    return size;
}

}  // namespace

CRegistryHelper::CRegistryHelper(HKEY hive, const CString& path, REGSAM access, DWORD nativeViewOnly)
    : m_nativeViewOnly(nativeViewOnly) {
    OpenOrCreate(hive, path, access, nativeViewOnly);
}

CRegistryHelper::CRegistryHelper(HKEY hive, LPCWSTR path, REGSAM access, DWORD nativeViewOnly)
    : CRegistryHelper(hive, CString(path), access, nativeViewOnly) {}

CRegistryHelper::CRegistryHelper(const CRegistryHelper& other)
    : CRegKey(other.m_pTM), m_nativeViewOnly(other.m_nativeViewOnly) {
    ThrowRegistryException(ERROR_INVALID_OPERATION);
}

CRegistryHelper& CRegistryHelper::operator=(const CRegistryHelper&) {
    ThrowRegistryException(ERROR_INVALID_OPERATION);
}

void CRegistryHelper::OpenOrCreate(HKEY hive, const CString& path, REGSAM access, DWORD nativeViewOnly) {
    m_nativeViewOnly = nativeViewOnly;
    LONG status = OpenRedirected(hive, path, access);
    if (status == ERROR_FILE_NOT_FOUND && (access & (KEY_SET_VALUE | KEY_CREATE_SUB_KEY)) != 0) {
        status = CreateRedirected(hive, path, access);
    }
    CheckRegistryStatus(status);
}

LONG CRegistryHelper::OpenRedirected(HKEY hive, CString path, REGSAM access) {
    RewritePath(hive, path, access, m_nativeViewOnly);
    return Open(hive, path, access);
}

LONG CRegistryHelper::CreateRedirected(HKEY hive, CString path, REGSAM access) {
    RewritePath(hive, path, access, m_nativeViewOnly);
    return Create(hive, path, nullptr, REG_OPTION_NON_VOLATILE, access);
}

bool CRegistryHelper::ValueExists(LPCWSTR name) const {
    return RegQueryValueExW(m_hKey, name, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

CString CRegistryHelper::GetStringValue(LPCWSTR name) const {
    DWORD type = REG_NONE;
    DWORD bytes = 0;
    const LONG status = RegQueryValueExW(m_hKey, name, nullptr, &type, nullptr, &bytes);
    if (status == ERROR_FILE_NOT_FOUND) return {};
    CheckRegistryStatus(status);
    if (type != REG_SZ && type != REG_EXPAND_SZ) ThrowRegistryException(ERROR_INVALID_DATATYPE);
    // One character more for the terminator that the value may lack, and one for the half character of an odd size.
    const auto text = AllocateZeroed<WCHAR>(bytes / sizeof(WCHAR) + 2);
    CheckRegistryStatus(RegQueryValueExW(m_hKey, name, nullptr, &type, reinterpret_cast<BYTE*>(text.get()), &bytes));
    return text.get();
}

bool CRegistryHelper::GetBoolValue(LPCWSTR name) const {
    return GetDwordValue(name) != 0;
}

DWORD CRegistryHelper::GetDwordValue(LPCWSTR name) const {
    DWORD value = 0;
    ReadFixed(m_hKey, name, REG_DWORD, &value, sizeof(value));
    return value;
}

LONGLONG CRegistryHelper::GetInt64Value(LPCWSTR name) const {
    LONGLONG value = 0;
    if (ReadFixed(m_hKey, name, REG_BINARY, &value, sizeof(value)) != sizeof(value)) {
        ThrowRegistryException(ERROR_INVALID_DATATYPE);
    }
    return value;
}

void CRegistryHelper::GetPlacementValue(LPCWSTR name, WINDOWPLACEMENT& placement) const {
    WINDOWPLACEMENT value{};
    static_assert(sizeof(value) == 44);
    ReadFixed(m_hKey, name, REG_BINARY, &value, sizeof(value));
    placement = value;
}

std::unique_ptr<BYTE[]> CRegistryHelper::GetBinaryValue(LPCWSTR name, DWORD* size) const {
    if (size) *size = 0;
    DWORD type = REG_NONE;
    DWORD bytes = 0;
    CheckRegistryStatus(RegQueryValueExW(m_hKey, name, nullptr, &type, nullptr, &bytes));
    if (type != REG_BINARY) ThrowRegistryException(ERROR_INVALID_DATATYPE);
    if (bytes == 0) return nullptr;
    auto buffer = AllocateZeroed<BYTE>(bytes);
    CheckRegistryStatus(RegQueryValueExW(m_hKey, name, nullptr, &type, buffer.get(), &bytes));
    if (size) *size = bytes;
    return buffer;
}

void CRegistryHelper::SetBoolValue(LPCWSTR name, bool value) {
    CheckRegistryStatus(SetDWORDValue(name, value ? 1 : 0));
}

void CRegistryHelper::SetInt64Value(LPCWSTR name, LONGLONG value) {
    CheckRegistryStatus(SetBinaryValue(name, &value, sizeof(value)));
}

void CRegistryHelper::SetPlacementValue(LPCWSTR name, const WINDOWPLACEMENT& placement) {
    CheckRegistryStatus(SetBinaryValue(name, &placement, sizeof(placement)));
}

void CRegistryHelper::GetSubKeyInfo(DWORD& count, DWORD& longestName) const {
    CheckRegistryStatus(RegQueryInfoKeyW(m_hKey, nullptr, nullptr, nullptr, &count, &longestName, nullptr, nullptr,
                                         nullptr, nullptr, nullptr, nullptr));
}

void CRegistryHelper::GetValueInfo(DWORD& count, DWORD& longestName, DWORD& longestData) const {
    CheckRegistryStatus(RegQueryInfoKeyW(m_hKey, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &count,
                                         &longestName, &longestData, nullptr, nullptr));
}

void CRegistryHelper::EnumSubKeys(CStringList& names) const {
    names.RemoveAll();
    DWORD count = 0;
    DWORD longestName = 0;
    GetSubKeyInfo(count, longestName);
    if (count == 0) return;
    const auto name = AllocateName(longestName);
    for (DWORD index = 0; index < count; ++index) {
        DWORD length = longestName + 1;
        const LONG status = RegEnumKeyExW(m_hKey, index, name.get(), &length, nullptr, nullptr, nullptr, nullptr);
        if (status != ERROR_SUCCESS) continue;
        if (length == 0) ThrowRegistryException(ERROR_INVALID_DATA);
        names.AddTail(name.get());
    }
}

void CRegistryHelper::EnumValue(DWORD index, DWORD longestName, CString& name, DWORD& type) const {
    if (longestName == 0) ThrowRegistryException(ERROR_INVALID_DATA);
    const auto buffer = AllocateName(longestName);
    DWORD length = longestName + 1;
    CheckRegistryStatus(RegEnumValueW(m_hKey, index, buffer.get(), &length, nullptr, &type, nullptr, nullptr));
    name = buffer.get();
}
