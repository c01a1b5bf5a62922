#include "profiles/EngineContext.h"

#include <cstring>
#include <new>

#include "crypto/Encryptor.h"
#include "helpers/TextCompare.h"
#include "profiles/UserListDecision.h"
#include "siblings/coresv/LogMethodEntryExit.h"

namespace {

constexpr INT_PTR kNone = -1;

bool AreEqual(const CString& a, const CString& b) {
    return CompareInvariantNoCase(a, b) == CSTR_EQUAL;
}

UserFacts FactsOf(CBvUserProfileBase& user) {
    return {user.HasProfileHive(), user.RequiresHiveLoad(), user.m_precedence};
}

void LogOutcome(LPCWSTR format, const CBvUserProfileBase& user) {
    Logger().LogInformationalMessageFormat(format, user.m_domain.GetString(), user.m_userName.GetString(),
                                           user.m_profilePath.GetString());
}

void DeleteAndBearIt(CBvUserProfileBase* user) {
    constexpr LPCWSTR kThrown = L"[CEngineContext::ClearUserList] Exception thrown while deleting user object";
    try {
        delete user;
    } catch (CException* problem) {
        problem->Delete();
        Logger().LogWarningMessage(kThrown);
    } catch (...) {
        Logger().LogWarningMessage(kThrown);
    }
}

}  // namespace

void CEngineContext::AddUserToUserList(CBvUserProfileBase* newUser) {
    if (newUser == nullptr) return;
    const CLogMethodEntryExit log(L"CEngineContext::AddUserToUserList");
    Logger().LogTraceMessageFormat(L"Adding user:%s domain:%s profile path %s", newUser->m_userName.GetString(),
                                   newUser->m_domain.GetString(), newUser->m_profilePath.GetString());
    const INT_PTR index = FindDuplicate(*newUser);
    if (index == kNone) {
        m_users.Add(newUser);
    } else if (m_users.GetAt(index) != newUser) {
        ResolveDuplicate(newUser, index);
    }
}

// Only the first duplicate counts: since each addition passes here, there is never a second.
INT_PTR CEngineContext::FindDuplicate(const CBvUserProfileBase& user) const {
    const INT_PTR count = m_users.GetCount();
    for (INT_PTR i = 0; i < count; ++i) {
        const CBvUserProfileBase* existing = m_users.GetAt(i);
        if (existing == nullptr) continue;
        if (AreEqual(user.m_domain, existing->m_domain) && AreEqual(user.m_userName, existing->m_userName)) return i;
    }
    return kNone;
}

void CEngineContext::ResolveDuplicate(CBvUserProfileBase* newUser, INT_PTR index) {
    CBvUserProfileBase* const existing = m_users.GetAt(index);
    const bool samePath = AreEqual(newUser->m_profilePath, existing->m_profilePath);
    switch (DecideDuplicate(FactsOf(*newUser), FactsOf(*existing), samePath)) {
        case DuplicateOutcome::SkipHiveToBeLoaded:
            LogOutcome(L"Skipping duplicate profile that requires hive to be loaded: %s\\%s", *newUser);
            delete newUser;
            break;
        case DuplicateOutcome::ReplaceHiveToBeLoaded:
            LogOutcome(L"Replacing duplicate profile with one that doesn't require hive to be loaded: %s\\%s",
                       *newUser);
            m_users.RemoveAt(index);
            m_users.Add(newUser);
            delete existing;
            break;
        case DuplicateOutcome::SkipSamePath:
            LogOutcome(L"Skipping duplicate profile '%s\\%s' with duplicate profile path: '%s'", *newUser);
            delete newUser;
            break;
        case DuplicateOutcome::ExistingBecomesSubordinate:
            LogOutcome(L"Making existing profile subordinate to new profile '%s\\%s'", *newUser);
            m_users.RemoveAt(index);
            newUser->m_subordinate = existing;
            m_users.Add(newUser);
            break;
        case DuplicateOutcome::NewBecomesSubordinate:
            LogOutcome(L"Making new profile subordinate to existing duplicate '%s\\%s'", *newUser);
            existing->m_subordinate = newUser;
            break;
    }
}

void CEngineContext::ClearUserList() {
    for (INT_PTR i = 0; i < m_users.GetCount(); ++i) DeleteAndBearIt(m_users.GetAt(i));
    m_users.RemoveAll();
}

void CEngineContext::AddUniqueString(const CString& text, CStringList& list) {
    if (list.Find(text) == nullptr) list.AddTail(text);
}

void CEngineContext::SetSecret(const CString& text, int kind) {
    EncryptorBase* const encryptor = GetEncryptor(kind);
    if (encryptor == nullptr) return;
    std::unique_ptr<BYTE[]> hash;
    DWORD size = 0;
    encryptor->ComputeHash(text, hash, size);
    SetSecretBlob(hash.get(), size, kind);
}

void CEngineContext::SetSecretBlob(const BYTE* bytes, DWORD size, int kind) {
    std::unique_ptr<BYTE[]> copy;
    if (size > 0) {
        copy.reset(new (std::nothrow) BYTE[size]{});
        if (copy == nullptr) AfxThrowMemoryException();
        std::memcpy(copy.get(), bytes, size);
    }
    m_secretData = std::move(copy);
    m_secretSize = size;
    m_secretKind = kind;
}
