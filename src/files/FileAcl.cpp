#include "files/FileAcl.h"

#include <aclapi.h>
#include <sddl.h>

#include <utility>

#include "files/LongPathFile.h"
#include "files/PathHelper.h"
#include "helpers/LocalMemory.h"
#include "siblings/coresv/LogMethodEntryExit.h"

namespace {

constexpr SECURITY_INFORMATION kOwnerAndDacl = OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;

// The calls here change nothing behind the pointer; they only lack the const.
PSECURITY_DESCRIPTOR Plain(const void* descriptor) {
    return const_cast<void*>(descriptor);
}

// The SID of an entry stands behind its head and its mask; an entry that names an object has more in between, and is
// then compared with what is there, as the systems of its time do.
PSID SidOf(void* entry) {
    return &static_cast<ACCESS_ALLOWED_ACE*>(entry)->SidStart;
}

// Whether the entry is long enough for the SID that it claims to hold.
bool HoldsSid(void* entry) {
    const auto* const head = static_cast<ACE_HEADER*>(entry);
    constexpr DWORD kBeforeSid = offsetof(ACCESS_ALLOWED_ACE, SidStart);
    constexpr DWORD kSidHead = 8;
    if (head->AceSize < kBeforeSid + kSidHead) return false;
    return kBeforeSid + GetSidLengthRequired(*GetSidSubAuthorityCount(SidOf(entry))) <= head->AceSize;
}

}  // namespace

CFileAcl::CFileAcl(const CString& path) : m_path(path) {
    if (path.IsEmpty()) AfxThrowFileException(CFileException::badPath, -1);
    if (LongPath::IsRefused(path)) AfxThrowFileException(CFileException::badPath, ERROR_INVALID_NAME, path);
    m_supportsAcls = VolumeSupportsAcls();
    if (m_supportsAcls && !ReadSecurity()) {
        AfxThrowFileException(CFileException::genericException, static_cast<LONG>(GetLastError()), path);
    }
}

CFileAcl::~CFileAcl() {
    ReleaseDacl();
}

bool CFileAcl::VolumeSupportsAcls() const {
    constexpr int kDriveRoot = 3;
    CString root;
    if (m_path.GetLength() <= kDriveRoot || CPathHelper::IsDrivePath(m_path)) {
        root = m_path.Left(kDriveRoot);
    } else if (CPathHelper::IsUncPath(m_path)) {
        root = CPathHelper::GetUncRoot(m_path) + L"\\";
    } else {
        return false;
    }
    DWORD flags = 0;
    return GetVolumeInformationW(root, nullptr, 0, nullptr, nullptr, &flags, nullptr, 0) &&
           (flags & FILE_PERSISTENT_ACLS) != 0;
}

bool CFileAcl::ReadSecurity() {
    ReleaseDacl();
    m_securityDescriptor.reset();
    const CString path = CPathHelper::MakeLongPath(m_path);
    DWORD size = 0;
    GetFileSecurityW(path, kOwnerAndDacl, nullptr, 0, &size);
    if (size == 0) return false;
    auto descriptor = std::make_unique<BYTE[]>(size);
    if (!GetFileSecurityW(path, kOwnerAndDacl, descriptor.get(), size, &size)) return false;
    if (Adopt(std::move(descriptor))) return true;
    m_securityDescriptor.reset();
    return false;
}

bool CFileAcl::Adopt(std::unique_ptr<BYTE[]> descriptor) {
    m_securityDescriptor = std::move(descriptor);
    return LoadDacl();
}

void CFileAcl::ReleaseDacl() {
    if (std::exchange(m_ownsDacl, false)) LocalFree(m_dacl);
    m_dacl = nullptr;
}

bool CFileAcl::LoadDacl() {
    ReleaseDacl();
    BOOL present = FALSE, defaulted = FALSE;
    if (GetSecurityDescriptorDacl(m_securityDescriptor.get(), &present, &m_dacl, &defaulted)) return true;
    m_dacl = nullptr;
    return false;
}

bool CFileAcl::AddFullAccessEntryToAcl(PSID sid) {
    const CLogMethodEntryExit scope(L"CFileAcl::AddFullAccessEntryToAcl");
    if (!m_supportsAcls) return true;
    EXPLICIT_ACCESSW access{};
    access.grfAccessPermissions = GENERIC_ALL;
    access.grfAccessMode = GRANT_ACCESS;
    access.grfInheritance = SUB_CONTAINERS_AND_OBJECTS_INHERIT;
    access.Trustee.MultipleTrusteeOperation = NO_MULTIPLE_TRUSTEE;
    access.Trustee.TrusteeForm = TRUSTEE_IS_SID;
    access.Trustee.ptstrName = static_cast<LPWSTR>(sid);
    PACL dacl = nullptr;
    const DWORD error = SetEntriesInAclW(1, &access, m_dacl, &dacl);
    if (error != ERROR_SUCCESS) {
        Logger().LogErrorMessageFormat(L"Unable to set ACL Entry. Error:%d(0x%x)", error, error);
        return false;
    }
    if (dacl == nullptr) return false;
    ReleaseDacl();
    m_dacl = dacl;
    m_ownsDacl = true;
    return true;
}

bool CFileAcl::Commit() {
    std::unique_ptr<BYTE[]> rebuilt;
    if (!m_securityDescriptor || !RebuildDescriptor(m_securityDescriptor.get(), rebuilt, m_dacl)) return false;
    // The old descriptor goes before the write, so that a write that fails leaves none.
    if (!m_ownsDacl) m_dacl = nullptr;
    m_securityDescriptor.reset();
    return SetFileSecurityW(m_path, DACL_SECURITY_INFORMATION, rebuilt.get()) && Adopt(std::move(rebuilt));
}

bool CFileAcl::ApplyNullDacl() {
    if (!m_supportsAcls) return true;
    std::unique_ptr<BYTE[]> rebuilt;
    return m_securityDescriptor && RebuildDescriptor(m_securityDescriptor.get(), rebuilt, nullptr) &&
           SetFileSecurityW(CPathHelper::MakeLongPath(m_path), DACL_SECURITY_INFORMATION, rebuilt.get()) &&
           Adopt(std::move(rebuilt));
}

bool CFileAcl::HasAceForSid(PSID sid) const {
    if (!m_supportsAcls || m_dacl == nullptr) return true;
    ACL_SIZE_INFORMATION size{};
    if (!GetAclInformation(m_dacl, &size, sizeof(size), AclSizeInformation)) return false;
    for (DWORD i = 0; i < size.AceCount; ++i) {
        void* entry = nullptr;
        if (!GetAce(m_dacl, i, &entry)) return false;
        if (HoldsSid(entry) && EqualSid(sid, SidOf(entry))) return true;
    }
    return false;
}

bool CFileAcl::IsOwnedByTrustedInstaller() const {
    // The service SID of the installer of the system's own files, the same on every machine.
    constexpr LPCWSTR kTrustedInstaller = L"S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464";
    PSID owner = nullptr;
    BOOL defaulted = FALSE;
    if (!m_supportsAcls || !m_securityDescriptor ||
        !GetSecurityDescriptorOwner(m_securityDescriptor.get(), &owner, &defaulted) || owner == nullptr) {
        return false;
    }
    LPWSTR text = nullptr;
    if (!ConvertSidToStringSidW(owner, &text)) return false;
    const LocalMemory<WCHAR> memory(text);
    return CString(text).CompareNoCase(kTrustedInstaller) == 0;
}

bool CFileAcl::RebuildDescriptor(const void* selfRelative, std::unique_ptr<BYTE[]>& newDescriptor, PACL dacl) {
    newDescriptor.reset();
    DWORD sizes[5] = {};  // descriptor, access list, audit list, owner, group
    MakeAbsoluteSD(Plain(selfRelative), nullptr, &sizes[0], nullptr, &sizes[1], nullptr, &sizes[2], nullptr, &sizes[3],
                   nullptr, &sizes[4]);
    if (sizes[0] == 0) return false;
    std::unique_ptr<BYTE[]> parts[5];
    for (int i = 0; i < 5; ++i) parts[i] = std::make_unique<BYTE[]>(sizes[i]);
    PSECURITY_DESCRIPTOR const absolute = parts[0].get();
    if (!MakeAbsoluteSD(Plain(selfRelative), absolute, &sizes[0], reinterpret_cast<PACL>(parts[1].get()), &sizes[1],
                        reinterpret_cast<PACL>(parts[2].get()), &sizes[2], parts[3].get(), &sizes[3], parts[4].get(),
                        &sizes[4]) ||
        !SetSecurityDescriptorDacl(absolute, TRUE, dacl, FALSE)) {
        return false;
    }
    DWORD size = 0;
    MakeSelfRelativeSD(absolute, nullptr, &size);
    if (size == 0) return false;
    auto rebuilt = std::make_unique<BYTE[]>(size);
    if (!MakeSelfRelativeSD(absolute, rebuilt.get(), &size)) return false;
    newDescriptor = std::move(rebuilt);
    return true;
}
