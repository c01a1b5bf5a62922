// A user of the machine as the toolkit sees one. Hosts derive their class from it.
#pragma once

#include <afx.h>

class CBvUserProfileBase {
public:
    CBvUserProfileBase() = default;
    // May throw: CEngineContext::ClearUserList bears it.
    virtual ~CBvUserProfileBase() noexcept(false) = default;
    CBvUserProfileBase(const CBvUserProfileBase&) = delete;
    CBvUserProfileBase& operator=(const CBvUserProfileBase&) = delete;

    // Whether the profile has a registry hive, and whether that must be loaded before it can be read.
    virtual bool HasProfileHive() = 0;
    virtual bool RequiresHiveLoad() = 0;

    // Of two users of one name with different profiles, the one with the larger value stays in the list.
    LONGLONG m_precedence = 0;
    CString m_profilePath;
    CString m_userName;
    CString m_domain;
    // Another profile of this user. CEngineContext sets it; who owns and deletes it is the derived class's business.
    CBvUserProfileBase* m_subordinate = nullptr;
};
