#include "registry/SystemRoot.h"

#include "registry/HiveRedirection.h"
#include "registry/RegistryException.h"
#include "registry/RegistryHelper.h"

namespace {

bool s_rootKnown = false;
CString s_root;

}  // namespace

CString GetSystemRootPath() {
    if (!s_rootKnown) {
        CRegistryHelper key;
        OpenVersionKey(key);
        s_root = key.GetStringValue(L"SystemRoot");
        s_rootKnown = true;
    }
    return s_root;
}

void OpenVersionKey(CRegistryHelper& key) {
    CString path = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
    RedirectToOfflineHive(path, KEY_READ, 0);
    CheckRegistryStatus(key.Open(HKEY_LOCAL_MACHINE, path, KEY_READ));
}

CString JoinPath(const CString& folder, LPCWSTR file) {
    const bool ends = !folder.IsEmpty() && folder.GetAt(folder.GetLength() - 1) == L'\\';
    return ends ? folder + file : folder + L"\\" + file;
}
