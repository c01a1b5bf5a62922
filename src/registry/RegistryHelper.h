// The toolkit's one road to the registry: the same caller code works on a running system, on one where it acts for
// another user, and on a preinstallation boot, where the installed system's hives are mounted beside the boot image's
// own.
//
//     CRegistryHelper key(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Example", KEY_READ);    // throws when it does not open
//     const CString name = key.GetStringValue(L"Name");                          // empty when there is no such value
//
// Failures throw a heap CRegistryException with the Win32 status, unless a member says otherwise.
#pragma once

#include <afxcoll.h>

#include <atlbase.h>
#include <memory>

struct IStream;

class CRegistryHelper : public CRegKey {
public:
    // `nativeViewOnly` not 0 forbids the redirection to choose the 32-bit view of an offline installation.
    explicit CRegistryHelper(DWORD nativeViewOnly = 0) : m_nativeViewOnly(nativeViewOnly) {}
    // As OpenOrCreate.
    CRegistryHelper(HKEY hive, const CString& path, REGSAM access, DWORD nativeViewOnly = 0);
    CRegistryHelper(HKEY hive, LPCWSTR path, REGSAM access, DWORD nativeViewOnly = 0);
    // Copying is a fault: both throw ERROR_INVALID_OPERATION.
    CRegistryHelper(const CRegistryHelper& other);
    CRegistryHelper& operator=(const CRegistryHelper& other);
    virtual ~CRegistryHelper() = default;

    // Opens the key; one that is missing is created when `access` allows to set values or to create keys. Takes the
    // flag over.
    void OpenOrCreate(HKEY hive, const CString& path, REGSAM access, DWORD nativeViewOnly);

    // Open and Create with the path rewritten for the user override and the offline hives. They return the status and
    // throw nothing. A key that was open stays so until the new one has opened.
    LONG OpenRedirected(HKEY hive, CString path, REGSAM access);
    LONG CreateRedirected(HKEY hive, CString path, REGSAM access);

    // False for a missing value, and also when the query fails; throws nothing.
    bool ValueExists(LPCWSTR name) const;
    bool ValueExists(const CString& name) const { return ValueExists(name.GetString()); }

    // The text up to its first zero, with or without a terminator in the registry; REG_EXPAND_SZ is not expanded. Empty
    // for a missing value, ERROR_INVALID_DATATYPE for any other type.
    CString GetStringValue(LPCWSTR name) const;
    CString GetStringValue(const CString& name) const { return GetStringValue(name.GetString()); }

    // The others throw ERROR_FILE_NOT_FOUND for a missing value, ERROR_INVALID_DATATYPE for a value of another type
    // than they set, and ERROR_MORE_DATA for one that is larger. Bytes that a value lacks read 0.
    bool GetBoolValue(LPCWSTR name) const;
    DWORD GetDwordValue(LPCWSTR name) const;
    // Kept as 8 bytes of REG_BINARY; ERROR_INVALID_DATATYPE for fewer.
    LONGLONG GetInt64Value(LPCWSTR name) const;
    void GetPlacementValue(LPCWSTR name, WINDOWPLACEMENT& placement) const;
    // REG_BINARY of any size. The size in bytes goes to `size`, if that is given; it is 0 after a failure. Null for a
    // value of size 0.
    std::unique_ptr<BYTE[]> GetBinaryValue(LPCWSTR name, DWORD* size = nullptr) const;

    void SetBoolValue(LPCWSTR name, bool value);
    void SetInt64Value(LPCWSTR name, LONGLONG value);
    void SetPlacementValue(LPCWSTR name, const WINDOWPLACEMENT& placement);

    // Lengths are in characters without a terminator, that of the data in bytes.
    void GetSubKeyInfo(DWORD& count, DWORD& longestName) const;
    void GetValueInfo(DWORD& count, DWORD& longestName, DWORD& longestData) const;

    // Fills the list with the names of the subkeys. A key that disappears during the walk is left out.
    void EnumSubKeys(CStringList& names) const;
    // Name and registry type of one value; `longestName` as GetValueInfo gives it. ERROR_INVALID_DATA when that is 0.
    void EnumValue(DWORD index, DWORD longestName, CString& name, DWORD& type) const;

    // The operations below take a whole path and rewrite it for the user override and the offline hives.

    // Whether the key opens for reading; throws nothing.
    static bool KeyExists(HKEY hive, const CString& path, DWORD nativeViewOnly = 0);
    // Creates a key below a hive or an open key; one that is there is fine. `keyClass` may be null; `options` are those
    // of RegCreateKeyExW.
    static void CreateChildKey(HKEY parent, const CString& subkey, LPCWSTR keyClass, DWORD options);
    // Creates the key if it does not exist, then the child below it. `view64` asks for the 64-bit view.
    static void EnsureKeyAndChild(HKEY hive, const CString& path, const CString& child, LPCWSTR keyClass, DWORD options,
                                  bool view64);
    // The value as a stream, which the caller releases; null on failure. `mode` is that of SHOpenRegStream2W.
    static IStream* OpenStream(HKEY hive, CString path, LPCWSTR valueName, DWORD mode);
    // Deletes a child that has no subkeys. The parent key stays open for the life of the process.
    static void DeleteChildKey(HKEY hive, CString path, const CString& child);

    // With an override set, turns a path under HKEY_CURRENT_USER into that user's under HKEY_USERS.
    static void ResolveUserHive(HKEY& hive, CString& path);
    // The name of a key under HKEY_USERS, commonly a SID, that stands for the current user in the whole process; empty
    // for none.
    static void SetUserHiveOverride(const CString& user);
    static CString GetUserHiveOverride();

    // Splits "HKEY_USERS\a\b" into the hive and "a\b". False, and nothing changed, without a backslash or with nothing
    // before it. An unknown hive name leaves `hive` as it was and is no failure.
    static bool SplitRegistryPath(const CString& full, HKEY& hive, CString& subkey);

private:
    static void RewritePath(HKEY& hive, CString& path, REGSAM access, DWORD nativeViewOnly);

    DWORD m_nativeViewOnly;
};
