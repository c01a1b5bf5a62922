#include "registry/SystemRoot.h"

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
    key.OpenOrCreate(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", KEY_READ, 0);
}

CString JoinPath(const CString& folder, LPCWSTR file) {
    const bool ends = !folder.IsEmpty() && folder.GetAt(folder.GetLength() - 1) == L'\\';
    return ends ? folder + file : folder + L"\\" + file;
}
