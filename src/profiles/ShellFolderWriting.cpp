// The part of CShellFolderPathHelper that writes.
#include "profiles/ShellFolderKeys.h"
#include "profiles/ShellFolderPathHelper.h"
#include "registry/RegistryHelper.h"
#include "siblings/coresv/LogMethodEntryExit.h"

void CShellFolderPathHelper::WriteVistaAndLaterShellFoldersAt(const CString& root, const CString& base) {
    const CLogMethodEntryExit scope(L"CShellFolderPathHelper::WriteVistaAndLaterShellFoldersAt");
    WriteVistaAndLaterShellFolders(ShellFolderKey(root, kUserShellFolders), base);
    WriteVistaAndLaterShellFolders(ShellFolderKey(root, kShellFolders), base);
}

void CShellFolderPathHelper::WriteVistaAndLaterShellFolders(const CString& key, const CString& base) {
    const CLogMethodEntryExit scope(L"CShellFolderPathHelper::WriteVistaAndLaterShellFolders");
    CRegistryHelper folders(HKEY_USERS, key, KEY_WRITE);
    for (const ClassicFolder& folder : ClassicFolders()) folders.SetStringValue(folder.name, base + folder.below);
}

void CShellFolderPathHelper::WriteRedirectedFolderValues() const {
    const CLogMethodEntryExit scope(L"CShellFolderPathHelper::WriteRedirectedFolderValues");
    WriteShellFolderValuesToRegistry(ShellFolderKey(_userSid, kUserShellFolders));
    WriteShellFolderValuesToRegistry(ShellFolderKey(_userSid, kShellFolders));
}

void CShellFolderPathHelper::WriteShellFolderValuesToRegistry(const CString& key) const {
    const CLogMethodEntryExit scope(L"CShellFolderPathHelper::WriteShellFolderValuesToRegistry");
    Logger().LogVerboseMessageFormat(L"Writing to key %s", key.GetString());
    CRegistryHelper::CreateChildKey(HKEY_USERS, key, nullptr, REG_OPTION_NON_VOLATILE);
    CRegistryHelper folders(HKEY_USERS, key, KEY_READ | KEY_WRITE);
    for (const RedirectedFolder& folder : RedirectedFolders()) {
        const CString& text = Path(folder.path);
        const bool isDerived = *folder.below != L'\0';
        if (isDerived && text.IsEmpty()) continue;
        SetNonEmptyShellFolder(folders, folder.name, text + folder.below);
    }
}

void CShellFolderPathHelper::SetNonEmptyShellFolder(CRegistryHelper& key, const CString& name, const CString& text) {
    if (text.IsEmpty()) {
        Logger().LogVerboseMessageFormat(L"[CShellFolderPathHelper::SetNonEmptyShellFolder] Value %s is empty",
                                         name.GetString());
        return;
    }
    key.SetStringValue(name, text);
    Logger().LogVerboseMessageFormat(L"[CShellFolderPathHelper::SetNonEmptyShellFolder] Set value %s to %s",
                                     name.GetString(), text.GetString());
}
