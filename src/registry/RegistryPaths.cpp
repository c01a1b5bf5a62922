// The whole-path operations of CRegistryHelper, and the rewriting that they share.
#include <objidl.h>
#include <shlwapi.h>

#include "helpers/TextView.h"
#include "registry/HivePath.h"
#include "registry/HiveRedirection.h"
#include "registry/RegistryException.h"
#include "registry/RegistryHelper.h"

namespace {

CString g_userHiveOverride;

// Predefined handles are 32-bit numbers that are sign-extended.
HKEY HiveHandle(RegistryHive hive) {
    return reinterpret_cast<HKEY>(static_cast<LONG_PTR>(static_cast<LONG>(hive)));
}

}  // namespace

void CRegistryHelper::RewritePath(HKEY& hive, CString& path, REGSAM access, DWORD nativeViewOnly) {
    ResolveUserHive(hive, path);
    if (hive == HKEY_LOCAL_MACHINE) RedirectToOfflineHive(path, access, nativeViewOnly);
}

void CRegistryHelper::ResolveUserHive(HKEY& hive, CString& path) {
    if (g_userHiveOverride.IsEmpty() || hive != HKEY_CURRENT_USER) return;
    hive = HKEY_USERS;
    path = g_userHiveOverride + L"\\" + path;
}

void CRegistryHelper::SetUserHiveOverride(const CString& user) {
    g_userHiveOverride = user;
}

CString CRegistryHelper::GetUserHiveOverride() {
    return g_userHiveOverride;
}

bool CRegistryHelper::KeyExists(HKEY hive, const CString& path, DWORD nativeViewOnly) {
    CRegistryHelper key(nativeViewOnly);
    return key.OpenRedirected(hive, path, KEY_READ) == ERROR_SUCCESS;
}

void CRegistryHelper::CreateChildKey(HKEY parent, const CString& subkey, LPCWSTR keyClass, DWORD options) {
    CString path = subkey;
    RewritePath(parent, path, KEY_CREATE_SUB_KEY, 0);
    CRegKey child;
    CheckRegistryStatus(child.Create(parent, path, const_cast<LPWSTR>(keyClass), options, KEY_CREATE_SUB_KEY));
}

void CRegistryHelper::EnsureKeyAndChild(HKEY hive, const CString& path, const CString& child, LPCWSTR keyClass,
                                        DWORD options, bool view64) {
    const REGSAM access = KEY_WRITE | (view64 ? KEY_WOW64_64KEY : 0);
    CRegistryHelper key(view64 ? 1 : 0);
    if (KeyExists(hive, path, view64 ? 1 : 0)) {
        CheckRegistryStatus(key.OpenRedirected(hive, path, access));
    } else {
        CString rewritten = path;
        RewritePath(hive, rewritten, access, view64 ? 1 : 0);
        CheckRegistryStatus(key.Create(hive, rewritten, nullptr, options, access));
    }
    CreateChildKey(key, child, keyClass, options);
}

IStream* CRegistryHelper::OpenStream(HKEY hive, CString path, LPCWSTR valueName, DWORD mode) {
    RewritePath(hive, path, KEY_READ, 0);
    return SHOpenRegStream2W(hive, path, valueName, mode);
}

void CRegistryHelper::DeleteChildKey(HKEY hive, CString path, const CString& child) {
    RewritePath(hive, path, KEY_ALL_ACCESS, 0);
    HKEY parent = nullptr;
    CheckRegistryStatus(RegOpenKeyExW(hive, path, 0, KEY_ALL_ACCESS, &parent));
    // Not closed, on either way out, by design; a mounted hive that holds the parent can then not be unloaded.
    CheckRegistryStatus(RegDeleteKeyW(parent, child));
}

bool CRegistryHelper::SplitRegistryPath(const CString& full, HKEY& hive, CString& subkey) {
    const auto parts = SplitHivePath(ViewOf(full));
    if (!parts) return false;
    if (parts->hive) hive = HiveHandle(*parts->hive);
    subkey = TextOf(parts->subkey);
    return true;
}
