// Gives users access to files: reads a file's security, adds entries to it in memory, and writes them back. On a volume
// that keeps no access lists all of it does nothing, and says that all is well:
//
//     CFileAcl acl(path);                              // throws when the security cannot be read
//     if (acl.AddFullAccessEntryToAcl(sid)) acl.Commit();
#pragma once

#include <afx.h>

#include <memory>

class CFileAcl {
public:
    // A heap CFileException: badPath with the system error -1 for an empty path, and with ERROR_INVALID_NAME for one
    // with a zero inside; genericException with the last error when the volume keeps access lists and the file's cannot
    // be read.
    explicit CFileAcl(const CString& path);
    virtual ~CFileAcl();
    CFileAcl(const CFileAcl&) = delete;
    CFileAcl& operator=(const CFileAcl&) = delete;

    // Asks the volume of the path; false also when it cannot be asked.
    bool VolumeSupportsAcls() const;
    // Reads owner and access list again; what was added and not committed is lost. On failure the object has none.
    bool ReadSecurity();

    // Adds an entry for all access, which files and directories below inherit. It is kept in memory until Commit, and a
    // further one adds to it. A failure is logged, the list stays as it was.
    bool AddFullAccessEntryToAcl(PSID sid);
    // Writes the access list and reads it back. The path goes to the system without the long-path prefix. A failure
    // costs the object its security: it then has none. False without security, too.
    bool Commit();
    // Takes the access list away on the volume, so that everybody may do everything. A failure changes nothing here.
    bool ApplyNullDacl();

    // Whether an entry of any kind names the SID. True without an access list, which lets everybody in.
    bool HasAceForSid(PSID sid) const;
    // False when no owner is known.
    bool IsOwnedByTrustedInstaller() const;

    bool SupportsAcls() const { return m_supportsAcls; }
    bool HasSecurity() const { return m_securityDescriptor != nullptr; }

    // A copy of the self-relative descriptor with another access list, which may be null for access by everybody.
    // False, and nothing in `newDescriptor`, on failure.
    static bool RebuildDescriptor(const void* selfRelative, std::unique_ptr<BYTE[]>& newDescriptor, PACL dacl);

private:
    bool LoadDacl();
    void ReleaseDacl();
    bool Adopt(std::unique_ptr<BYTE[]> descriptor);

    bool m_supportsAcls = false;
    bool m_ownsDacl = false;  // m_dacl is memory of its own, and not part of the descriptor
    CString m_path;
    PACL m_dacl = nullptr;
    std::unique_ptr<BYTE[]> m_securityDescriptor;
};
