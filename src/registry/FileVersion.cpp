#include "registry/FileVersion.h"

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <memory>
#include <new>
#include <winver.h>

#include "registry/OfflineEnvironment.h"
#include "registry/RegistryHelper.h"
#include "registry/SystemRoot.h"

namespace {

CString s_moduleVersion;

CString FixedVersionText(const VS_FIXEDFILEINFO& info) {
    CString text;
    text.Format(L"%u.%u.%u.%u", HIWORD(info.dwFileVersionMS), LOWORD(info.dwFileVersionMS),
                HIWORD(info.dwFileVersionLS), LOWORD(info.dwFileVersionLS));
    return text;
}

void MoveToOfflineDrive(CString& path) {
    if (path.IsEmpty() || (path.GetAt(0) != L'C' && path.GetAt(0) != L'c') || !IsWinPE()) return;
    const WCHAR drive = FindOfflineWindowsDrive();
    if (drive) path.SetAt(0, drive);
}

CString VersionOfModule(HMODULE module) {
    CString text;
    WCHAR path[260];
    if (GetModuleFileNameW(module, path, static_cast<DWORD>(std::size(path))) != 0) GetFileVersionText(path, text);
    return text;
}

}  // namespace

DWORD GetFileVersionText(CString path, CString& text) {
    MoveToOfflineDrive(path);
    DWORD handle = 0;
    const DWORD size = GetFileVersionInfoSizeW(path, &handle);
    if (size == 0) return GetLastError();
    const std::unique_ptr<BYTE[]> block(new (std::nothrow) BYTE[size]);
    if (!block) return ERROR_OUTOFMEMORY;
    void* info = nullptr;
    UINT infoBytes = 0;
    if (!GetFileVersionInfoW(path, 0, size, block.get()) || !VerQueryValueW(block.get(), L"\\", &info, &infoBytes)) {
        return GetLastError();
    }
    // A damaged resource may name the record without holding it.
    if (infoBytes < sizeof(VS_FIXEDFILEINFO)) return ERROR_INVALID_DATA;
    text = FixedVersionText(*static_cast<const VS_FIXEDFILEINFO*>(info));
    return ERROR_SUCCESS;
}

int GetOfflineOsVersion(LPWSTR buffer, size_t size) {
    CRegistryHelper key;
    OpenVersionKey(key);
    CString text;
    GetFileVersionText(JoinPath(key.GetStringValue(L"SystemRoot"), L"system32\\kernel32.dll"), text);
    if (size != 0) {
        const size_t length = std::min(size - 1, static_cast<size_t>(text.GetLength()));
        std::wmemcpy(buffer, text, length);
        buffer[length] = L'\0';
    }
    return 1;
}

CString GetModuleVersionText() {
    if (s_moduleVersion.IsEmpty()) {
        constexpr DWORD kFlags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
        HMODULE module = nullptr;
        if (GetModuleHandleExW(kFlags, reinterpret_cast<LPCWSTR>(&GetModuleVersionText), &module)) {
            s_moduleVersion = VersionOfModule(module);
        }
    }
    if (s_moduleVersion.IsEmpty()) s_moduleVersion = VersionOfModule(AfxGetModuleState()->m_hCurrentInstanceHandle);
    return s_moduleVersion;
}
